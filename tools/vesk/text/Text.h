// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/system/Array.h"

#include <initializer_list>
#include <string>
#include <vector>

/// How the commands write values for people.
namespace VeskTool {

/// "0x" and the value.
std::string Hex(unsigned int value);
/// The same with two digits at least.
std::string ByteText(unsigned char byte);
/// The bytes as pairs of digits with blanks between; "-" for none.
std::string HexBytes(System::IArray<unsigned char>& bytes);
/// A configuration's checksum as it stands in a database's description: eight digits.
std::string ChecksumText(unsigned int checksum);
/// "1.2.3".
std::string Version(std::initializer_list<unsigned int> parts);
/// "12.3 ms".
std::string Milliseconds(double milliseconds);
/// `text`, which is UTF-8, followed by blanks up to `width` characters.
std::string Padded(const std::string& text, std::size_t width);

/// Addresses with runs shortened: "3-5, 9"; "none" for none. `stations` is in ascending order.
std::string Addresses(const std::vector<int>& stations);
/// Rows of cells as lines without a line feed: each column is as wide as its widest cell, two blanks stand
/// between them, and none at the end.
std::vector<std::string> TableLines(const std::vector<std::vector<std::string>>& rows);
/// The parts in one text, with `separator` between them.
std::string Joined(const std::vector<std::string>& parts, const std::string& separator);
/// `text` with the capital letters of ASCII made small.
std::string Lower(std::string text);

} // namespace VeskTool
