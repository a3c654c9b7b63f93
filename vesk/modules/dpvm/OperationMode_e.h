// SPDX-License-Identifier: MIT
#pragma once

namespace Vesk::Modules::DPVM {

/// The operation modes of a PROFIBUS DP master.
enum class OperationMode_e : unsigned char {
    OFFLINE = 0x00,
    STOP = 0x40,
    CLEAR = 0x80,
    OPERATE = 0xC0,
};

} // namespace Vesk::Modules::DPVM
