#include "renderhost/QZLEndian.hpp"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

namespace {

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

std::vector<int> values(const std::byte* bytes, std::size_t count) {
    std::vector<int> result;
    for (std::size_t index = 0; index < count; ++index) {
        result.push_back(std::to_integer<int>(bytes[index]));
    }
    return result;
}

/// What a file writer leaves in a file.
template <typename Value>
std::vector<int> written(std::size_t (*write)(Value, std::FILE*), Value value) {
    const std::unique_ptr<std::FILE, CloseFile> file(std::tmpfile());
    EXPECT_EQ(write(value, file.get()), 1U);
    std::rewind(file.get());
    std::array<std::byte, 8> bytes{};
    const std::size_t count = std::fread(bytes.data(), 1, bytes.size(), file.get());
    return values(bytes.data(), count);
}

}  // namespace

TEST(QZLEndian, SwapExchangesTheBytes) {
    EXPECT_EQ(QZLEndianSwap16(0x1234), 0x3412);
    EXPECT_EQ(QZLEndianSwap16(0x00FF), 0xFF00);
    EXPECT_EQ(QZLEndianSwap32(0x12345678), 0x78563412U);
    EXPECT_EQ(QZLEndianSwap32(0xFF000000), 0x000000FFU);
}

TEST(QZLEndian, BufferWritersPutTheBytesInTheirOrderAtAnUnalignedPosition) {
    std::array<std::byte, 13> buffer{};
    std::byte* const start = buffer.data() + 1;
    std::byte* position = QZLEndianBufferWriteLE16(0x1234, start);
    EXPECT_EQ(position, start + 2);
    position = QZLEndianBufferWriteBE16(0x1234, position);
    EXPECT_EQ(position, start + 4);
    position = QZLEndianBufferWriteLE32(0xA1B2C3D4, position);
    EXPECT_EQ(position, start + 8);
    position = QZLEndianBufferWriteBE32(0xA1B2C3D4, position);
    EXPECT_EQ(position, start + 12);
    EXPECT_EQ(values(buffer.data(), buffer.size()),
              (std::vector{0, 0x34, 0x12, 0x12, 0x34, 0xD4, 0xC3, 0xB2, 0xA1, 0xA1, 0xB2, 0xC3, 0xD4}));
}

TEST(QZLEndian, BufferWritersNest) {
    std::array<std::byte, 6> buffer{};
    EXPECT_EQ(QZLEndianBufferWriteLE32(0x01020304, QZLEndianBufferWriteBE16(0x0506, buffer.data())), buffer.data() + 6);
    EXPECT_EQ(values(buffer.data(), 6), (std::vector{5, 6, 4, 3, 2, 1}));
}

TEST(QZLEndian, FileWritersWriteOneItemInTheirOrder) {
    EXPECT_EQ(written<std::uint16_t>(QZLEndianFileWriteLE16, 0x1234), (std::vector{0x34, 0x12}));
    EXPECT_EQ(written<std::uint16_t>(QZLEndianFileWriteBE16, 0x1234), (std::vector{0x12, 0x34}));
    EXPECT_EQ(written<std::uint32_t>(QZLEndianFileWriteLE32, 0x12345678), (std::vector{0x78, 0x56, 0x34, 0x12}));
    EXPECT_EQ(written<std::uint32_t>(QZLEndianFileWriteBE32, 0x12345678), (std::vector{0x12, 0x34, 0x56, 0x78}));
}

TEST(QZLEndian, FileWritersReturnZeroWhenTheyCannotWrite) {
    const std::unique_ptr<std::FILE, CloseFile> readOnly(std::fopen("/dev/null", "rb"));
    ASSERT_NE(readOnly, nullptr);
    EXPECT_EQ(QZLEndianFileWriteLE16(1, readOnly.get()), 0U);
    EXPECT_EQ(QZLEndianFileWriteBE16(1, readOnly.get()), 0U);
    EXPECT_EQ(QZLEndianFileWriteLE32(1, readOnly.get()), 0U);
    EXPECT_EQ(QZLEndianFileWriteBE32(1, readOnly.get()), 0U);
}
