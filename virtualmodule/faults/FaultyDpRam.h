// SPDX-License-Identifier: MIT
#pragma once

#include "virtualmodule/faults/FaultInjector.h"

namespace VirtualModule {

/// A DPRAM between whose two sides something is broken. The module works on memory of its own; at each of its
/// steps it gets what the host has written, and the host gets what the fault lets through.
///
/// So a fault shows from one step of the module to the next, not within a step: a host that writes a byte and
/// reads it back at once still finds what it wrote, and a byte of two minds is the same in two reads of one
/// moment. A host's write of the very value that the fault shows in that place is not seen.
class FaultyDpRam {
public:
    /// Whether any of these faults needs it.
    static bool IsNeeded(const FaultInjector& faults);

    /// `host` is the memory that the host maps.
    FaultyDpRam(std::span<volatile std::uint8_t> host, FaultInjector& faults);

    /// The memory that the module works on.
    std::span<volatile std::uint8_t> ModuleSide() { return {_module.data(), _module.size()}; }

    /// Before the module looks: hands over what the host has written.
    void TakeHostWrites();
    /// After the module wrote, and before it raises an interrupt: lets the host see.
    void Show();

private:
    void Falsify(Bytes& bytes);

    std::span<volatile std::uint8_t> _host;
    FaultInjector& _faults;
    Bytes _module;
    Bytes _shown; // what the host's memory holds, as far as the module knows
    std::uint64_t _steps = 0;
};

} // namespace VirtualModule
