// SPDX-License-Identifier: MIT
#pragma once

namespace Vesk::Modules::DPVM {

/// Throws ModuleIdentityException "Unexpected `name`!" with both values unless the module showed the expected
/// one.
void CheckIdentity(const char* name, unsigned short expected, unsigned short read);

} // namespace Vesk::Modules::DPVM
