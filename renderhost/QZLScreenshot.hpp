#pragma once

#include "platform/gpu/Resources.hpp"

#include <cstdint>
#include <memory>
#include <string>

/// Reads a texture back into a new shared buffer: rows of 4 * width bytes, row 0 first, in the texture's byte order.
/// Blocks until the GPU has copied. False for a framebuffer-only texture or a format without four 8-bit channels.
bool QZLCopyTextureToBuffer(const std::shared_ptr<gpu::Texture>& texture, std::shared_ptr<gpu::Buffer>& buffer,
                            std::uint64_t& width, std::uint64_t& height);

/// Writes a texture as an uncompressed 24-bit BMP file. True when it was written completely; otherwise no partial file
/// is left. Blocks for the read-back and the write; any thread, a completion thread too. Never throws.
bool QZLSaveScreenshot(const std::string& path, const std::shared_ptr<gpu::Texture>& texture);
