// SPDX-License-Identifier: MIT
#pragma once

#include <nlohmann/json.hpp>

#include <span>
#include <string>
#include <string_view>

/// How the commands write bytes that may be anything.
namespace VeskTool {

/// The text with everything but printable ASCII as \xNN, so that it cannot do anything to a terminal.
std::string Printable(std::string_view text);

/// The text, UTF-8, with control characters, those that turn the direction of writing and what is no UTF-8 as
/// \xNN: names of files, and whatever else somebody else has written.
std::string Harmless(std::string_view text);

/// Two digits for each byte, without blanks; what JSON gets.
std::string HexDigits(std::span<const unsigned char> bytes);

/// "0x" and at least four digits.
std::string HexOffset(int offset);

/// Lines of 16 bytes, each with its offset, the first one `offset`; lines of nothing but zero are folded into
/// one. Every line ends with a line feed.
std::string HexLines(std::span<const unsigned char> bytes, int offset);

/// The JSON as the commands print it; in a Series a line. What is not UTF-8, a file's name say, does not make
/// it fail.
std::string JsonText(const nlohmann::ordered_json& json);

/// The same in one line, for one object of several.
std::string JsonLine(const nlohmann::ordered_json& json);

} // namespace VeskTool
