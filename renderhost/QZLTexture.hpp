#pragma once

#include "platform/Error.hpp"
#include "platform/gpu/Device.hpp"

#include <cstddef>
#include <cstdint>
#include <memory>

// Textures; sizes in pixels. On failure: null or false, and error 107 in the place given. A "Multiple" function fills
// the array from element 0 up to the first failure and is true when all were made, also for a count of 0. Any thread.

/// For data from the CPU: shader read, managed.
std::shared_ptr<gpu::Texture> QZLCreateReadableTexture(gpu::Device& device, std::size_t width, std::size_t height,
                                                       gpu::PixelFormat format, platform::ErrorPlace error,
                                                       std::uint64_t subCode);
/// For compute functions: shader read and write, private, BGRA8Unorm.
std::shared_ptr<gpu::Texture> QZLCreateWritableTexture(gpu::Device& device, std::size_t width, std::size_t height,
                                                       platform::ErrorPlace error, std::uint64_t subCode);
/// For passes: shader read and render target, private.
std::shared_ptr<gpu::Texture> QZLCreateRenderTargetTexture(gpu::Device& device, std::size_t width, std::size_t height,
                                                           gpu::PixelFormat format, platform::ErrorPlace error,
                                                           std::uint64_t subCode);

/// Labelled "ShaderTarget0", "ShaderTarget1", ...
bool QZLCreateWritableTextureMultiple(gpu::Device& device, std::size_t width, std::size_t height,
                                      std::shared_ptr<gpu::Texture>* array, std::size_t count,
                                      platform::ErrorPlace error, std::uint64_t subCode);
/// Labelled "RenderTarget0", "RenderTarget1", ...
bool QZLCreateRenderTargetTextureMultiple(gpu::Device& device, std::size_t width, std::size_t height,
                                          gpu::PixelFormat format, std::shared_ptr<gpu::Texture>* array,
                                          std::size_t count, platform::ErrorPlace error, std::uint64_t subCode);
void QZLReleaseTextureMultiple(std::shared_ptr<gpu::Texture>* array, std::size_t count);

/// Divides both sides by the whole number that brings the image close to `ideal` pixels, truncating. Returns the
/// divisor.
std::uint64_t QZLTextureScaleEvenlyToIdeal(std::uint64_t ideal, std::uint64_t minimumScale, std::uint64_t maximumScale,
                                           std::uint64_t& width, std::uint64_t& height);
/// The same with a fractional divisor, rounding to nearest.
double QZLTextureScaleExactlyToIdeal(std::uint64_t ideal, std::uint64_t& width, std::uint64_t& height,
                                     double minimumScale, double maximumScale);
