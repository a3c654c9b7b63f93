// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/hostinterface/MasterDpRam.h"

/// The limit that everything is held against: the bare accesses to the DPRAM, one for each byte in ascending
/// order, written by hand and eight to a round. No code that reaches the module byte by byte is faster.
namespace Accesses {

namespace MasterDpRam = Vesk::HostInterface::MasterDpRam;

/// Moves `count` bytes; one of the two sides is volatile.
template <class Source, class Destination>
__attribute__((noinline)) void Move(const Source* from, Destination* to, int count) {
    int i = 0;
    for (; i + 8 <= count; i += 8) {
        to[i] = from[i];
        to[i + 1] = from[i + 1];
        to[i + 2] = from[i + 2];
        to[i + 3] = from[i + 3];
        to[i + 4] = from[i + 4];
        to[i + 5] = from[i + 5];
        to[i + 6] = from[i + 6];
        to[i + 7] = from[i + 7];
    }
    for (; i < count; ++i)
        to[i] = from[i];
}

/// The accesses of one full exchange of `count` bytes each way.
inline void Exchange(volatile unsigned char* dpRam, const unsigned char* in, unsigned char* out, int count) {
    static_cast<void>(dpRam[MasterDpRam::VELMO_INDICATION]);
    static_cast<void>(dpRam[MasterDpRam::VELMO_INDICATION_COMPANION]);
    static_cast<void>(dpRam[MasterDpRam::OutArea::OFFSET]);
    static_cast<void>(dpRam[MasterDpRam::OutArea::OFFSET + 1]);
    Move(dpRam + MasterDpRam::OUTPUT_AREA, out, count);
    Move(in, dpRam + MasterDpRam::INPUT_AREA, count);
    dpRam[MasterDpRam::APPLICATION_INDICATION] = 3;
    dpRam[MasterDpRam::APPLICATION_INDICATION_COMPANION] = 3;
}

} // namespace Accesses
