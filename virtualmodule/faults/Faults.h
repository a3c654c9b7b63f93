// SPDX-License-Identifier: MIT
#pragma once

#include "failures/Outcome.h"
#include "virtualmodule/faults/Fault.h"

namespace VirtualModule {

using Failures::AllOutcomes;
using Failures::Outcome;
namespace Outcomes = Failures::Outcomes;

/// What a fault's STEP counts, since the module was made.
enum class Counts : std::uint8_t {
    BOOTS,             // resets, each with the boot that follows it
    INTERRUPTS,        // of either program, the one of its power-on included
    OUTPUT_TURNS,      // interrupts at which the running master may hand over the output area
    REQUESTS,          // requests that the module takes out of its mailbox
    DATABASE_INFOS,    // answers to GetDatabaseInfo
    DATABASE_COMMANDS, // requests of a database download, from StartDatabaseDownload to EndDatabaseDownload
    FIRMWARE_REQUESTS, // requests to the bootloader
};

inline constexpr std::size_t COUNTS = 7;

/// "boots", "interrupts" and so on.
std::string_view Name(Counts counts);

/// One row of the table: a fault, with one range of its VALUE.
struct FaultKind {
    /// The life for which the row speaks: the master is brought up with an empty flash, exchanges data and
    /// serves; or the bootloader takes a firmware.
    enum class Life : std::uint8_t { MASTER, FIRMWARE };

    struct Values {
        std::string_view name; // "MS", "BITS" and so on; empty: the fault takes no VALUE
        unsigned usual = 0;    // an example; the first row's counts where VALUE is left out
        unsigned least = 0;
        unsigned most = 0;
    };

    FaultId id;
    std::string_view name;
    Counts counts;
    unsigned step;          // where STEP is left out
    unsigned count;         // where COUNT is left out; 0: from then on
    Values values;          // the ranges of rows with the same name do not meet
    std::string_view wrong; // what goes wrong
    /// How a life ends: first, with the usual step, count and value; then, what else may come of others, and
    /// of the other life. Where a fault does not come to strike, or only when all but the last is done,
    /// nothing comes of it (SAME_DATA), whatever stands here.
    std::vector<const Outcome*> outcomes;
    Life life = Life::MASTER;

    /// Whether the row is about this VALUE; 0 where it takes none.
    bool Takes(unsigned value) const;

    const Outcome& Promise() const { return *outcomes.front(); }

    /// The row's own example.
    Fault Usual() const { return {id, step, count, values.usual}; }

    /// Its text form for a list, for example "boot-late[=MS]".
    std::string Usage() const;
};

/// All faults, in the order of a module's life.
const std::vector<FaultKind>& Faults();

/// The first row of a fault.
const FaultKind& KindOf(FaultId id);
/// The row that is about this VALUE of a fault; std::invalid_argument if there is none.
const FaultKind& KindOf(FaultId id, unsigned value);

} // namespace VirtualModule
