#include "host/Files.hpp"

#include "tests/support/TemporaryDirectory.hpp"

#include <gtest/gtest.h>
#include <unistd.h>

#include <QtGui/QImage>
#include <fstream>
#include <sstream>

namespace {

namespace fs = std::filesystem;

std::string contents(const fs::path& file) {
    std::ostringstream text;
    text << std::ifstream(file).rdbuf();
    return text.str();
}

TEST(Files, AWrittenTextIsThere) {
    const fake::TemporaryDirectory directory;
    EXPECT_EQ(host::writeTextFile(directory.path() / "a.json", "{}\n"), std::nullopt);
    EXPECT_EQ(contents(directory.path() / "a.json"), "{}\n");
}

TEST(Files, AFailedWriteNamesTheFileAndLeavesNothing) {
    const fake::TemporaryDirectory directory;
    const auto failure = host::writeTextFile(directory.path() / "missing" / "a.json", "{}\n");
    ASSERT_TRUE(failure);
    EXPECT_EQ(failure->find("cannot write " + (directory.path() / "missing" / "a.json").string() + ": "), 0U);
    EXPECT_TRUE(fs::is_empty(directory.path()));
}

TEST(Files, APictureHoldsTheFramesColours) {
    const fake::TemporaryDirectory directory;
    const std::array pixels{std::byte{10}, std::byte{20}, std::byte{30}, std::byte{0},
                            std::byte{40}, std::byte{50}, std::byte{60}, std::byte{0}};
    EXPECT_EQ(host::writePngFile(directory.path() / "a.png", pixels, 2, 1), std::nullopt);
    const QImage image(QString::fromStdString((directory.path() / "a.png").string()));
    ASSERT_EQ(image.size(), QSize(2, 1));
    EXPECT_EQ(image.pixel(0, 0), qRgb(30, 20, 10));
    EXPECT_EQ(image.pixel(1, 0), qRgb(60, 50, 40));
}

TEST(Files, AFrameThatCouldNotBeReadBackIsNoPicture) {
    const fake::TemporaryDirectory directory;
    EXPECT_TRUE(host::writePngFile(directory.path() / "a.png", {}, 2, 1));
    EXPECT_TRUE(fs::is_empty(directory.path()));
}

TEST(Files, AMissingOutputDirectoryIsMade) {
    const fake::TemporaryDirectory directory;
    EXPECT_EQ(host::prepareDirectory(directory.path() / "a" / "b"), std::nullopt);
    EXPECT_TRUE(fs::is_directory(directory.path() / "a" / "b"));
}

TEST(Files, AFileIsNoOutputDirectory) {
    const fake::TemporaryDirectory directory;
    std::ofstream(directory.path() / "file") << "x";
    EXPECT_TRUE(host::prepareDirectory(directory.path() / "file"));
    EXPECT_TRUE(host::prepareDirectory(directory.path() / "file" / "below"));
}

}  // namespace
