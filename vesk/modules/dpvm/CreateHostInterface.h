// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/hostinterface/IHostInterface.h"
#include "vesk/system/Delegates.h"

namespace Vesk::Modules::DPVM {

/// The host interface of a VT22: the 8192 bytes of its DPRAM from byte `offset` of the file `path` on. See
/// HostInterface::Parallel16Bit::FromPath for the callbacks and the failures.
std::shared_ptr<HostInterface::IHostInterface>
CreateHostInterface(const System::String& path, int offset, std::shared_ptr<System::IFunc<bool>> velmoIrq_n,
                    std::shared_ptr<System::IArgFunc<bool, void>> reset_n,
                    std::shared_ptr<System::IArgFunc<bool, void>> bootloader_enable_n);

} // namespace Vesk::Modules::DPVM
