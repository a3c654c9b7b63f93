// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/system/Array.h"
#include "vesk/system/String.h"

#include <memory>

namespace System::IO {

class File {
public:
    /// Writes all of `bytes` to the file at `path`, which is created or replaced as a whole: the bytes go to
    /// a new file beside it, readable by its owner only, which then takes the name. So a link that stands at
    /// `path` is replaced and not followed, and no reader ever meets half a file. IOException on failure, and
    /// for a path at which something other than a file or a link stands, such as a device.
    static void WriteAllBytes(const String& path, const std::shared_ptr<IArray<unsigned char>>& bytes);
};

} // namespace System::IO
