// SPDX-License-Identifier: MIT
#include "vesk/modules/dpvm/CheckReservedBits.h"

#include "vesk/core/VeskException.h"
#include "vesk/system/text/StringBuilder.h"

namespace Vesk::Modules::DPVM {

void CheckReservedBits(unsigned short value, unsigned short reserved, const char* name) {
    if (value & reserved)
        System::_env_throw(ModuleStateException::Create(System::Text::StringBuilder()
                                                            .Append("Reserved bits set in ")
                                                            .AppendLine(name)
                                                            .AppendHex(value)
                                                            .AppendLine()
                                                            .ToString()));
}

} // namespace Vesk::Modules::DPVM
