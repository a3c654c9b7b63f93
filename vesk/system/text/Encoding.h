// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/system/Array.h"
#include "vesk/system/String.h"

#include <memory>

/// ASCII text to bytes and back. Every byte is kept as it is in both directions, zero bytes and bytes above
/// 0x7F included, so that what was read writes back to the same bytes.
namespace System::Text::Encoding::ASCII {

/// The text of `count` bytes from `offset` on. ArgumentOutOfRangeException for a range outside the array.
String GetString(const std::shared_ptr<IArray<unsigned char>>& bytes, int offset, int count);

/// One byte per character.
std::shared_ptr<IArray<unsigned char>> GetBytes(const String& text);

} // namespace System::Text::Encoding::ASCII
