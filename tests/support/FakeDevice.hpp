#pragma once

#include "platform/gpu/Device.hpp"
#include "tests/support/FakeGpuState.hpp"

#include <atomic>
#include <memory>
#include <string>

namespace fake {

class Device final : public gpu::Device {
public:
    explicit Device(std::shared_ptr<Gpu::State> state) : _state(std::move(state)) {}

    std::string name() const override { return "Fake GPU"; }
    std::string driverDescription() const override { return "fake 1.0"; }
    bool supportsFeatureSet(gpu::FeatureSet featureSet) const override;
    std::size_t maximumTextureSize() const override { return 16384; }
    bool isLost() const override { return _lost; }

    Gpu::State& state() const { return *_state; }

    /// Counts a commit, and loses the device over it when the plan says so.
    void noteCommit();

private:
    std::shared_ptr<gpu::CommandQueue> makeCommandQueue() override;
    std::shared_ptr<gpu::Texture> makeTexture(const gpu::TextureDescriptor& descriptor) override;
    std::shared_ptr<gpu::Buffer> makeBuffer(std::size_t length) override;
    std::shared_ptr<gpu::Library> makeLibrary(const std::filesystem::path& file) override;
    std::shared_ptr<gpu::RenderPipelineState> makeRenderPipelineState(
        const gpu::RenderPipelineDescriptor& descriptor) override;
    std::shared_ptr<gpu::ComputePipelineState> makeComputePipelineState(
        const std::shared_ptr<gpu::Function>& function) override;

    std::shared_ptr<Device> self() { return std::static_pointer_cast<Device>(shared_from_this()); }

    std::shared_ptr<Gpu::State> _state;
    std::atomic<bool> _lost{false};
};

/// Pipelines are named after their functions: "ColorVertex+ColorFragment".
class RenderPipelineState final : public gpu::RenderPipelineState {
public:
    RenderPipelineState(std::shared_ptr<gpu::Device> device, std::string name)
        : gpu::RenderPipelineState(std::move(device)), _name(std::move(name)) {}
    const std::string& name() const { return _name; }

private:
    std::string _name;
};

class ComputePipelineState final : public gpu::ComputePipelineState {
public:
    ComputePipelineState(std::shared_ptr<gpu::Device> device, std::string name)
        : gpu::ComputePipelineState(std::move(device)), _name(std::move(name)) {}
    const std::string& name() const { return _name; }

private:
    std::string _name;
};

}  // namespace fake
