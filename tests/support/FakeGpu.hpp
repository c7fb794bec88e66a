#pragma once

#include "platform/gpu/Backend.hpp"

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
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
    /// Encoders of all three kinds, counted together.
    std::set<std::uint64_t> failingEncoders;
    /// All calls that can fail, counted together: every line below that may have " failed" after it.
    std::set<std::uint64_t> failingCalls;
    /// The device is lost when it is given its commit number n + 1: that commit and all later ones fail at once.
    /// Emptied when it happens, so that a device opened afterwards is sound.
    std::optional<std::uint64_t> lostAfterCommits;
};

/// What a draw was given, in a command buffer that was committed.
struct Draw {
    std::string pipeline;
    gpu::PrimitiveType primitiveType = gpu::PrimitiveType::Triangle;
    std::size_t vertexStart = 0;
    std::size_t vertexCount = 0;
    std::vector<std::byte> vertexBytes;
    /// By index; from the offset to the end, as they were at the commit.
    std::map<std::size_t, std::vector<std::byte>> fragmentBuffers;
    /// By index, named as in the recorded calls.
    std::map<std::size_t, std::string> fragmentTextures;
    /// The colour attachments, named as in the recorded calls.
    std::vector<std::string> targets;
};

/// A GPU in CPU memory: clears, uploads, blits and read-back really work, draws are recorded, and the test decides when
/// a command buffer completes. Passes that do not care what they load or store leave `garbage` behind. Thread-safe.
/// Every call that reaches it is recorded as a line of text, in order:
///
///     openDevice                               newLayer
///     newCommandQueue                          newRenderPassDescriptor
///     newTexture R8Snorm 256x256 usage 1 storage 1
///     newBuffer 64                             newLibrary default.metallib
///     newFunction ColorVertex                  newComputePipeline Kernel
///     newRenderPipeline ColorVertex+ColorFragment [RGB10A2Unorm, R16Unorm]
///     replaceRegion RenderTarget0 0,0 256x256
///     nextDrawable 0                           commandBuffer
///     addScheduledHandler                      addCompletedHandler
///     render [RenderTarget0 dontCare store, drawable 0 clear(0 0 0 1) store]
///     compute                                  blit
///     label ColorShader                        pipeline ColorVertex+ColorFragment
///     vertexBytes 64 @0                        draw triangleStrip 0 4
///     fragmentBuffer style0+0 @0               fragmentTexture RenderTarget0 @0
///     buffer style0+0 @0                       texture RenderTarget0 @0
///     dispatch 16x9                            end
///     copy RenderTarget0 0,0 64x48 to RenderTarget1 0,0
///     copy RenderTarget0 0,0 64x48 to style0+0 256
///     present 0                                commit
///
/// A creation, an upload or a request for an encoder that fails has " failed" after it. Textures and buffers go by
/// their labels, without one by their looks ("R8Snorm 256x256", "64 bytes"); a layer's images by their drawable
/// ("drawable 0").
class Gpu final : public gpu::Backend {
public:
    explicit Gpu(FaultPlan plan = {});
    ~Gpu() override;

    /// To be changed only while no other thread uses the fake.
    FaultPlan& plan();

    std::vector<std::string> calls() const;
    void clearCalls();
    /// Adds a line of the test's own, so that calls of other fakes stand in one list with the GPU's.
    void record(const std::string& call);
    /// The draws of all committed command buffers, in order.
    std::vector<Draw> draws() const;

    /// Completes the oldest committed command buffer on the calling thread; false when there is none. The scheduled
    /// handlers of a buffer run at its commit when nothing is before it on its queue, else when its predecessor
    /// completes. Whoever waits for a buffer completes it and those before it, for nobody else would.
    bool completeNext(bool succeeded = true);
    void completeAll();
    std::size_t committedButIncomplete() const;
    /// How many of the objects that it has made, of any kind, somebody still holds.
    std::size_t liveObjects() const;
    /// When on, every command buffer completes within its commit, on the committing thread. Off at first.
    void setCompletesAtCommit(bool completesAtCommit);

    /// The names that any library offers. Until set: the saver's four.
    void setFunctions(std::vector<std::pair<std::string, gpu::FunctionType>> functions);

    std::string platformVersion() override;
    std::shared_ptr<gpu::Layer> newLayer() override;
    std::shared_ptr<gpu::RenderPassDescriptor> newRenderPassDescriptor() override;

    /// The pixels of a fake texture, row 0 first; for checking uploads, clears and copies.
    static std::vector<std::byte> pixels(const gpu::Texture& texture);
    /// What every byte of a texture holds after a pass that did not care.
    static constexpr std::byte garbage{0xA5};

    /// The drawable that a fake layer shows; null before the first.
    static std::shared_ptr<gpu::Drawable> lastPresented(const gpu::Layer& layer);

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
