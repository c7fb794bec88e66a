#include "tests/support/FakePixels.hpp"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>

namespace fake {
namespace {

using Components = std::array<double, 4>;

std::uint64_t normalized(double value, std::uint64_t maximum) {
    return static_cast<std::uint64_t>(std::llround(std::clamp(value, 0.0, 1.0) * static_cast<double>(maximum)));
}

/// IEC 61966-2-1.
double srgbCoded(double linear) {
    return linear <= 0.0031308 ? 12.92 * linear : 1.055 * std::pow(linear, 1.0 / 2.4) - 0.055;
}

Components srgbCoded(const Components& linear) {
    return {srgbCoded(linear[0]), srgbCoded(linear[1]), srgbCoded(linear[2]), linear[3]};
}

/// Four bytes in memory order, each of a component scaled to `maximum`.
std::uint64_t packedBytes(const Components& components, double scale) {
    std::uint64_t packed = 0;
    for (std::size_t index = 0; index < components.size(); ++index) {
        const double value = std::clamp(components[index] * scale, 0.0, 255.0);
        packed |= static_cast<std::uint64_t>(std::llround(value)) << (8 * index);
    }
    return packed;
}

/// IEEE 754 binary16 of a value that is normal in it, or zero; truncated.
std::uint64_t half(double value) {
    const auto bits = std::bit_cast<std::uint32_t>(static_cast<float>(value));
    const std::uint32_t sign = (bits >> 16) & 0x8000;
    const auto exponent = static_cast<std::int32_t>((bits >> 23) & 0xFF) - 127 + 15;
    if (exponent <= 0) {
        return sign;
    }
    return sign | static_cast<std::uint32_t>(std::min(exponent, 30) << 10) | ((bits >> 13) & 0x3FF);
}

std::uint64_t packed(gpu::PixelFormat format, const gpu::ClearColor& color) {
    const Components rgba{color.red, color.green, color.blue, color.alpha};
    const Components bgra{color.blue, color.green, color.red, color.alpha};
    switch (format) {
        case gpu::PixelFormat::Invalid: return 0;
        case gpu::PixelFormat::R8Unorm: return normalized(color.red, 255);
        case gpu::PixelFormat::R8Snorm:
            return static_cast<std::uint8_t>(std::lround(std::clamp(color.red, -1.0, 1.0) * 127.0));
        case gpu::PixelFormat::R16Unorm: return normalized(color.red, 65535);
        case gpu::PixelFormat::RGBA8Unorm: return packedBytes(rgba, 255.0);
        case gpu::PixelFormat::RGBA8UnormSrgb: return packedBytes(srgbCoded(rgba), 255.0);
        case gpu::PixelFormat::RGBA8Uint: return packedBytes(rgba, 1.0);
        case gpu::PixelFormat::BGRA8Unorm: return packedBytes(bgra, 255.0);
        case gpu::PixelFormat::BGRA8UnormSrgb: return packedBytes(srgbCoded(bgra), 255.0);
        case gpu::PixelFormat::RGB10A2Unorm:
            return normalized(color.red, 1023) | normalized(color.green, 1023) << 10 |
                   normalized(color.blue, 1023) << 20 | normalized(color.alpha, 3) << 30;
        case gpu::PixelFormat::RGBA16Float:
            return half(color.red) | half(color.green) << 16 | half(color.blue) << 32 | half(color.alpha) << 48;
    }
    return 0;
}

}  // namespace

std::vector<std::byte> encodedPixel(gpu::PixelFormat format, const gpu::ClearColor& color) {
    const std::uint64_t value = packed(format, color);
    std::vector<std::byte> bytes(gpu::bytesPerPixel(format));
    for (std::size_t index = 0; index < bytes.size(); ++index) {
        bytes[index] = static_cast<std::byte>(value >> (8 * index));
    }
    return bytes;
}

std::string nameOf(gpu::PixelFormat format) {
    switch (format) {
        case gpu::PixelFormat::Invalid: break;
        case gpu::PixelFormat::R8Unorm: return "R8Unorm";
        case gpu::PixelFormat::R8Snorm: return "R8Snorm";
        case gpu::PixelFormat::R16Unorm: return "R16Unorm";
        case gpu::PixelFormat::RGBA8Unorm: return "RGBA8Unorm";
        case gpu::PixelFormat::RGBA8UnormSrgb: return "RGBA8UnormSrgb";
        case gpu::PixelFormat::RGBA8Uint: return "RGBA8Uint";
        case gpu::PixelFormat::BGRA8Unorm: return "BGRA8Unorm";
        case gpu::PixelFormat::BGRA8UnormSrgb: return "BGRA8UnormSrgb";
        case gpu::PixelFormat::RGB10A2Unorm: return "RGB10A2Unorm";
        case gpu::PixelFormat::RGBA16Float: return "RGBA16Float";
    }
    return "Invalid";
}

}  // namespace fake
