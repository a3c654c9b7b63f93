// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/system/Delegates.h"
#include "virtualmodule/flash/Flash.h"

#include <functional>
#include <memory>
#include <string>

namespace VeskTool {

/// The way to one module: the file behind its DPRAM and its three lines.
struct Link {
    std::string description; // for people, for example "virtual module in this process"
    std::string dpRamPath;
    int offset = 0;
    std::shared_ptr<System::IFunc<bool>> velmoIrq_n;
    std::shared_ptr<System::IArgFunc<bool, void>> reset_n;
    std::shared_ptr<System::IArgFunc<bool, void>> bootloader_enable_n;
    /// What the host did that a module must never see; only a virtual module tells.
    std::function<std::vector<std::string>()> violations;
    /// Its lines are on a GPIO chip, so what it drives may move.
    bool machine = false;
};

/// A new virtual module in this process, on a temporary DPRAM file and with `flash`. It lives as long as a
/// copy of the link.
Link InProcessLink(VirtualModule::Flash flash = {});

} // namespace VeskTool
