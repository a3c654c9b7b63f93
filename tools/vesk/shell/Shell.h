// SPDX-License-Identifier: MIT
#pragma once

#include "tools/vesk/text/Command.h"

namespace VeskTool {

/// Adds the commands of a line to its program; the one that is chosen sets `failed`, its exit status when
/// something fails, and then `status`, the one that it has ended with.
using AddLineCommands = void (*)(CLI::App& program, int& status, int& failed);

/// `vesk shell`: one life with the module, and a command in each line of standard input.
Action AddShell(CLI::App& app, AddLineCommands addCommands);

} // namespace VeskTool
