// SPDX-License-Identifier: MIT
#pragma once

#include "virtualmodule/DpRam.h"
#include "virtualmodule/Flash.h"
#include "virtualmodule/Lines.h"
#include "virtualmodule/Options.h"
#include "virtualmodule/Station.h"
#include "virtualmodule/Watch.h"

namespace VirtualModule {

/// What the module has, whichever of its two programs runs, and what lasts when it is reset.
struct Board {
    DpRam dpRam;
    Lines& lines;
    Flash& flash;
    Options options;
    Stations stations;
    Watch watch;
    /// The release of reset that it last booted in; its interrupts count only in that one.
    std::uint8_t generation = 0;

    /// Reports what the host has written where it may not. `mailboxIn` is where the running program has its
    /// mailbox-in, which has a report of its own.
    void CheckMemory(std::size_t mailboxIn);
};

} // namespace VirtualModule
