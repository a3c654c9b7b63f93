// SPDX-License-Identifier: MIT
#pragma once

#include "tools/vesk/text/Series.h"

#include <CLI/CLI.hpp>

#include <functional>
#include <string>

/// What the commands have in common on the command line.
namespace VeskTool {

/// The exit statuses of every command but `config diff`.
inline constexpr int DONE = 0;
inline constexpr int FAILED = 1; // the module or a file said no
inline constexpr int USAGE = 2;
inline constexpr int NEGATIVE = 3; // it was done, and the answer is no: different, not right, not got there
inline constexpr int SIGNALLED = 128; // and the signal's number

/// Those of `config diff`, which are diff's; beside them stands DONE.
inline constexpr int DIFF_DIFFERENT = 1;
inline constexpr int DIFF_FAILED = 2;

/// What a command does once it was chosen; its exit status. A function `Add…` gives a command its arguments
/// and options, and returns what it does with them.
using Action = std::function<int()>;

/// Adds the flag --json, unless a Series decides.
inline void AddJson(CLI::App& command, bool& json) {
    if (const Series* const series = Series::Current())
        json = series->PrintsJson();
    else
        command.add_flag("--json", json, "Print one JSON object instead of text");
}

/// Adds a positional argument that must be there; help shows its name alone.
inline CLI::Option* AddArgument(CLI::App& command, const std::string& name, std::string& value,
                                const std::string& description) {
    return command.add_option(name, value, description)->required()->type_name("");
}

} // namespace VeskTool
