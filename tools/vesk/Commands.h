// SPDX-License-Identifier: MIT
#pragma once

#include "tools/vesk/text/Command.h"

#include <string>
#include <vector>

namespace VeskTool {

/// A command of the program, from which its help, its man page and its completions follow.
struct Command {
    std::string name;                 // "run"; "config show" for one below another, which stands before it
    std::string group;                // its heading in --help; without one it is hidden
    std::string help;                 // what it does, and examples, a line each that begins with "Example: "
    Action (*add)(CLI::App& command); // null where only the commands below it do something
    int failed = FAILED;              // its exit status where it ends with an exception
    bool alone = false;               // it cannot share a life with the module, so a shell does not have it
};

/// The one table of them, in the order of the help.
const std::vector<Command>& Commands();

/// Adds them all to the program; the one that is chosen sets `failed`, its exit status when something fails,
/// and then `status`, the one that it has ended with.
void AddCommands(CLI::App& program, int& status, int& failed);

/// The same for a line of a shell: only those that can share a life.
void AddSharingCommands(CLI::App& program, int& status, int& failed);

} // namespace VeskTool
