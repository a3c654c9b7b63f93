// SPDX-License-Identifier: MIT
#pragma once

#include <span>
#include <string>
#include <vector>

namespace VeskTool {

/// Highest station address; slaves that have not been given one answer there.
inline constexpr unsigned int HIGHEST_ADDRESS = 126;

/// Most bytes of one acyclic read or write.
inline constexpr unsigned int MAX_RECORD_SIZE = 240;

/// A number, decimal or hexadecimal after 0x, from `least` to `most`; CLI::ValidationError, which names the
/// argument `name`, the text and the range, for anything else.
unsigned int ParseNumber(const std::string& name, const std::string& text, unsigned int least,
                         unsigned int most);

/// Bytes as hexadecimal digits, two for each, with blanks between bytes or without, and with or without 0x
/// before the first and behind blanks; CLI::ValidationError,
/// which names the argument `name` and what is wrong, for anything else.
std::vector<unsigned char> ParseHex(const std::string& name, const std::string& text);

/// Lines of 16 bytes, each with its offset and, where they are some, its printable characters.
std::string HexDump(std::span<const unsigned char> bytes);

} // namespace VeskTool
