#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>

// Byte order by name. Buffer writers accept unaligned positions and return the position after what they wrote; file
// writers return the number of items written, 1 or 0.

std::uint16_t QZLEndianSwap16(std::uint16_t value);
std::uint32_t QZLEndianSwap32(std::uint32_t value);

std::byte* QZLEndianBufferWriteLE16(std::uint16_t value, std::byte* position);
std::byte* QZLEndianBufferWriteBE16(std::uint16_t value, std::byte* position);
std::byte* QZLEndianBufferWriteLE32(std::uint32_t value, std::byte* position);
std::byte* QZLEndianBufferWriteBE32(std::uint32_t value, std::byte* position);

std::size_t QZLEndianFileWriteLE16(std::uint16_t value, std::FILE* file);
std::size_t QZLEndianFileWriteBE16(std::uint16_t value, std::FILE* file);
std::size_t QZLEndianFileWriteLE32(std::uint32_t value, std::FILE* file);
std::size_t QZLEndianFileWriteBE32(std::uint32_t value, std::FILE* file);
