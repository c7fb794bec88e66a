#pragma once

#include "platform/Error.hpp"

#include <cstdint>
#include <string>

inline constexpr const char* QZLVistashadeErrorDomain = "QZLVistashadeErrorDomain";
inline constexpr const char* QZLErrorSubCodeKey = "QZLErrorSubCodeKey";

/// An error of the framework's domain. A sub-code of 0 means that there is none.
platform::Error QZLCreateError(const std::string& message, std::int64_t code, std::int64_t subCode);

/// The same with the localized message that belongs to the code.
platform::Error QZLCreateVistashadeError(std::int64_t code, std::int64_t subCode);

/// 0 when the error has no sub-code or one that is no number.
std::int64_t QZLGetErrorSubCode(const platform::Error& error);
