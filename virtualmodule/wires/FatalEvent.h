// SPDX-License-Identifier: MIT
#pragma once

#include "virtualmodule/wires/DpRam.h"

namespace VirtualModule {

/// Why the master stops.
struct FatalEvent {
    std::uint16_t errorCode = 0;
    std::uint16_t errorCause = 0;
    std::uint16_t taskId = 0;
    std::uint64_t timeStamp = 0; // milliseconds
    Bytes additionalInfo;        // the first 24 bytes count
    std::uint16_t sourceLine = 0;
    std::string sourceFile; // the first 26 characters count

    /// Writes it into the fatal-event block.
    void Write(DpRam& dpRam) const;
};

} // namespace VirtualModule
