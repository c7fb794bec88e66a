// The tests' own look for error reports, of which most tests expect none.
#include "tests/hosts/Home.hpp"

#include <gtest/gtest.h>

namespace hosts {
namespace {

TEST(Home, HoldsNoErrorReportAtFirstNorWithSettings) {
    const Home home;
    EXPECT_FALSE(home.holdsErrorReport());
    home.storeSetting("MultiScreen=false");
    EXPECT_FALSE(home.holdsErrorReport());
}

TEST(Home, HoldsTheErrorReportThatWasStored) {
    const Home home;
    home.storeSetting("SavedErrorCode=200");
    EXPECT_TRUE(home.holdsErrorReport());
    EXPECT_NE(home.errorReport().find("SavedErrorCode=200\n"), std::string::npos);
}

}  // namespace
}  // namespace hosts
