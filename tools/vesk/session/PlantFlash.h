// SPDX-License-Identifier: MIT
#pragma once

#include "tools/vesk/session/DescribedBus.h"
#include "virtualmodule/flash/Flash.h"

namespace VeskTool {

/// The plant of examples/, so that there is something to run without any file.
std::shared_ptr<const DescribedBus> Plant();

/// The flash of a virtual module that holds its database, so that there is something to ask it for.
VirtualModule::Flash PlantFlash();

} // namespace VeskTool
