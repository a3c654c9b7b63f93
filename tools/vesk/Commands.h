// SPDX-License-Identifier: MIT
#pragma once

#include <CLI/CLI.hpp>

namespace VeskTool {

/// The exit statuses of every command.
inline constexpr int DONE = 0;
inline constexpr int FAILED = 1; // the module or a file said no
inline constexpr int USAGE = 2;

/// Adds `vesk run` to the program; when it was chosen, `status` becomes its exit status.
void AddRun(CLI::App& program, int& status);
/// Likewise `vesk module`, `vesk flash` and `vesk firmware`.
void AddModule(CLI::App& program, int& status);
void AddFlash(CLI::App& program, int& status);
void AddFirmware(CLI::App& program, int& status);
/// Likewise what needs no module: `vesk config`, `vesk dump`, `vesk explain` and the hidden `vesk generate`.
void AddConfig(CLI::App& program, int& status);
void AddDump(CLI::App& program, int& status);
void AddExplain(CLI::App& program, int& status);
void AddGenerate(CLI::App& program, int& status);
/// Likewise the verbs that ask a module or tell it something.
void AddIdentify(CLI::App& program, int& status);
void AddStatus(CLI::App& program, int& status);
void AddSlaves(CLI::App& program, int& status);
void AddLiveList(CLI::App& program, int& status);
void AddSlaveVerbs(CLI::App& program, int& status); // diag, slave-config, input, output
void AddRead(CLI::App& program, int& status);
void AddWrite(CLI::App& program, int& status);
void AddStartStop(CLI::App& program, int& status);
void AddMode(CLI::App& program, int& status);
void AddSetAddress(CLI::App& program, int& status);
void AddDatabase(CLI::App& program, int& status);
void AddDownload(CLI::App& program, int& status);
void AddVerify(CLI::App& program, int& status);

} // namespace VeskTool
