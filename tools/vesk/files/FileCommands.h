// SPDX-License-Identifier: MIT
#pragma once

#include "tools/vesk/text/Command.h"

/// The commands for files, which need no module.
namespace VeskTool {

Action AddConfigShow(CLI::App& command);
Action AddConfigDiff(CLI::App& command);
Action AddConfigBuild(CLI::App& command);
Action AddConfigDecompile(CLI::App& command);
Action AddConfigHeader(CLI::App& command);
Action AddFirmwareShow(CLI::App& command);
Action AddFirmwareBuild(CLI::App& command);
Action AddGsdShow(CLI::App& command);
Action AddGsdCheck(CLI::App& command);
Action AddDump(CLI::App& command);

} // namespace VeskTool
