#pragma once

#include "platform/gpu/Layer.hpp"
#include "platform/gpu/vulkan/Vulkan.hpp"
#include "platform/gpu/vulkan/VulkanDevice.hpp"

namespace gpu::vulkan {

// What differs between window systems about showing pictures.

/// False for what cannot be a window at all.
bool isWindow(const PresentationWindow& window) noexcept;

/// Throws; `vk::SurfaceLostKHRError` when the window has gone or is of a kind that the device cannot show pictures in.
vk::raii::SurfaceKHR makeSurface(const VulkanDevice& device, const PresentationWindow& window);

/// What the window system says, or where it leaves that to us the window's owner. 0 x 0 where there is nothing to see.
vk::Extent2D windowSize(const PresentationWindow& window, const vk::SurfaceCapabilitiesKHR& capabilities);

/// To be called after each picture that was handed to the window.
void noteShownFrame(const PresentationWindow& window);

}  // namespace gpu::vulkan
