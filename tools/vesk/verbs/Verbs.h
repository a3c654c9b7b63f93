// SPDX-License-Identifier: MIT
#pragma once

#include "tools/vesk/text/Command.h"

/// The commands that ask a module or tell it something.
namespace VeskTool {

Action AddPlants(CLI::App& app);
Action AddIdentify(CLI::App& app);
Action AddStatus(CLI::App& app);
Action AddDatabase(CLI::App& app);
Action AddVerify(CLI::App& app);
Action AddDownload(CLI::App& app);
Action AddSlaves(CLI::App& app);
Action AddLiveList(CLI::App& app);
Action AddStart(CLI::App& app);
Action AddStop(CLI::App& app);
Action AddMode(CLI::App& app);
Action AddSetAddress(CLI::App& app);
Action AddDiag(CLI::App& app);
Action AddSlaveConfig(CLI::App& app);
Action AddInput(CLI::App& app);
Action AddOutput(CLI::App& app);
Action AddSet(CLI::App& app);
Action AddConfigScan(CLI::App& app);
Action AddConfigCheck(CLI::App& app);
Action AddRead(CLI::App& app);
Action AddWrite(CLI::App& app);

} // namespace VeskTool
