// SPDX-License-Identifier: MIT
#pragma once

#include "virtualmodule/Flash.h"

namespace VeskTool {

/// The flash of a virtual module that holds the database of the plant of examples/, so that there is
/// something to ask it for.
VirtualModule::Flash PlantFlash();

} // namespace VeskTool
