// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/Process.h"

#include <memory>

/// The files of a virtual module in a process of its own, `vesk module`, and how to start it on them.
struct ModuleFiles {
    using Arguments = std::vector<std::string>;

    TemporaryFolder folder;
    std::string dpRam = folder.Path("dpram");
    std::string lines = folder.Path("lines");
    std::string flash = folder.Path("flash");
    std::string speed = "10"; // of the module's time; its boot and its period then take a tenth

    /// The options that say where the module is, after `arguments`.
    Arguments With(Arguments arguments) const {
        arguments.insert(arguments.end(), {"--dpram", dpRam, "--lines", lines});
        return arguments;
    }

    /// A module that is ready, and logs.
    std::unique_ptr<Process> StartModule(const Arguments& more = {}) const {
        Arguments arguments = With({"module", "--flash", flash, "--speed", speed, "--log"});
        arguments.insert(arguments.end(), more.begin(), more.end());
        auto module = std::make_unique<Process>(VESK_TOOL, arguments);
        if (!module->WaitForOut("module ready on " + dpRam + ", " + lines + "\n"))
            throw std::runtime_error("the module does not start: " + module->Err());
        return module;
    }

    /// `vesk run` with so many cycles of process data; 20 do for a whole life.
    std::unique_ptr<Process> StartHost(int cycles = 20, const Arguments& more = {}) const {
        Arguments arguments =
            With({"run", SOURCE_DIR "/examples/plant.ddb", "--cycles", std::to_string(cycles)});
        arguments.insert(arguments.end(), more.begin(), more.end());
        return std::make_unique<Process>(VESK_TOOL, arguments);
    }
};
