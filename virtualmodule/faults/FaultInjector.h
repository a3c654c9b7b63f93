// SPDX-License-Identifier: MIT
#pragma once

#include "virtualmodule/faults/Faults.h"
#include "virtualmodule/wires/Message.h"
#include "virtualmodule/wires/Watch.h"

#include <array>
#include <initializer_list>
#include <utility>

namespace VirtualModule {

/// The faults of one module. Its faulty parts count what they do, and let each fault strike where it
/// would change something, if it strikes at this count.
class FaultInjector {
public:
    /// How the whole module fails.
    enum class Outage : std::uint8_t {
        NONE,
        DEAD,   // it does nothing until the next reset
        REBOOT, // it boots by itself
    };

    /// std::invalid_argument for a VALUE that the table does not have.
    FaultInjector(const std::vector<Fault>& faults, const Watch& watch);

    /// One more fault, which takes the place of those that will not strike again; std::invalid_argument as
    /// above.
    void Add(const Fault& fault);

    /// Whether any fault has struck.
    bool HasStruck() const { return _struck; }

    /// Nothing goes wrong from now on; what went wrong stays so until the next reset.
    void Clear() { _faults.clear(); }

    /// One more of these.
    void Count(Counts what) { ++_counted[static_cast<std::size_t>(what)]; }

    /// One more request to the master or, `bootloader`, to the bootloader.
    void CountRequest(const Message& request, bool bootloader);

    /// How many there were since the module was made.
    unsigned Counted(Counts what) const { return _counted[static_cast<std::size_t>(what)]; }

    /// Whether the module has any of these faults, in force or not.
    bool HasAnyOf(std::initializer_list<FaultId> ids) const;

    /// Lets the fault strike, which is logged, while it is in force; null otherwise.
    const Fault* Strike(FaultId id);
    /// Lets the first of these faults strike that is in force; null if none is.
    const Fault* Strike(std::initializer_list<FaultId> ids);

    /// The VALUE of the fault if it strikes, else `right`.
    unsigned Falsify(FaultId id, unsigned right) {
        const Fault* fault = Strike(id);
        return fault != nullptr ? fault->value : right;
    }

    /// The module fails from now on.
    void Fail(Outage outage) { _outage = outage; }

    bool IsFailing() const { return _outage != Outage::NONE; }

    bool Reboots() const { return _outage == Outage::REBOOT; }

    /// The module has booted and fails no more.
    void Recover() { _outage = Outage::NONE; }

private:
    struct Armed {
        Fault fault;
        Counts counts;
        unsigned logged = 0; // the last count at which it struck
    };

    bool AtIts(Counts counts) const;
    bool IsSpent(const Armed& armed) const;

    std::vector<Armed> _faults;
    const Watch& _watch;
    std::array<unsigned, COUNTS> _counted{};
    Counts _request = Counts::REQUESTS; // what else the last request counts as
    Outage _outage = Outage::NONE;
    bool _struck = false;
};

} // namespace VirtualModule
