// SPDX-License-Identifier: MIT
#include "vesk/modules/dpvm/CheckIdentity.h"

#include "vesk/core/VeskException.h"
#include "vesk/system/text/StringBuilder.h"

namespace Vesk::Modules::DPVM {

void CheckIdentity(const char* name, unsigned short expected, unsigned short read) {
    if (read != expected)
        System::_env_throw(ModuleIdentityException::Create(System::Text::StringBuilder()
                                                               .Append("Unexpected ")
                                                               .Append(name)
                                                               .AppendLine("!")
                                                               .Append("Expected: ")
                                                               .AppendHex(expected)
                                                               .Append(", Read: ")
                                                               .AppendHex(read)
                                                               .ToString()));
}

} // namespace Vesk::Modules::DPVM
