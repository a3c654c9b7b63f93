// SPDX-License-Identifier: MIT
#include "vesk/modules/dpvm/StartUp.h"

#include "vesk/core/VeskException.h"

namespace Vesk::Modules::DPVM {

using HostInterface::IHostInterface;

static constexpr std::int64_t RESET_PULSE_NANOSECONDS = 500'000;

void StartUp::HoldInReset(IHostInterface& hostInterface, Timer& timer) {
    hostInterface.PowerOff();
    timer.Start(RESET_PULSE_NANOSECONDS);
}

bool StartUp::PulseIsOver(IHostInterface& hostInterface, const Timer& timer) {
    if (!timer.Expired())
        return false;
    if (hostInterface.VelmoIRQ())
        System::_env_throw(ModuleStateException::Create("IRQ not cleared at power off"));
    return true;
}

void StartUp::ReleaseReset(IHostInterface& hostInterface, Timer& timer, std::int64_t nanoseconds) {
    hostInterface.PowerOn();
    timer.Start(nanoseconds);
}

void StartUp::CheckSize(IHostInterface& hostInterface, int size) {
    if (hostInterface.Size() != size)
        System::_throw_equal_exception(hostInterface.Size(), size, "_hostInterface->Size()", "sizeof(DpRam)");
}

bool StartUp::HasBooted(IHostInterface& hostInterface, const Timer& timer) {
    if (hostInterface.VelmoIRQ())
        return true;
    if (timer.Expired())
        System::_env_throw(StartupException::Create("Timeout waiting for initial IRQ"));
    return false;
}

} // namespace Vesk::Modules::DPVM
