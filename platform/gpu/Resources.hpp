#pragma once

#include "platform/gpu/Types.hpp"

#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace gpu {

class Device;

/// What every GPU object has: its device, which it keeps alive, and a label for debuggers and logs.
/// Made by a device; shared by its users and by command buffers until the GPU is done with it. Labels and creation
/// belong to one thread at a time; a command buffer may use the object from another.
class Resource {
public:
    virtual ~Resource() = default;
    Resource(const Resource&) = delete;
    Resource& operator=(const Resource&) = delete;

    const std::shared_ptr<Device>& device() const { return _device; }
    const std::string& label() const { return _label; }
    void setLabel(std::string label);

protected:
    explicit Resource(std::shared_ptr<Device> device) : _device(std::move(device)) {}

private:
    virtual void labelDidChange() {}

    std::shared_ptr<Device> _device;
    std::string _label;
};

/// A two-dimensional image with one slice and one level.
class Texture : public Resource {
public:
    TextureType textureType() const { return TextureType::Type2D; }
    PixelFormat pixelFormat() const { return _descriptor.pixelFormat; }
    std::size_t width() const { return _descriptor.width; }
    std::size_t height() const { return _descriptor.height; }
    std::size_t depth() const { return 1; }
    Extent size() const { return {_descriptor.width, _descriptor.height}; }
    TextureUsage usage() const { return _descriptor.usage; }
    StorageMode storageMode() const { return _descriptor.storageMode; }

    /// True for a layer's image that was asked to serve as a render target only.
    bool isFramebufferOnly() const { return _framebufferOnly; }

    /// Copies rows of `bytesPerRow` bytes into `region` before the GPU uses the texture next.
    /// False, with nothing changed, for a private texture, a region outside it, or too few bytes.
    bool replaceRegion(const Region& region, std::span<const std::byte> bytes, std::size_t bytesPerRow);

protected:
    Texture(std::shared_ptr<Device> device, const TextureDescriptor& descriptor, bool framebufferOnly = false)
        : Resource(std::move(device)), _descriptor(descriptor), _framebufferOnly(framebufferOnly) {}

private:
    virtual bool writeRegion(const Region& region, std::span<const std::byte> bytes, std::size_t bytesPerRow) = 0;

    TextureDescriptor _descriptor;
    bool _framebufferOnly;
};

/// Memory that the CPU and the GPU both see. Writing while a committed command buffer reads it is the caller's race.
class Buffer : public Resource {
public:
    std::byte* contents() { return _contents; }
    const std::byte* contents() const { return _contents; }
    std::size_t length() const { return _length; }

protected:
    Buffer(std::shared_ptr<Device> device, std::size_t length) : Resource(std::move(device)), _length(length) {}
    void setContents(std::byte* contents) { _contents = contents; }

private:
    std::byte* _contents = nullptr;
    std::size_t _length;
};

/// An entry point of a library. Keeps its library alive.
class Function {
public:
    virtual ~Function() = default;
    const std::string& name() const { return _name; }
    FunctionType functionType() const { return _type; }

protected:
    Function(std::string name, FunctionType type) : _name(std::move(name)), _type(type) {}

private:
    std::string _name;
    FunctionType _type;
};

/// A validated shader library. Immutable.
class Library : public Resource {
public:
    /// The entry point of that name and stage, or null.
    std::shared_ptr<Function> newFunction(const std::string& name, FunctionType type);

protected:
    using Resource::Resource;

private:
    virtual std::shared_ptr<Function> makeFunction(const std::string& name, FunctionType type) = 0;
};

struct RenderPipelineDescriptor {
    std::shared_ptr<Function> vertexFunction;
    std::shared_ptr<Function> fragmentFunction;
    std::vector<PixelFormat> colorAttachmentFormats;
    std::vector<std::uint32_t> constants{};  ///< specialisation constants 1, 2, … of both functions
};

/// A compiled pair of shader functions with the formats they draw into. Immutable.
class RenderPipelineState : public Resource {
protected:
    using Resource::Resource;
};

/// A compiled compute function. Immutable.
class ComputePipelineState : public Resource {
protected:
    using Resource::Resource;
};

}  // namespace gpu
