#pragma once

/// The one place that takes in the Vulkan C++ bindings, so that every file sees them configured alike: entry points are
/// fetched from a loader opened at run time, and structures are plain aggregates for designated initializers.
#define VK_NO_PROTOTYPES
#define VK_USE_PLATFORM_WAYLAND_KHR
#define VK_USE_PLATFORM_XCB_KHR
#define VULKAN_HPP_DISPATCH_LOADER_DYNAMIC 1
#define VULKAN_HPP_NO_STRUCT_CONSTRUCTORS
#define VULKAN_HPP_NO_STRUCT_SETTERS
#define VULKAN_HPP_NO_UNION_SETTERS
#define VULKAN_HPP_NO_SPACESHIP_OPERATOR
#define VULKAN_HPP_NO_SMART_HANDLE
#include <vulkan/vulkan_raii.hpp>
