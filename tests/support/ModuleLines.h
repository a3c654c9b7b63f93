// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/system/Delegates.h"
#include "virtualmodule/InProcess.h"

#include <memory>

/// The lines of a virtual module in the same process, as the library takes them.
struct ModuleLines {
    explicit ModuleLines(VirtualModule::InProcess& module)
        : velmoIrq_n(System::Func<bool>::Create([&module] { return module.VelmoIrq_n(); })),
          reset_n(System::ArgFunc<bool, void>::Create([&module](bool level) { module.Reset_n(level); })),
          bootloaderEnable_n(System::ArgFunc<bool, void>::Create(
              [&module](bool level) { module.BootloaderEnable_n(level); })) {}

    std::shared_ptr<System::IFunc<bool>> velmoIrq_n;
    std::shared_ptr<System::IArgFunc<bool, void>> reset_n;
    std::shared_ptr<System::IArgFunc<bool, void>> bootloaderEnable_n;
};
