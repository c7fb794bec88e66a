#pragma once

#include "platform/gpu/CommandBuffer.hpp"
#include "platform/gpu/Resources.hpp"

#include <cstddef>
#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <string>

namespace gpu {

/// A GPU. Every creation returns null on failure (reason in the system log, once per cause) and never throws; on a lost
/// device making resources fails. Thread-safe.
class Device : public std::enable_shared_from_this<Device> {
public:
    Device(const Device&) = delete;
    Device& operator=(const Device&) = delete;
    virtual ~Device() = default;

    virtual std::string name() const = 0;
    /// The driver's own name and version, for diagnostics.
    virtual std::string driverDescription() const = 0;
    virtual bool supportsFeatureSet(FeatureSet featureSet) const = 0;
    /// The largest width or height of a texture in pixels.
    virtual std::size_t maximumTextureSize() const = 0;
    virtual bool isLost() const = 0;

    std::shared_ptr<CommandQueue> newCommandQueue();
    std::shared_ptr<Texture> newTexture(const TextureDescriptor& descriptor);
    std::shared_ptr<Buffer> newBuffer(std::size_t length);
    std::shared_ptr<Buffer> newBuffer(std::span<const std::byte> bytes);
    std::shared_ptr<Library> newLibrary(const std::filesystem::path& file);
    std::shared_ptr<RenderPipelineState> newRenderPipelineState(const RenderPipelineDescriptor& descriptor);
    std::shared_ptr<ComputePipelineState> newComputePipelineState(const std::shared_ptr<Function>& function);

protected:
    Device() = default;

private:
    virtual std::shared_ptr<CommandQueue> makeCommandQueue() = 0;
    virtual std::shared_ptr<Texture> makeTexture(const TextureDescriptor& descriptor) = 0;
    virtual std::shared_ptr<Buffer> makeBuffer(std::size_t length) = 0;
    virtual std::shared_ptr<Library> makeLibrary(const std::filesystem::path& file) = 0;
    virtual std::shared_ptr<RenderPipelineState> makeRenderPipelineState(
        const RenderPipelineDescriptor& descriptor) = 0;
    virtual std::shared_ptr<ComputePipelineState> makeComputePipelineState(
        const std::shared_ptr<Function>& function) = 0;
};

}  // namespace gpu
