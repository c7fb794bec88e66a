#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

/// Plain values of the GPU interface. Enumerators keep Metal's numeric values, because callers log and compare them.
namespace gpu {

enum class PixelFormat : std::uint32_t {
    Invalid = 0,
    R8Unorm = 10,
    R8Snorm = 12,
    R16Unorm = 20,
    RGBA8Unorm = 70,
    RGBA8UnormSrgb = 71,
    RGBA8Uint = 73,
    BGRA8Unorm = 80,
    BGRA8UnormSrgb = 81,
    RGB10A2Unorm = 90,
    RGBA16Float = 115,
};

/// Bytes of one pixel; 0 for `Invalid`.
std::size_t bytesPerPixel(PixelFormat format);

enum class TextureType : std::uint32_t { Type2D = 2 };

/// What shaders and passes may do with a texture; a set of bits.
enum class TextureUsage : std::uint32_t {
    ShaderRead = 1,
    ShaderWrite = 2,
    ShaderReadWrite = 3,
    RenderTarget = 4,
    ShaderReadRenderTarget = 5,
};

constexpr bool contains(TextureUsage usage, TextureUsage bit) {
    return (static_cast<std::uint32_t>(usage) & static_cast<std::uint32_t>(bit)) != 0;
}

/// Where a resource lives: readable by the CPU, kept in step for it, or the GPU's alone.
enum class StorageMode : std::uint32_t { Shared = 0, Managed = 1, Private = 2 };

enum class LoadAction : std::uint32_t { DontCare = 0, Load = 1, Clear = 2 };
enum class StoreAction : std::uint32_t { DontCare = 0, Store = 1 };
enum class PrimitiveType : std::uint32_t { Triangle = 3, TriangleStrip = 4 };
enum class FunctionType : std::uint32_t { Vertex = 1, Fragment = 2, Kernel = 3 };

/// A named bundle of device abilities. 10003 stands for all that the frame loop and the saver's passes need.
enum class FeatureSet : std::uint32_t { MacOsGpuFamily1V3 = 10003 };

struct ClearColor {
    double red = 0.0;
    double green = 0.0;
    double blue = 0.0;
    double alpha = 1.0;
    bool operator==(const ClearColor&) const = default;
};

/// Width and height in pixels.
struct Extent {
    std::size_t width = 0;
    std::size_t height = 0;
    bool operator==(const Extent&) const = default;
};

struct Origin {
    std::size_t x = 0;
    std::size_t y = 0;
};

/// A rectangle of texels of slice 0, level 0.
struct Region {
    Origin origin;
    Extent size;
};

struct TextureDescriptor {
    PixelFormat pixelFormat = PixelFormat::Invalid;
    std::size_t width = 0;
    std::size_t height = 0;
    TextureUsage usage = TextureUsage::ShaderRead;
    StorageMode storageMode = StorageMode::Private;
};

}  // namespace gpu
