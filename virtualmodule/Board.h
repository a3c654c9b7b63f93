// SPDX-License-Identifier: MIT
#pragma once

#include "virtualmodule/Options.h"
#include "virtualmodule/bus/Station.h"
#include "virtualmodule/faults/FaultyDpRam.h"
#include "virtualmodule/flash/Flash.h"
#include "virtualmodule/wires/DpRam.h"
#include "virtualmodule/wires/Lines.h"
#include "virtualmodule/wires/Watch.h"

#include <memory>

namespace VirtualModule {

/// What the module has, whichever of its two programs runs, and what lasts when it is reset.
struct Board {
    Board(std::span<volatile std::uint8_t> memory, Lines& lines, Flash& flash, Options options);

    Lines& lines;
    Flash& flash;
    Options options;
    Stations stations;
    Watch watch;
    FaultInjector faults;
    std::unique_ptr<FaultyDpRam> faultyDpRam; // null while the DPRAM is good
    DpRam dpRam;
    /// The release of reset that it last booted in; its interrupts count only in that one.
    std::uint8_t generation = 0;
    bool interrupted = false; // in that release of reset
    unsigned bounces = 0;     // how often the last interrupt was repeated

    /// Nanoseconds from the release of reset to the first interrupt.
    std::int64_t BootDelay();
    /// Counts the interrupt that is due; false if the module stops dead instead.
    bool ComesToInterrupt();
    /// Pulls the interrupt line low, after everything that the host is to see.
    void RaiseInterrupt();
    /// Pulls it low again where it bounces or is stuck. True while the module stands still, so that the host
    /// sees each bounce, and that the line is stuck, before the module says anything else.
    bool RepeatInterrupt();

    /// Reports what the host has written where it may not. `mailboxIn` is where the running program has its
    /// mailbox-in, which has a report of its own.
    void CheckMemory(std::size_t mailboxIn);
};

} // namespace VirtualModule
