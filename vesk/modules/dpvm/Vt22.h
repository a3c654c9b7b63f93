// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/modules/dpvm/Vt22Bootloader.h"
#include "vesk/modules/dpvm/Vt22Module.h"

/// How an application gets a module object. `path` is the file through which the DPRAM is reached and
/// `offset` the DPRAM's first byte in it; `velmoIrq_n` reads the level of the interrupt line, `reset_n` and
/// `bootloader_enable_n` drive theirs. The module is held in reset when a factory returns; everything else
/// happens in Update. The failures of HostInterface::Parallel16Bit::FromPath pass through.
namespace Vesk::Modules::DPVM::Vt22 {

/// A master that takes its database as it is.
std::shared_ptr<Vt22Module>
CreateUnconfigured(const System::String& path, int offset, std::shared_ptr<System::IFunc<bool>> velmoIrq_n,
                   std::shared_ptr<System::IArgFunc<bool, void>> reset_n,
                   std::shared_ptr<System::IArgFunc<bool, void>> bootloader_enable_n);

/// A master whose database is brought in line with `config`. The callbacks are called from inside Update, and
/// each may be null. ArgumentNullException "config", before anything is opened, without a configuration.
std::shared_ptr<Vt22Module>
CreateConfigured(const System::String& path, int offset, std::shared_ptr<System::IFunc<bool>> velmoIrq_n,
                 std::shared_ptr<System::IArgFunc<bool, void>> reset_n,
                 std::shared_ptr<System::IArgFunc<bool, void>> bootloader_enable_n,
                 std::shared_ptr<System::IFunc<void>> offlineCallback,
                 std::shared_ptr<System::IFunc<void>> onlineCallback,
                 std::shared_ptr<System::IArgFunc<OperationMode_e, void>> operationModeCallback,
                 std::shared_ptr<Config::IBusConfig> config);

/// The module in its bootloader, for the download of new firmware or of a new bootloader.
std::shared_ptr<Vt22Bootloader>
CreateBootloaderModule(const System::String& path, int offset,
                       std::shared_ptr<System::IFunc<bool>> velmoIrq_n,
                       std::shared_ptr<System::IArgFunc<bool, void>> reset_n,
                       std::shared_ptr<System::IArgFunc<bool, void>> bootloader_enable_n);

} // namespace Vesk::Modules::DPVM::Vt22
