// SPDX-License-Identifier: MIT
#include "vesk/modules/dpvm/CheckReservedBits.h"

#include "vesk/core/TextOf.h"
#include "vesk/core/VeskException.h"

namespace Vesk::Modules::DPVM {

void CheckReservedBits(unsigned short value, unsigned short reserved, const char* name) {
    if (value & reserved)
        System::_env_throw(
            ModuleStateException::Create(TextOf("Reserved bits set in ", name, "\n", InHex{value}, "\n")));
}

} // namespace Vesk::Modules::DPVM
