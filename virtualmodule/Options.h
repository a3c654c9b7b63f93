// SPDX-License-Identifier: MIT
#pragma once

#include "virtualmodule/bus/Bus.h"
#include "virtualmodule/faults/Fault.h"

#include <functional>
#include <vector>

namespace VirtualModule {

/// What differs from one module to another. Times are nanoseconds of the module's clock.
struct Options {
    std::uint16_t moduleType = 0x0201;
    std::uint16_t fieldbusType = 0x0005;
    std::uint16_t vendorId = 0x0001;
    std::uint16_t bootloaderModuleType = 0x0101;
    std::uint16_t bootloaderFieldbusType = 0x0000;
    std::uint16_t bootloaderVendorId = 0x0000;

    /// From the release of reset to the first interrupt.
    std::int64_t bootDelay = 1'000'000;
    /// The least time between two interrupts of the master; 0: the next one follows the host's write at once.
    std::int64_t interruptPeriod = 1'000'000;
    /// Erasing the application's flash.
    std::int64_t eraseTime = 300'000'000;
    /// Checking and closing a downloaded program.
    std::int64_t burnTime = 100'000'000;
    /// The mode that the master goes into once it is initialised, unless the host chose one before.
    OperationMode startMode = OperationMode::OPERATE;
    /// What goes wrong; Faults.cpp has the list. std::invalid_argument from the module for a VALUE that is
    /// none.
    std::vector<Fault> faults;
    /// Whether Module::Strike may add to them.
    bool faultsOnRequest = false;
    /// Called before each interrupt, so before the host may look at what it announces; may be empty. What is
    /// to outlive this process, the flash above all, is put away here.
    std::function<void()> beforeInterrupt{};
};

} // namespace VirtualModule
