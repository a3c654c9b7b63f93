// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/core/Timer.h"
#include "vesk/hostinterface/IHostInterface.h"

/// The way of a module out of reset, whether its firmware or its bootloader is to run. `timer` is the
/// time-out of the module object's state. Each step that fails says so again when it is asked again.
namespace Vesk::Modules::DPVM::StartUp {

/// Asserts reset, for a pulse of 0.5 ms.
void HoldInReset(HostInterface::IHostInterface& hostInterface, Timer& timer);

/// Whether the pulse is over. ModuleStateException when the interrupt line is asserted then.
bool PulseIsOver(HostInterface::IHostInterface& hostInterface, const Timer& timer);

/// Releases reset; the module has `nanoseconds` to boot.
void ReleaseReset(HostInterface::IHostInterface& hostInterface, Timer& timer, std::int64_t nanoseconds);

/// ArgumentOutOfRangeException unless the DPRAM has `size` bytes.
void CheckSize(HostInterface::IHostInterface& hostInterface, int size);

/// Whether the module has raised its first interrupt. StartupException when its time is over.
bool HasBooted(HostInterface::IHostInterface& hostInterface, const Timer& timer);

} // namespace Vesk::Modules::DPVM::StartUp
