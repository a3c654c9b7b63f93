// SPDX-License-Identifier: MIT
#pragma once

#include "tools/vesk/Link.h"

#include <CLI/CLI.hpp>
#include <optional>

namespace VeskTool {

/// Where the module is, on the command line of every command that talks to one: --dpram, --offset and
/// --lines, or VESK_DPRAM, VESK_OFFSET and VESK_LINES in the environment.
class LinkOptions {
public:
    /// Adds the options to `command`, whose parsing fills this object.
    void AddTo(CLI::App& command);

    /// The way to the module behind the two files; Failure where one of them cannot be used. Without files a
    /// new virtual module in this process, with `flash`, which a line on standard error says.
    Link Open(VirtualModule::Flash flash = {}) const;

private:
    std::optional<std::string> _dpRamPath;
    int _offset = 0;
    std::optional<std::string> _linesPath;
};

} // namespace VeskTool
