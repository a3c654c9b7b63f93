// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/system/String.h"

#include <cstdint>

/// Numbers to text and back.
namespace System::Convert {

/// `value` in `toBase` (2 .. 36), lower case, without prefix, sign or leading zeros.
String ToString(std::uint64_t value, int toBase);

/// The number that `text` writes in `fromBase` (2 .. 36): digits in either case and nothing else. A text that
/// is empty, holds anything else or exceeds 64 bits is a FormatException that quotes it.
std::uint64_t ToUInt64(const String& text, int fromBase);

} // namespace System::Convert
