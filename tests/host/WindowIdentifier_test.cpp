#include "host/WindowIdentifier.hpp"

#include <gtest/gtest.h>

#include <string>

using host::parseWindowIdentifier;

TEST(WindowIdentifier, IsReadInHexadecimalAndInDecimal) {
    EXPECT_EQ(parseWindowIdentifier("0x3c00007"), 0x3c00007U);
    EXPECT_EQ(parseWindowIdentifier("0X3C00007"), 0x3c00007U);
    EXPECT_EQ(parseWindowIdentifier("62914567"), 62914567U);
}

TEST(WindowIdentifier, FillsAll32Bits) {
    EXPECT_EQ(parseWindowIdentifier("0xffffffff"), 0xffffffffU);
    EXPECT_EQ(parseWindowIdentifier("4294967295"), 0xffffffffU);
    EXPECT_EQ(parseWindowIdentifier("0x100000000"), std::nullopt);
    EXPECT_EQ(parseWindowIdentifier("4294967296"), std::nullopt);
}

TEST(WindowIdentifier, MayStartWithZeros) {
    EXPECT_EQ(parseWindowIdentifier("0x0000000001"), 1U);
    EXPECT_EQ(parseWindowIdentifier("007"), 7U);
}

TEST(WindowIdentifier, OfNoWindowIsNone) {
    EXPECT_EQ(parseWindowIdentifier("0"), std::nullopt);
    EXPECT_EQ(parseWindowIdentifier("0x0"), std::nullopt);
}

TEST(WindowIdentifier, IsNothingButOneNumber) {
    for (const std::string text : {"", "0x", "x1", "1 ", " 1", "+1", "-1", "0x-1", "0x 1", "1f", "0x1g", "1.0", "1e3",
                                   "0x0x1", "wayland-0", "3c00007"}) {
        EXPECT_EQ(parseWindowIdentifier(text), std::nullopt) << text;
    }
    EXPECT_EQ(parseWindowIdentifier(std::string("1\0", 2)), std::nullopt);
}
