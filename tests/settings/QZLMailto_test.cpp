#include "settings/QZLMailto.hpp"

#include <gtest/gtest.h>

namespace {

TEST(QZLSanitizeMailto, KeepsLettersAndDigits) {
    const std::string text = "ABCXYZabcxyz0189";
    EXPECT_EQ(QZLSanitizeMailto(text), text);
}

TEST(QZLSanitizeMailto, EncodesASpace) {
    EXPECT_EQ(QZLSanitizeMailto("a b"), "a%20b");
}

TEST(QZLSanitizeMailto, EncodesAPercentSign) {
    EXPECT_EQ(QZLSanitizeMailto("100%"), "100%25");
}

TEST(QZLSanitizeMailto, EncodesAllPunctuationInUpperCase) {
    EXPECT_EQ(QZLSanitizeMailto("clouds@example.org"), "clouds%40example%2Eorg");
    EXPECT_EQ(QZLSanitizeMailto("-_.~@"), "%2D%5F%2E%7E%40");
    EXPECT_EQ(QZLSanitizeMailto("!\"#$%&'()*+,/"), "%21%22%23%24%25%26%27%28%29%2A%2B%2C%2F");
    EXPECT_EQ(QZLSanitizeMailto(":;<=>?[\\]^`{|}"), "%3A%3B%3C%3D%3E%3F%5B%5C%5D%5E%60%7B%7C%7D");
}

TEST(QZLSanitizeMailto, ALineEndOfEitherKindBecomesBothItsCharacters) {
    EXPECT_EQ(QZLSanitizeMailto("Line1\nLine2"), "Line1%0D%0ALine2");
    EXPECT_EQ(QZLSanitizeMailto("x\r\ny"), "x%0D%0Ay");
    EXPECT_EQ(QZLSanitizeMailto("\n\n"), "%0D%0A%0D%0A");
}

TEST(QZLSanitizeMailto, ALoneCarriageReturnIsDropped) {
    EXPECT_EQ(QZLSanitizeMailto("x\ry"), "xy");
}

TEST(QZLSanitizeMailto, DropsControlCharacters) {
    EXPECT_EQ(QZLSanitizeMailto("\t"), "");
    EXPECT_EQ(QZLSanitizeMailto("a\x01\x1F\x7F\x1B"
                                "b"),
              "ab");
}

TEST(QZLSanitizeMailto, DropsWhatIsNotAscii) {
    EXPECT_EQ(QZLSanitizeMailto("\xC3\xA9"), "");
    EXPECT_EQ(QZLSanitizeMailto("caf\xC3\xA9 \xE2\x98\x81 \xF0\x9F\x8C\xA4!"), "caf%20%20%21");
    EXPECT_EQ(QZLSanitizeMailto("\xFF"
                                "a\x80"),
              "a")
        << "nor is it UTF-8";
}

TEST(QZLSanitizeMailto, EndsAtAZeroByte) {
    EXPECT_EQ(QZLSanitizeMailto(std::string("a\0b", 3)), "a");
    EXPECT_EQ(QZLSanitizeMailto(std::string("\0b", 2)), "");
}

TEST(QZLSanitizeMailto, OfNothingIsEmpty) {
    EXPECT_EQ(QZLSanitizeMailto(""), "");
    EXPECT_EQ(QZLSanitizeMailto(std::nullopt), "");
}

TEST(QZLSanitizeMailto, GivesEveryByteItsOneForm) {
    for (int byte = 1; byte < 256; ++byte) {
        const std::string sanitized = QZLSanitizeMailto(std::string(1, static_cast<char>(byte)));
        const bool isPrintable = byte >= 0x20 && byte < 0x7F;
        const bool isAlphanumeric =
            (byte >= '0' && byte <= '9') || (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z');
        const std::size_t length = byte == '\n' ? 6 : (isAlphanumeric ? 1 : (isPrintable ? 3 : 0));
        EXPECT_EQ(sanitized.size(), length) << byte;
    }
}

TEST(QZLSanitizeMailto, TakesALongReport) {
    EXPECT_EQ(QZLSanitizeMailto(std::string(262'144, '.')).size(), 3 * 262'144U);
}

TEST(QZLRemoveHttpPrefix, RemovesEitherPrefix) {
    EXPECT_EQ(QZLRemoveHttpPrefix("http://cirrane.example.org"), "cirrane.example.org");
    EXPECT_EQ(QZLRemoveHttpPrefix("https://cirrane.example.org"), "cirrane.example.org");
    EXPECT_EQ(QZLRemoveHttpPrefix("https://"), "");
}

TEST(QZLRemoveHttpPrefix, RemovesOnlyOne) {
    EXPECT_EQ(QZLRemoveHttpPrefix("https://http://x"), "http://x");
    EXPECT_EQ(QZLRemoveHttpPrefix("http://https://x"), "https://x");
    EXPECT_EQ(QZLRemoveHttpPrefix("http://http://x"), "http://x");
}

TEST(QZLRemoveHttpPrefix, LeavesOtherAddressesAsTheyAre) {
    for (const char* address : {"HTTP://x", "Https://x", " http://x", "x http://", "http:/x", "ftp://x", "http", ""}) {
        EXPECT_EQ(QZLRemoveHttpPrefix(address), address);
    }
}

TEST(QZLRemoveHttpPrefix, OfAnAbsentAddressIsAbsent) {
    EXPECT_EQ(QZLRemoveHttpPrefix(std::nullopt), std::nullopt);
}

}  // namespace
