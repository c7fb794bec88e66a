#pragma once

#include "platform/Error.hpp"
#include "platform/gpu/Types.hpp"

#include <cstdint>
#include <string>

namespace gpu {
class Device;
}

/// The version of the graphics platform, probed once per process. False, with zeros, when it is unknown. Any thread.
bool QZLMacOsVersion(std::int32_t& major, std::int32_t& minor, std::int32_t& patch);

/// "10.13.0", or "(unknown)".
std::string QZLMacOsVersionString();

/// True when the platform is known to be at least that version; otherwise false and, where wanted, an error of code
/// 300.
bool QZLValidateMacOsVersion(std::int32_t major, std::int32_t minor, std::int32_t patch, platform::ErrorPlace error);

/// True when the device has the feature set; otherwise false and, where wanted, an error of code 302.
bool QZLValidateMetalFeatureSet(const gpu::Device& device, gpu::FeatureSet featureSet, std::int64_t subCode,
                                platform::ErrorPlace error);

/// Makes the next question probe again. For tests only: in the program the version never changes.
void QZLForgetMacOsVersion();
