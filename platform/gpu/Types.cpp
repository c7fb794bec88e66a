#include "platform/gpu/Types.hpp"

namespace gpu {

std::size_t bytesPerPixel(PixelFormat format) {
    switch (format) {
        case PixelFormat::Invalid: return 0;
        case PixelFormat::R8Unorm:
        case PixelFormat::R8Snorm: return 1;
        case PixelFormat::R16Unorm: return 2;
        case PixelFormat::RGBA16Float: return 8;
        case PixelFormat::RGBA8Unorm:
        case PixelFormat::RGBA8UnormSrgb:
        case PixelFormat::RGBA8Uint:
        case PixelFormat::BGRA8Unorm:
        case PixelFormat::BGRA8UnormSrgb:
        case PixelFormat::RGB10A2Unorm: return 4;
    }
    return 0;
}

}  // namespace gpu
