// SPDX-License-Identifier: MIT
#pragma once

#include "tools/vesk/session/Link.h"

#include <CLI/CLI.hpp>
#include <optional>

namespace VeskTool {

/// Where the module is, on the command line of every command that talks to one: --dpram, --offset, and
/// --lines or --gpio; or VESK_DPRAM, VESK_OFFSET, VESK_LINES and VESK_GPIO in the environment.
class LinkOptions {
public:
    /// Adds the options to `command`, whose parsing fills this object.
    void AddTo(CLI::App& command);

    /// The way to the module behind DPRAM and lines; Failure where one of them cannot be used, or another
    /// host has the lines. Without any of them a new virtual module in this process, with `flash`, which a
    /// line on standard error says. From then on signals are watched: they must not leave a module running.
    Link Open(VirtualModule::Flash flash = {}) const;

private:
    /// Three lines of a GPIO chip, as CHIP:irq=N,reset=N,boot=N says them, in any order.
    struct Gpio {
        std::string chip;
        unsigned int irq = 0, reset = 0, boot = 0;
    };

    static Gpio ParseGpio(const std::string& text);
    static Link GpioLink(const Gpio& gpio);
    Link TakeLines() const;

    std::optional<std::string> _dpRamPath;
    int _offset = 0;
    std::optional<std::string> _linesPath;
    std::optional<Gpio> _gpio;
};

} // namespace VeskTool
