#include "renderhost/QZLEndian.hpp"

#include <array>

namespace {

/// The byte of that significance, 0 for the least. By shifts, so that neither the machine's own order nor the
/// position's alignment matters.
constexpr std::byte byteOf(std::uint32_t value, unsigned significance) {
    return static_cast<std::byte>(value >> (8U * significance));
}

/// The number of items written, 1 or 0.
template <typename Value>
std::size_t writeItem(Value value, std::byte* (*writeToBuffer)(Value, std::byte*), std::FILE* file) {
    std::array<std::byte, sizeof(Value)> item{};
    writeToBuffer(value, item.data());
    return std::fwrite(item.data(), item.size(), 1, file);
}

}  // namespace

std::uint16_t QZLEndianSwap16(std::uint16_t value) {
    return static_cast<std::uint16_t>((value << 8U) | (value >> 8U));
}

std::uint32_t QZLEndianSwap32(std::uint32_t value) {
    return (value << 24U) | ((value << 8U) & 0x00FF0000U) | ((value >> 8U) & 0x0000FF00U) | (value >> 24U);
}

std::byte* QZLEndianBufferWriteLE16(std::uint16_t value, std::byte* position) {
    *position++ = byteOf(value, 0);
    *position++ = byteOf(value, 1);
    return position;
}

std::byte* QZLEndianBufferWriteBE16(std::uint16_t value, std::byte* position) {
    return QZLEndianBufferWriteLE16(QZLEndianSwap16(value), position);
}

std::byte* QZLEndianBufferWriteLE32(std::uint32_t value, std::byte* position) {
    *position++ = byteOf(value, 0);
    *position++ = byteOf(value, 1);
    *position++ = byteOf(value, 2);
    *position++ = byteOf(value, 3);
    return position;
}

std::byte* QZLEndianBufferWriteBE32(std::uint32_t value, std::byte* position) {
    return QZLEndianBufferWriteLE32(QZLEndianSwap32(value), position);
}

std::size_t QZLEndianFileWriteLE16(std::uint16_t value, std::FILE* file) {
    return writeItem(value, QZLEndianBufferWriteLE16, file);
}

std::size_t QZLEndianFileWriteBE16(std::uint16_t value, std::FILE* file) {
    return writeItem(value, QZLEndianBufferWriteBE16, file);
}

std::size_t QZLEndianFileWriteLE32(std::uint32_t value, std::FILE* file) {
    return writeItem(value, QZLEndianBufferWriteLE32, file);
}

std::size_t QZLEndianFileWriteBE32(std::uint32_t value, std::FILE* file) {
    return writeItem(value, QZLEndianBufferWriteBE32, file);
}
