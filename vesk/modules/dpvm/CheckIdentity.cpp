// SPDX-License-Identifier: MIT
#include "vesk/modules/dpvm/CheckIdentity.h"

#include "vesk/core/TextOf.h"
#include "vesk/core/VeskException.h"

namespace Vesk::Modules::DPVM {

void CheckIdentity(const char* name, unsigned short expected, unsigned short read) {
    if (read != expected)
        System::_env_throw(ModuleIdentityException::Create(
            TextOf("Unexpected ", name, "!\nExpected: ", InHex{expected}, ", Read: ", InHex{read})));
}

} // namespace Vesk::Modules::DPVM
