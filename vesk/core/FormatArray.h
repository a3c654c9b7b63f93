// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/system/Array.h"
#include "vesk/system/String.h"

#include <memory>

namespace Vesk {

/// The one text form of arrays: "[", the elements separated by ", ", "]". Each element is `prefix` (null for
/// none) and its value in base `base`, left-padded with "0" to `width` digits.
System::String FormatArray(const std::shared_ptr<System::IArray<unsigned char>>& array, int index, int count,
                           const System::String& prefix, int width, int base);
System::String FormatArray(const std::shared_ptr<System::IArray<unsigned short>>& array, int index, int count,
                           const System::String& prefix, int width, int base);

} // namespace Vesk
