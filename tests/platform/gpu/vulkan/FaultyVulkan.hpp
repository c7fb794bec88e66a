#pragma once

#include <cstdint>
#include <string>

// A Vulkan loader that stands before the system's own and makes single calls fail. Programs that link it find it under
// the loader's name when they open that. Thread-safe; it counts the calls of all threads together.
namespace fake::vulkan {

/// What a call that fails returns, in Vulkan's numbers.
enum class Failure : std::int32_t {
    OutOfHostMemory = -1,
    OutOfDeviceMemory = -2,
    DeviceLost = -4,
    SurfaceLost = -1000000000,
    OutOfDate = -1000001004,
};

enum class Calls { All, OfPresentation, OfDescriptorsAndPipelines };

/// From now on counts such calls anew, and makes the one of that number, 0 being the next, fail without reaching the
/// driver.
void failCall(std::uint64_t number, Failure failure, Calls counted = Calls::All);
/// From now on no call fails.
void failNone();
/// The name of the function whose call failed, "vkCreateImage"; empty when none has since `failCall`.
std::string failedCall();

/// How often anything was submitted to a queue or presented since the process began.
std::uint64_t submissions();

}  // namespace fake::vulkan
