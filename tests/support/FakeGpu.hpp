#pragma once

#include "platform/gpu/Backend.hpp"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <filesystem>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace fake {

/// What goes wrong, and when. Counts start at 0 and run over the life of the fake.
struct FaultPlan {
    std::string platformVersion = "10.13.239";
    bool noDevice = false;
    bool noCommandQueue = false;
    bool noFeatureSet = false;
    bool noLibrary = false;
    std::set<std::string> missingFunctions;
    std::set<std::uint64_t> failingCommandBuffers;
    std::set<std::uint64_t> failingDrawables;
    std::set<std::uint64_t> failingBuffers;
    std::set<std::uint64_t> failingTextures;
    std::set<std::uint64_t> failingRenderPipelines;
    std::set<std::uint64_t> failingComputePipelines;
    std::set<std::uint64_t> failingRenderPassDescriptors;
    /// The device is lost when it is given its commit number n + 1: that commit and all later ones fail at once.
    std::optional<std::uint64_t> lostAfterCommits;
};

/// A GPU in CPU memory: clears, uploads, blits and read-back really work, draws are recorded, and the test decides when
/// a command buffer completes. Every call that reaches it is recorded as a line of text, in order. Thread-safe.
class Gpu final : public gpu::Backend {
public:
    explicit Gpu(FaultPlan plan = {});
    ~Gpu() override;

    FaultPlan& plan();

    /// The recorded calls, such as "commandBuffer", "beginRender RenderTarget0 dontCare store, ...", "draw 4 0 4".
    std::vector<std::string> calls() const;
    void clearCalls();
    /// Adds a line of the test's own, so that calls of other fakes stand in one list with the GPU's.
    void record(const std::string& call);

    /// Completes the oldest committed command buffer on the calling thread; false when there is none. The scheduled
    /// handlers of a buffer run at its commit when nothing is before it, else when its predecessor completes.
    bool completeNext(bool succeeded = true);
    void completeAll();
    std::size_t committedButIncomplete() const;
    /// When on, every command buffer completes within its commit, on the committing thread. Off at first.
    void setCompletesAtCommit(bool completesAtCommit);

    /// The names that any library offers. Until set: the saver's four.
    void setFunctions(std::vector<std::pair<std::string, gpu::FunctionType>> functions);

    std::string platformVersion() override;
    std::shared_ptr<gpu::Layer> newLayer() override;
    std::shared_ptr<gpu::RenderPassDescriptor> newRenderPassDescriptor() override;

    /// The pixels of a fake texture, row 0 first; for checking uploads, clears and copies.
    static std::vector<std::byte> pixels(const gpu::Texture& texture);

    struct State;

private:
    std::shared_ptr<gpu::Device> openDevice() override;

    std::shared_ptr<State> _state;
};

/// Puts a fake GPU in force for the life of this object.
class ScopedGpu {
public:
    explicit ScopedGpu(FaultPlan plan = {});
    ~ScopedGpu();
    Gpu* operator->() const { return _gpu.get(); }
    Gpu& operator*() const { return *_gpu; }

private:
    std::shared_ptr<gpu::Backend> _former;
    std::shared_ptr<Gpu> _gpu;
};

}  // namespace fake
