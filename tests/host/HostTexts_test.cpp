#include "host/HostTexts.hpp"

#include "tests/support/TestBundle.hpp"

#include <gtest/gtest.h>

namespace {

using host::HostTexts;

TEST(HostTexts, AreEnglishWithoutABundle) {
    EXPECT_EQ(HostTexts(nullptr).text("HOST_CONFIGURE_CLOSE"), "&Close");
}

TEST(HostTexts, AreEnglishWhereTheBundleLacksThem) {
    const fake::Bundle bundle;
    EXPECT_EQ(HostTexts(platform::Bundle::containing(nullptr)).text("HOST_CONFIGURE_CLOSE"), "&Close");
}

TEST(HostTexts, AreTheBundlesWhereItHasThem) {
    const fake::Bundle bundle({{"Host", {{"HOST_CONFIGURE_CLOSE", "&Shut"}}}});
    EXPECT_EQ(HostTexts(platform::Bundle::containing(nullptr)).text("HOST_CONFIGURE_CLOSE"), "&Shut");
}

TEST(HostTexts, WithoutATextTheKeyIsSeen) {
    EXPECT_EQ(HostTexts(nullptr).text("HOST_UNKNOWN"), "HOST_UNKNOWN");
}

}  // namespace
