#pragma once

#include <string>

namespace bench {

/// The name of the Vulkan device that the program would draw with. Throws std::runtime_error when there is none.
std::string chosenDeviceName();

}  // namespace bench
