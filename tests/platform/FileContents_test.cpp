#include "platform/FileContents.hpp"

#include "tests/support/Files.hpp"
#include "tests/support/FullDisk.hpp"
#include "tests/support/TemporaryDirectory.hpp"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <atomic>
#include <filesystem>
#include <iterator>
#include <span>
#include <string>
#include <thread>

namespace {

class FileContents : public testing::Test {
protected:
    static std::error_code replace(const std::filesystem::path& path, const std::string& bytes) {
        return platform::replaceFile(path, std::as_bytes(std::span(bytes)));
    }
    auto filesInDirectory() const {
        const std::filesystem::directory_iterator entries(directory.path());
        return std::distance(begin(entries), end(entries));
    }

    fake::TemporaryDirectory directory;
    std::filesystem::path file = directory.path() / "file";
};

TEST_F(FileContents, ComeBackAsTheyWereWritten) {
    for (const std::string& bytes : {std::string(), std::string("a\0b\n", 4), std::string(1000000, '\xFF')}) {
        EXPECT_FALSE(replace(file, bytes));
        EXPECT_TRUE(platform::fileContents(file) == bytes);
    }
    EXPECT_EQ(filesInDirectory(), 1);
}

TEST_F(FileContents, OfWhatIsNoRegularFileAreNone) {
    std::string contents;
    EXPECT_EQ(platform::readFile(file, 100, contents), std::errc::no_such_file_or_directory);
    EXPECT_TRUE(platform::readFile(directory.path(), 100, contents));
    ASSERT_EQ(mkfifo(file.c_str(), 0600), 0);
    EXPECT_TRUE(platform::readFile(file, 100, contents)) << "and nobody waits for a writer";
    EXPECT_EQ(platform::fileContents("/dev/zero"), "");
}

TEST_F(FileContents, LongerThanAllowedAreNotRead) {
    fake::writeFile(file, "12345");
    std::string contents;
    EXPECT_FALSE(platform::readFile(file, 5, contents));
    EXPECT_EQ(contents, "12345");
    EXPECT_EQ(platform::readFile(file, 4, contents), std::errc::file_too_large);
}

TEST_F(FileContents, AFullDiskLeavesTheFormerFileAndNothingElse) {
    const std::string former(200, 'f');
    fake::writeFile(file, former);
    for (const rlim_t bytes : {0, 1, 4096, 99999}) {
        const fake::FullDisk disk(bytes);
        EXPECT_TRUE(replace(file, std::string(100000, 'x'))) << bytes;
        EXPECT_TRUE(fake::readFile(file) == former);
        EXPECT_EQ(filesInDirectory(), 1);
    }
    const fake::FullDisk disk(100000);
    EXPECT_FALSE(replace(file, std::string(100000, 'x')));
}

TEST_F(FileContents, AReaderSeesOneOfTwoFilesAndNoMixtureOfThem) {
    const std::string small(10, 's');
    const std::string large(100000, 'l');
    ASSERT_FALSE(replace(file, small));
    std::atomic<bool> done = false;
    std::thread writer([&] {
        for (int round = 0; round < 1000; ++round) {
            EXPECT_FALSE(replace(file, round % 2 == 0 ? large : small));
        }
        done = true;
    });
    while (!done) {
        const std::string seen = platform::fileContents(file);
        EXPECT_TRUE(seen == small || seen == large) << seen.size() << " bytes";
    }
    writer.join();
}

TEST_F(FileContents, AFileForItsOwnerAloneIsReadByNobodyElse) {
    ASSERT_FALSE(platform::replaceFile(file, std::as_bytes(std::span("secret")), platform::Readers::OwnerAlone));
    struct stat status {};
    ASSERT_EQ(stat(file.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0600U);
}

}  // namespace
