// SPDX-License-Identifier: MIT
#pragma once

#include "virtualmodule/commands/Message.h"
#include "virtualmodule/faults/Faults.h"
#include "virtualmodule/wires/Watch.h"

#include <array>
#include <initializer_list>
#include <utility>

namespace VirtualModule {

/// The faults of one module. The module counts what it does and asks, where a fault would change it, whether
/// that fault strikes at this count.
class FaultInjector {
public:
    /// How the whole module fails.
    enum class Outage : std::uint8_t {
        NONE,
        DEAD,   // its program is gone until the next reset
        REBOOT, // it boots by itself
    };

    /// std::invalid_argument for a VALUE that the table does not have.
    FaultInjector(const std::vector<Fault>& faults, const Watch& watch);

    /// Whether any fault has struck.
    bool HasStruck() const;

    /// No fault strikes any more.
    void Clear() { _faults.clear(); }

    /// One more of these.
    void Count(Counts what) { ++_counted[static_cast<std::size_t>(what)]; }

    /// One more request to the master or, `bootloader`, to the bootloader.
    void CountRequest(const Message& request, bool bootloader);

    /// How many there were since the module was made.
    unsigned Counted(Counts what) const { return _counted[static_cast<std::size_t>(what)]; }

    /// The fault while it is in force, else null.
    const Fault* Strikes(FaultId id);
    /// Any of these faults that is in force, else null.
    const Fault* Strikes(std::initializer_list<FaultId> ids);

    /// The VALUE of the fault while it is in force, else `right`.
    unsigned Value(FaultId id, unsigned right) {
        const Fault* fault = Strikes(id);
        return fault != nullptr ? fault->value : right;
    }

    /// The module fails as soon as the step that it is in has ended.
    void Fail(Outage outage) { _outage = outage; }

    bool Failing() const { return _outage != Outage::NONE; }

    Outage TakeOutage() { return std::exchange(_outage, Outage::NONE); }

private:
    struct Armed {
        Fault fault;
        Counts counts;
        unsigned logged = 0; // the last count at which it struck
    };

    bool AtIts(Counts counts) const;

    std::vector<Armed> _faults;
    const Watch& _watch;
    std::array<unsigned, COUNTS> _counted{};
    Counts _request = Counts::REQUESTS; // what else the last request counts as
    Outage _outage = Outage::NONE;
};

} // namespace VirtualModule
