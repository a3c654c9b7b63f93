// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

/// Byte strings and their big-endian numbers. Callers have checked that the bytes are there.
namespace VirtualModule {

using Bytes = std::vector<std::uint8_t>;
using ByteView = std::span<const std::uint8_t>;

inline std::uint16_t Word(unsigned high, unsigned low) {
    return static_cast<std::uint16_t>(high << 8 | low);
}

inline std::uint8_t High(unsigned word) {
    return static_cast<std::uint8_t>(word >> 8);
}

inline std::uint8_t Low(unsigned word) {
    return static_cast<std::uint8_t>(word);
}

inline std::uint16_t Get16(ByteView from, std::size_t at) {
    return Word(from[at], from[at + 1]);
}

inline std::uint32_t Get32(ByteView from, std::size_t at) {
    return std::uint32_t{Get16(from, at)} << 16 | Get16(from, at + 2);
}

inline void Append16(Bytes& to, unsigned value) {
    to.insert(to.end(), {High(value), Low(value)});
}

inline void Append32(Bytes& to, std::uint32_t value) {
    Append16(to, value >> 16);
    Append16(to, value & 0xFFFF);
}

inline void Append(Bytes& to, ByteView bytes) {
    to.insert(to.end(), bytes.begin(), bytes.end());
}

/// The label of each set bit, from bit 0 on, behind a blank.
std::string Labels(unsigned value, std::span<const char* const> labels);

/// "0x" and at least two lower-case digits.
std::string Hex(std::uint64_t value);

} // namespace VirtualModule
