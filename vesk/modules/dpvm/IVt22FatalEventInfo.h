// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/system/Array.h"
#include "vesk/system/TimeSpan.h"

#include <memory>

namespace Vesk::Modules::DPVM {

/// Why the master module stopped, in the firmware's own terms.
class IVt22FatalEventInfo : public System::Object {
public:
    virtual unsigned short ErrorCode() = 0;
    virtual unsigned short ErrorCause() = 0;
    virtual unsigned short TaskId() = 0;
    /// The firmware's own clock, which counts milliseconds.
    virtual std::shared_ptr<System::TimeSpan> TimeStamp() = 0;
    /// 24 bytes.
    virtual std::shared_ptr<System::IArray<unsigned char>> AdditionalInfo() = 0;
    virtual unsigned short SourceLine() = 0;
    /// 26 characters, zero bytes included.
    virtual System::String SourceFile() = 0;
};

} // namespace Vesk::Modules::DPVM
