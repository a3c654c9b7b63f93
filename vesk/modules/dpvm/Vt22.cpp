// SPDX-License-Identifier: MIT
#include "vesk/modules/dpvm/Vt22.h"

#include "vesk/modules/dpvm/CreateHostInterface.h"

namespace Vesk::Modules::DPVM {

using System::IArgFunc;
using System::IFunc;

std::shared_ptr<Vt22Module>
Vt22::CreateUnconfigured(const System::String& path, int offset, std::shared_ptr<IFunc<bool>> velmoIrq_n,
                         std::shared_ptr<IArgFunc<bool, void>> reset_n,
                         std::shared_ptr<IArgFunc<bool, void>> bootloader_enable_n) {
    return Vt22Module::Create(CreateHostInterface(path, offset, std::move(velmoIrq_n), std::move(reset_n),
                                                  std::move(bootloader_enable_n)),
                              nullptr, nullptr, nullptr, nullptr);
}

std::shared_ptr<Vt22Module> Vt22::CreateConfigured(
    const System::String& path, int offset, std::shared_ptr<IFunc<bool>> velmoIrq_n,
    std::shared_ptr<IArgFunc<bool, void>> reset_n, std::shared_ptr<IArgFunc<bool, void>> bootloader_enable_n,
    std::shared_ptr<IFunc<void>> offlineCallback, std::shared_ptr<IFunc<void>> onlineCallback,
    std::shared_ptr<IArgFunc<OperationMode_e, void>> operationModeCallback,
    std::shared_ptr<Config::IBusConfig> config) {
    if (!config)
        System::_throw_argument_null_exception("config");
    return Vt22Module::Create(CreateHostInterface(path, offset, std::move(velmoIrq_n), std::move(reset_n),
                                                  std::move(bootloader_enable_n)),
                              std::move(offlineCallback), std::move(onlineCallback),
                              std::move(operationModeCallback), std::move(config));
}

std::shared_ptr<Vt22Bootloader>
Vt22::CreateBootloaderModule(const System::String& path, int offset, std::shared_ptr<IFunc<bool>> velmoIrq_n,
                             std::shared_ptr<IArgFunc<bool, void>> reset_n,
                             std::shared_ptr<IArgFunc<bool, void>> bootloader_enable_n) {
    return Vt22Bootloader::Create(CreateHostInterface(path, offset, std::move(velmoIrq_n), std::move(reset_n),
                                                      std::move(bootloader_enable_n)));
}

} // namespace Vesk::Modules::DPVM
