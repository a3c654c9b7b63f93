// SPDX-License-Identifier: MIT
#include "vesk/hostinterface/RuntimeConfig.h"

#include "vesk/system/Statics.h"

namespace Vesk {

bool RuntimeConfig::_printMailbox = false;
bool RuntimeConfig::_printVelmoHandshake = false;
bool RuntimeConfig::_printApplicationHandshake = false;
bool RuntimeConfig::_printHostInterfaceDump = false;
System::String RuntimeConfig::_hostInterfaceDumpPath [[gnu::init_priority(System::OUTLIVES_STATICS)]] =
    "/tmp/hostinterface.bin";

} // namespace Vesk
