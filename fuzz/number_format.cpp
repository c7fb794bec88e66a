// Conversions of numbers beside those of the C library, which they must agree with.
#include "fuzz/Fuzz.hpp"
#include "platform/StringFormat.hpp"

#include <fuzzer/FuzzedDataProvider.h>

#include <array>
#include <bit>

namespace {

constexpr int widest = 512;       // what is wider is cut
constexpr int mostPrecise = 100;  // fmt knows 767 digits of a double

std::string anyConversion(FuzzedDataProvider& bytes) {
    std::string conversion = "%";
    for (const char flag : {'-', '0', '+', ' '}) {
        if (bytes.ConsumeBool()) {
            conversion += flag;
        }
    }
    if (bytes.ConsumeBool()) {
        conversion += std::to_string(bytes.ConsumeIntegralInRange(1, widest));
    }
    if (bytes.ConsumeBool()) {
        conversion += "." + std::to_string(bytes.ConsumeIntegralInRange(0, mostPrecise));
    }
    return conversion;
}

template <typename Number>
void compare(const std::string& conversion, Number number) {
    std::array<char, 2048> expected{};  // a double has 309 digits before its point
    std::snprintf(expected.data(), expected.size(), conversion.c_str(), number);
    const std::string printed = platform::formatted(conversion, number);
    if (printed != expected.data()) {
        std::fprintf(stderr, "\"%s\" printed \"%s\" for \"%s\"\n", conversion.c_str(), printed.c_str(),
                     expected.data());
    }
    fuzz::require(printed == expected.data(), "numbers print as the C library prints them");
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedDataProvider bytes(data, size);
    std::string conversion = anyConversion(bytes);
    switch (const char type =
                bytes.PickValueInArray({'d', 'i', 'u', 'x', 'X', 'o', 'f', 'F', 'e', 'E', 'g', 'G', 'a'})) {
        case 'd':
        case 'i': compare(conversion + "ll" + type, bytes.ConsumeIntegral<long long>()); break;
        case 'u': compare(conversion + "llu", bytes.ConsumeIntegral<unsigned long long>()); break;
        case 'x':
        case 'X':
        case 'o':
            compare(conversion.insert(1, bytes.ConsumeBool() ? "#" : "") + "ll" + type,
                    bytes.ConsumeIntegral<unsigned long long>());
            break;
        default: compare(conversion + type, std::bit_cast<double>(bytes.ConsumeIntegral<std::uint64_t>()));
    }
    return 0;
}
