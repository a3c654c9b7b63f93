// SPDX-License-Identifier: MIT
#pragma once

namespace Vesk::Modules::DPVM {

/// Throws ModuleStateException "Reserved bits set in `name`" with the value when one of the `reserved` bits
/// of a register is set.
void CheckReservedBits(unsigned short value, unsigned short reserved, const char* name);

} // namespace Vesk::Modules::DPVM
