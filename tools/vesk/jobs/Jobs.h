// SPDX-License-Identifier: MIT
#pragma once

#include "tools/vesk/text/Command.h"

/// The commands that do a whole job.
namespace VeskTool {

Action AddRun(CLI::App& command);
Action AddModule(CLI::App& command);
Action AddFlash(CLI::App& command);

} // namespace VeskTool
