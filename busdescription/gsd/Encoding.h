// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace BusDescription::Gsd {

/// How the text of a file is encoded.
enum class Encoding { UTF_8, WINDOWS_1252 };

/// Takes a byte order mark off `content`, and says how what is left is encoded: in UTF-8 where there was a
/// mark or all of it is UTF-8, else in Windows-1252, which has ISO 8859-1 in it.
Encoding TakeEncoding(std::string_view& content);

/// The text in UTF-8. What is none although the file is in it, is taken for Windows-1252.
std::string ToUtf8(std::string_view text, Encoding encoding);

} // namespace BusDescription::Gsd
