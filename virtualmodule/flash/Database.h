// SPDX-License-Identifier: MIT
#pragma once

#include "virtualmodule/flash/SlaveRecord.h"

#include <map>

namespace VirtualModule {

/// The configuration database in the module's flash. Its records were checked when they came in.
struct Database {
    enum class State : std::uint8_t {
        NONE = 0,     // never written, or deleted
        WRITING = 1,  // a download was begun and not ended: as good as none
        COMPLETE = 2, // a download was ended
    };

    /// The lengths that a database amounts to, in bytes.
    struct Lengths {
        std::uint16_t totalOutput = 0;
        std::uint16_t totalInput = 0;
        std::uint16_t initOutput = 0; // behind the last byte that has a place in the area
        std::uint16_t initInput = 0;
    };

    State state = State::NONE;
    Bytes master;                         // empty until its record came
    std::map<std::uint8_t, Bytes> slaves; // whole records by station address
    Bytes description;

    /// The highest address that a slave may have.
    static constexpr std::uint8_t HIGHEST_SLAVE = 125;

    bool Complete() const { return state == State::COMPLETE; }

    /// Sums over all slave records.
    Lengths GetLengths() const;
    /// Whether everything in it is as it may come in; a complete one has a master record.
    bool Valid() const;
};

} // namespace VirtualModule
