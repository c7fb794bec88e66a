// Stored texts read as numbers.
#include "fuzz/Fuzz.hpp"
#include "platform/PreferenceText.hpp"

#include <cmath>

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(fuzz::text(data, size));
    const float number = platform::floatFromPreferenceText(text);
    fuzz::require(std::isfinite(number), "a number is finite");
    fuzz::require(platform::floatFromPreferenceText(platform::preferenceText(number)) == number, "floats come back");
    const std::int64_t whole = platform::integerFromPreferenceText(text);
    fuzz::require(platform::integerFromPreferenceText(platform::preferenceText(whole)) == whole, "integers come back");
    return 0;
}
