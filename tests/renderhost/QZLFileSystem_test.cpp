#include "renderhost/QZLFileSystem.hpp"

#include "tests/support/ScopedEnvironment.hpp"
#include "tests/support/TemporaryDirectory.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace {

/// A home folder of its own for each test, with a Desktop.
class QZLFileSystem : public testing::Test {
protected:
    QZLFileSystem() { std::filesystem::create_directory(desktop()); }

    std::filesystem::path home() const { return _home.path(); }
    std::filesystem::path desktop() const { return _home.path() / "Desktop"; }
    void take(const std::string& name) const { std::ofstream(desktop() / name) << "taken"; }

    std::optional<std::string> next(std::uint32_t& counter, std::int32_t limit) const {
        return QZLNextAvailableFileName(QZLLocationDesktop, "Cirrane", ".bmp", counter, limit);
    }

private:
    fake::TemporaryDirectory _home;
    fake::ScopedEnvironment _homeVariable{"HOME", _home.path().string()};
};

}  // namespace

TEST_F(QZLFileSystem, LocationOneIsTheDesktopAndAnyOtherTheHomeFolder) {
    EXPECT_EQ(QZLFileSystemPath(1), desktop().string());
    EXPECT_EQ(QZLFileSystemPath(0), home().string());
    EXPECT_EQ(QZLFileSystemPath(2), home().string());
    EXPECT_EQ(QZLFileSystemPath(UINT64_MAX), home().string());
}

TEST_F(QZLFileSystem, TheDesktopNeedNotExist) {
    std::filesystem::remove(desktop());
    std::uint32_t counter = 0;
    EXPECT_EQ(QZLFileSystemPath(1), desktop().string());
    EXPECT_EQ(next(counter, 1000), (desktop() / "Cirrane 0.bmp").string());
}

TEST_F(QZLFileSystem, ANameIsMadeOfBaseNumberAndExtension) {
    std::uint32_t counter = 7;
    EXPECT_EQ(next(counter, 1000), (desktop() / "Cirrane 7.bmp").string());
    EXPECT_EQ(counter, 8U);
}

TEST_F(QZLFileSystem, TakenNumbersAreSkippedAndTheCounterMovesPastThem) {
    take("Cirrane 0.bmp");
    take("Cirrane 1.bmp");
    std::filesystem::create_directory(desktop() / "Cirrane 2.bmp");
    std::uint32_t counter = 0;
    EXPECT_EQ(next(counter, 1000), (desktop() / "Cirrane 3.bmp").string());
    EXPECT_EQ(counter, 4U);
}

TEST_F(QZLFileSystem, NumbersGoOnAlthoughNothingWasWritten) {
    std::uint32_t counter = 0;
    next(counter, 1000);
    EXPECT_EQ(next(counter, 1000), (desktop() / "Cirrane 1.bmp").string());
}

TEST_F(QZLFileSystem, ANameThatLeadsNowhereIsFree) {
    std::filesystem::create_symlink("nothing", desktop() / "Cirrane 0.bmp");
    std::uint32_t counter = 0;
    EXPECT_EQ(next(counter, 1000), (desktop() / "Cirrane 0.bmp").string());
}

TEST_F(QZLFileSystem, TheLimitEndsTheSearchForGood) {
    take("Cirrane 998.bmp");
    take("Cirrane 999.bmp");
    std::uint32_t counter = 998;
    EXPECT_EQ(next(counter, 1000), std::nullopt);
    EXPECT_EQ(counter, 1000U);
    std::filesystem::remove(desktop() / "Cirrane 999.bmp");
    EXPECT_EQ(next(counter, 1000), std::nullopt);
    EXPECT_EQ(counter, 1000U);
}

TEST_F(QZLFileSystem, TheLastNumberBelowTheLimitIsUsed) {
    std::uint32_t counter = 999;
    EXPECT_EQ(next(counter, 1000), (desktop() / "Cirrane 999.bmp").string());
    EXPECT_EQ(next(counter, 1000), std::nullopt);
}

TEST_F(QZLFileSystem, WithoutALimitTheSearchGoesOn) {
    take("Cirrane 1000.bmp");
    for (const std::int32_t limit : {0, -1}) {
        std::uint32_t counter = 1000;
        EXPECT_EQ(next(counter, limit), (desktop() / "Cirrane 1001.bmp").string());
    }
}

TEST_F(QZLFileSystem, NumbersAreSigned) {
    std::uint32_t counter = 0xFFFFFFFF;
    EXPECT_EQ(next(counter, 1000), (desktop() / "Cirrane -1.bmp").string());
    EXPECT_EQ(counter, 0U);
}

TEST_F(QZLFileSystem, AMissingBaseNamePrintsAsNull) {
    std::uint32_t counter = 0;
    EXPECT_EQ(QZLNextAvailableFileName(0, std::nullopt, ".bmp", counter, 1000), (home() / "(null) 0.bmp").string());
}
