#pragma once

#include "platform/Error.hpp"
#include "platform/gpu/Layer.hpp"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

// Buffers that CPU and GPU share, on the layer's device; lengths in bytes. On failure: null or false, and error 108 in
// the place given. Any thread.

std::shared_ptr<gpu::Buffer> QZLCreateSharedBuffer(const gpu::Layer& layer, const std::string& label,
                                                   std::size_t length, platform::ErrorPlace error,
                                                   std::uint64_t subCode);
/// The bytes are copied in.
std::shared_ptr<gpu::Buffer> QZLCreateSharedBufferWithBytes(const gpu::Layer& layer, const std::string& label,
                                                            std::size_t length, const void* bytes,
                                                            platform::ErrorPlace error, std::uint64_t subCode);
/// Labelled with the base label followed by 0, 1, ... Stops at the first failure; true when all were made.
bool QZLCreateSharedBufferMultiple(const gpu::Layer& layer, const std::string& baseLabel, std::size_t length,
                                   std::shared_ptr<gpu::Buffer>* array, std::size_t count, platform::ErrorPlace error,
                                   std::uint64_t subCode);
void QZLReleaseBufferMultiple(std::shared_ptr<gpu::Buffer>* array, std::size_t count);
