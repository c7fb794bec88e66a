#include "foundation/QZLError.hpp"

#include "tests/support/TestBundle.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

namespace {

std::string messageOf(std::int64_t code) {
    return QZLCreateVistashadeError(code, 0).localizedDescription();
}

TEST(QZLError, CarriesDomainCodeMessageAndSubCodeAsText) {
    const platform::Error error = QZLCreateError("It failed", 302, 17);
    EXPECT_EQ(error.domain(), "QZLVistashadeErrorDomain");
    EXPECT_EQ(error.code(), 302);
    EXPECT_EQ(error.localizedDescription(), "It failed");
    EXPECT_EQ(error.userInfoText("QZLErrorSubCodeKey"), "17");
}

TEST(QZLError, CodesCoverAllOfSixtyFourBits) {
    constexpr std::int64_t least = std::numeric_limits<std::int64_t>::min();
    constexpr std::int64_t most = std::numeric_limits<std::int64_t>::max();
    EXPECT_EQ(QZLCreateError("", least, most).code(), least);
    EXPECT_EQ(QZLGetErrorSubCode(QZLCreateError("", 0, least)), least);
    EXPECT_EQ(QZLGetErrorSubCode(QZLCreateError("", 0, most)), most);
}

TEST(QZLError, SubCodesAreReadBack) {
    EXPECT_EQ(QZLGetErrorSubCode(QZLCreateError("", 200, -3)), -3);
    EXPECT_EQ(QZLCreateError("", 200, -3).userInfoText(QZLErrorSubCodeKey), "-3");
    EXPECT_EQ(QZLGetErrorSubCode(QZLCreateError("", 200, 0)), 0);
    EXPECT_EQ(QZLGetErrorSubCode(QZLCreateVistashadeError(107, 1006)), 1006);
}

TEST(QZLError, AnAbsentOrUnreadableSubCodeIsZero) {
    EXPECT_EQ(QZLGetErrorSubCode(platform::Error("other", 5, {})), 0);
    EXPECT_EQ(QZLGetErrorSubCode(platform::Error("other", 5, {{QZLErrorSubCodeKey, ""}})), 0);
    EXPECT_EQ(QZLGetErrorSubCode(platform::Error("other", 5, {{QZLErrorSubCodeKey, "none"}})), 0);
}

TEST(QZLError, EveryCodeHasItsMessage) {
    const fake::Bundle bundle({{"Vistashade",
                                {{"QZL_ERROR_GENERAL_INTERNAL_ERROR", "general"},
                                 {"QZL_ERROR_METAL_RESOURCES", "resources"},
                                 {"QZL_ERROR_DISPLAY_LINK_INITIALIZE", "display link"},
                                 {"QZL_ERROR_METAL_NOT_AVAILABLE", "not available"},
                                 {"QZL_ERROR_METAL_FEATURE_SET", "feature set"},
                                 {"QZL_ERROR_UNKNOWN", "unknown"}}}});
    for (const std::int64_t code : {100, 101, 102, 103, 104}) {
        EXPECT_EQ(messageOf(code), "general") << code;
    }
    for (const std::int64_t code : {105, 106, 107, 108, 109, 110, 303, 304}) {
        EXPECT_EQ(messageOf(code), "resources") << code;
    }
    for (const std::int64_t code : {200, 201}) {
        EXPECT_EQ(messageOf(code), "display link") << code;
    }
    for (const std::int64_t code : {300, 301}) {
        EXPECT_EQ(messageOf(code), "not available") << code;
    }
    EXPECT_EQ(messageOf(302), "feature set");
    for (const std::int64_t code : {-100, -1, 0, 99, 111, 199, 202, 299, 305, 1008}) {
        EXPECT_EQ(messageOf(code), "unknown") << code;
    }
    EXPECT_EQ(messageOf(std::numeric_limits<std::int64_t>::min()), "unknown");
    EXPECT_EQ(messageOf((std::int64_t{1} << 32) + 302), "unknown");
}

TEST(QZLError, KeepsTheCodeAndSubCodeItWasMadeFor) {
    const platform::Error error = QZLCreateVistashadeError(1008, 1003);
    EXPECT_EQ(error.domain(), QZLVistashadeErrorDomain);
    EXPECT_EQ(error.code(), 1008);
    EXPECT_EQ(QZLGetErrorSubCode(error), 1003);
}

TEST(QZLError, WithoutStringsTheKeyIsTheMessage) {
    const fake::Bundle bundle;
    EXPECT_EQ(messageOf(302), "QZL_ERROR_METAL_FEATURE_SET");
    EXPECT_EQ(messageOf(104), "QZL_ERROR_GENERAL_INTERNAL_ERROR");
    EXPECT_EQ(messageOf(110), "QZL_ERROR_METAL_RESOURCES");
    EXPECT_EQ(messageOf(111), "QZL_ERROR_UNKNOWN");
}

}  // namespace
