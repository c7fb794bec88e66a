#pragma once

#include "platform/Error.hpp"
#include "platform/gpu/RenderPassDescriptor.hpp"

#include <cstddef>
#include <cstdint>
#include <memory>

/// Fills the array, element 0 upward, up to the first failure (304). True when all were made, also for a count of 0.
bool QZLCreateRenderPassDescriptorMultiple(std::shared_ptr<gpu::RenderPassDescriptor>* array, std::size_t count,
                                           platform::ErrorPlace error, std::uint64_t subCode);
void QZLReleaseRenderPassDescriptorMultiple(std::shared_ptr<gpu::RenderPassDescriptor>* array, std::size_t count);
