// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/modules/dpvm/config/IBusConfig.h"
#include "virtualmodule/flash/Flash.h"

namespace VeskTool {

/// The configuration of the plant of examples/, so that there is something to run without any file.
std::shared_ptr<Vesk::Modules::DPVM::Config::IBusConfig> Plant();

/// The flash of a virtual module that holds its database, so that there is something to ask it for.
VirtualModule::Flash PlantFlash();

} // namespace VeskTool
