// SPDX-License-Identifier: MIT
#include "vesk/modules/dpvm/CreateHostInterface.h"

#include "vesk/hostinterface/MasterDpRam.h"
#include "vesk/hostinterface/Parallel16Bit.h"

namespace Vesk::Modules::DPVM {

std::shared_ptr<HostInterface::IHostInterface>
CreateHostInterface(const System::String& path, int offset, std::shared_ptr<System::IFunc<bool>> velmoIrq_n,
                    std::shared_ptr<System::IArgFunc<bool, void>> reset_n,
                    std::shared_ptr<System::IArgFunc<bool, void>> bootloader_enable_n) {
    return HostInterface::Parallel16Bit::FromPath(path, offset, HostInterface::MasterDpRam::SIZE,
                                                  std::move(velmoIrq_n), std::move(reset_n),
                                                  std::move(bootloader_enable_n));
}

} // namespace Vesk::Modules::DPVM
