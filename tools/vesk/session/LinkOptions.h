// SPDX-License-Identifier: MIT
#pragma once

#include "tools/vesk/session/Link.h"

#include <CLI/CLI.hpp>
#include <optional>

namespace VeskTool {

/// Where the module is, on the command line of every command that talks to one: --dpram, --offset, and
/// --lines or --gpio, or --virtual; or VESK_DPRAM, VESK_OFFSET, VESK_LINES and VESK_GPIO in the environment.
/// An option wins over a variable.
class LinkOptions {
public:
    /// What a command does that is told of no module.
    enum class Unnamed {
        VIRTUAL, // it takes a virtual module, and says so on standard error
        REFUSED, // it changes something that lasts, so it does nothing without --virtual
    };

    /// Adds the options to `command`, whose parsing fills this object.
    void AddTo(CLI::App& command, Unnamed unnamed = Unnamed::VIRTUAL);

    /// The plant that --plant names; empty for none. CLI::ParseError where an option names a module too.
    std::string Plant() const;

    /// The way to the module; a virtual one in this process has `flash`. Failure where its DPRAM or its lines
    /// cannot be used, InUse where another host has the lines, CLI::ParseError where the options and
    /// variables do not say which it is, or name a plant. From then on signals are watched: they
    /// must not leave a module running.
    Link Open(VirtualModule::Flash flash = {}) const;

    /// Whether the module is a virtual one; CLI::ParseError as from Open.
    bool UseVirtual() const;

    /// CLI::ParseError where no module is named, not even a virtual one.
    void CheckNamed() const;

    /// The description of the module that this process talks to; empty as long as there is none.
    static const std::string& Opened();
    /// It talks to that one now.
    static void NoteOpened(const std::string& description);

private:
    /// Three lines of a GPIO chip, as CHIP:irq=N,reset=N,boot=N says them, in any order.
    struct Gpio {
        std::string chip;
        unsigned int irq = 0, reset = 0, boot = 0;
    };

    /// A value, and where it comes from.
    struct Place {
        const char* option;
        const char* variable;
        std::optional<std::string> text{};

        /// Whether the command line has it.
        bool Given() const;
        /// The option, or the variable that has taken its place.
        std::string Name() const;
    };

    static Gpio ParseGpio(const std::string& name, const std::string& text);
    static Link GpioLink(const Gpio& gpio);

    /// The lines, one of the two.
    const Place& Lines() const;

    Place _dpRam{"--dpram", "VESK_DPRAM"};
    Place _offset{"--offset", "VESK_OFFSET"};
    Place _lines{"--lines", "VESK_LINES"};
    Place _gpio{"--gpio", "VESK_GPIO"};
    bool _virtual = false;
    Unnamed _unnamed = Unnamed::VIRTUAL;
};

} // namespace VeskTool
