#pragma once

#include "platform/PreferencesStore.hpp"

#include <cstdint>
#include <string>

namespace platform {

/// The text that a value is stored as: numbers in the shortest form that reads back exactly, true and false as "1" and
/// "0". Independent of the locale.
std::string preferenceText(const PreferenceValue& value);

/// The number that a text starts with, past white space: digits with a sign, a decimal point and an exponent where they
/// are given. One that is too large reads as the largest of its sign. "true" reads as 1; any other text as 0.
float floatFromPreferenceText(const std::string& text);

/// As above, without the fraction.
std::int64_t integerFromPreferenceText(const std::string& text);

}  // namespace platform
