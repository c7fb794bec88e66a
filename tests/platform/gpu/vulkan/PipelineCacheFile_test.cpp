#include "platform/gpu/vulkan/PipelineCacheFile.hpp"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <string>

namespace gpu::vulkan {
namespace {

constexpr std::size_t ownHeaderBytes = 32;

constexpr PipelineCacheIdentity identity{.vendor = 0x10005, .device = 7, .uuid = {1, 2, 3, 4, 5, 6, 7, 8}};

void append(std::vector<std::byte>& bytes, std::uint32_t value) {
    const std::size_t end = bytes.size();
    bytes.resize(end + sizeof(value));
    std::memcpy(bytes.data() + end, &value, sizeof(value));
}

/// What a driver would hand out: its header, then something.
std::vector<std::byte> driverData(const PipelineCacheIdentity& made = identity, std::uint32_t headerSize = 32,
                                  std::uint32_t headerVersion = 1) {
    std::vector<std::byte> data;
    append(data, headerSize);
    append(data, headerVersion);
    append(data, made.vendor);
    append(data, made.device);
    for (const std::uint8_t byte : made.uuid) {
        data.push_back(std::byte{byte});
    }
    for (int i = 0; i < 100; ++i) {
        data.push_back(static_cast<std::byte>(i * 7));
    }
    return data;
}

class PipelineCacheFile : public testing::Test {
protected:
    PipelineCacheFile() {
        std::string pattern = (std::filesystem::temp_directory_path() / "pipeline-cache-XXXXXX").string();
        _directory = ::mkdtemp(pattern.data());
    }
    ~PipelineCacheFile() override {
        std::error_code error;
        std::filesystem::permissions(_directory, std::filesystem::perms::owner_all, error);
        std::filesystem::remove_all(_directory, error);
    }

    std::filesystem::path file() const { return _directory / "a" / "b" / "pipelines.cache"; }

    std::vector<std::byte> fileBytes() const {
        std::ifstream stream(file(), std::ios::binary);
        const std::string text(std::istreambuf_iterator<char>(stream), {});
        const auto bytes = std::as_bytes(std::span(text));
        return {bytes.begin(), bytes.end()};
    }

    std::filesystem::path _directory;
};

bool isAccepted(const std::vector<std::byte>& bytes) {
    return !parsePipelineCacheFile(bytes, identity).empty();
}

TEST_F(PipelineCacheFile, ComesBackAsItWasWritten) {
    ASSERT_TRUE(writePipelineCacheFile(file(), driverData()));
    EXPECT_EQ(readPipelineCacheFile(file(), identity), driverData());
}

TEST_F(PipelineCacheFile, ReplacesTheFormerOneAndLeavesNothingElse) {
    ASSERT_TRUE(writePipelineCacheFile(file(), driverData(identity, 33)));
    ASSERT_TRUE(writePipelineCacheFile(file(), driverData()));
    EXPECT_EQ(readPipelineCacheFile(file(), identity), driverData());
    const std::filesystem::directory_iterator entries(file().parent_path());
    EXPECT_EQ(std::distance(begin(entries), end(entries)), 1);
}

TEST_F(PipelineCacheFile, IsRefusedWhenTruncatedAnywhereOrLonger) {
    ASSERT_TRUE(writePipelineCacheFile(file(), driverData()));
    std::vector<std::byte> bytes = fileBytes();
    ASSERT_TRUE(isAccepted(bytes));
    for (std::size_t length = 0; length < bytes.size(); ++length) {
        EXPECT_FALSE(isAccepted({bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(length)})) << length;
    }
    bytes.push_back(std::byte{0});
    EXPECT_FALSE(isAccepted(bytes));
}

TEST_F(PipelineCacheFile, IsRefusedWithAnyBitTurned) {
    ASSERT_TRUE(writePipelineCacheFile(file(), driverData()));
    const std::vector<std::byte> bytes = fileBytes();
    for (std::size_t bit = 0; bit < bytes.size() * 8; ++bit) {
        std::vector<std::byte> damaged = bytes;
        damaged[bit / 8] ^= static_cast<std::byte>(1U << (bit % 8));
        EXPECT_FALSE(isAccepted(damaged)) << "bit " << bit;
    }
}

TEST_F(PipelineCacheFile, IsRefusedWhenMadeForAnotherDriver) {
    const auto isRefused = [this](const std::vector<std::byte>& data) {
        EXPECT_TRUE(writePipelineCacheFile(file(), data));
        return readPipelineCacheFile(file(), identity).empty();
    };
    PipelineCacheIdentity vendor = identity;
    ++vendor.vendor;
    PipelineCacheIdentity device = identity;
    ++device.device;
    PipelineCacheIdentity uuid = identity;
    ++uuid.uuid.back();
    EXPECT_TRUE(isRefused(driverData(vendor)));
    EXPECT_TRUE(isRefused(driverData(device)));
    EXPECT_TRUE(isRefused(driverData(uuid)));
    EXPECT_TRUE(isRefused(driverData(identity, 31)));
    EXPECT_TRUE(isRefused(driverData(identity, 133)));
    EXPECT_TRUE(isRefused(driverData(identity, 0xFFFFFFFF)));
    EXPECT_TRUE(isRefused(driverData(identity, 32, 2)));
    EXPECT_TRUE(isRefused({}));
    EXPECT_TRUE(isRefused({std::byte{32}}));
    EXPECT_FALSE(isRefused(driverData()));
}

TEST_F(PipelineCacheFile, HoldsTheDriversDataAfterItsOwnHeader) {
    ASSERT_TRUE(writePipelineCacheFile(file(), driverData()));
    const std::vector<std::byte> bytes = fileBytes();
    EXPECT_EQ(bytes.size(), ownHeaderBytes + driverData().size());
    EXPECT_EQ(parsePipelineCacheFile(bytes, identity).data(), bytes.data() + ownHeaderBytes);
}

TEST_F(PipelineCacheFile, ChecksumIsTheFowlerNollVoHash) {
    // Published test vectors of the 64-bit FNV-1a.
    const std::string text = "foobar";
    EXPECT_EQ(pipelineCacheChecksum({}), 0xcbf29ce484222325U);
    EXPECT_EQ(pipelineCacheChecksum(std::as_bytes(std::span(text))), 0x85944171f73967e8U);
}

TEST_F(PipelineCacheFile, AFolderThatCannotBeWrittenIsNoMatter) {
    std::ofstream(_directory / "occupied") << "a file where a folder should be";
    EXPECT_FALSE(writePipelineCacheFile(_directory / "occupied" / "pipelines.cache", driverData()));
    EXPECT_FALSE(writePipelineCacheFile("/proc/pipelines.cache", driverData()));
    EXPECT_TRUE(readPipelineCacheFile(_directory / "occupied" / "pipelines.cache", identity).empty());
    EXPECT_TRUE(readPipelineCacheFile(_directory, identity).empty());
}

TEST_F(PipelineCacheFile, AFileThatCannotBeReplacedLeavesNoRemains) {
    std::filesystem::create_directories(file() / "in the way");
    EXPECT_FALSE(writePipelineCacheFile(file(), driverData()));
    const std::filesystem::directory_iterator entries(file().parent_path());
    EXPECT_EQ(std::distance(begin(entries), end(entries)), 1);
}

}  // namespace
}  // namespace gpu::vulkan
