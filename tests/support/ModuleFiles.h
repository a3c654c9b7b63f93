// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/Process.h"

#include <gtest/gtest.h>

#include <memory>

/// The files of a virtual module in a process of its own, `vesk module`, and how to start it on them.
struct ModuleFiles {
    using Arguments = Process::Arguments;

    static constexpr const char* PLANT = SOURCE_DIR "/examples/plant.ddb";
    static constexpr const char* FIRMWARE = SOURCE_DIR "/examples/firmware/vt22-1.5.0.fw";

    TemporaryFolder folder;
    std::string dpRam = folder.Path("dpram");
    std::string lines = folder.Path("lines");
    std::string flash = folder.Path("flash");
    std::string speed = "10"; // of the module's time; its boot and its period then take a tenth

    /// The options that say where the module is, after `arguments`.
    Arguments With(const Arguments& arguments) const {
        return Process::Join(arguments, {"--dpram", dpRam, "--lines", lines});
    }

    /// A module that is ready, and logs.
    std::unique_ptr<Process> StartModule(const Arguments& more = {}) const {
        const Arguments arguments = With({"module", "--flash", flash, "--speed", speed, "--log"});
        auto module = std::make_unique<Process>(VESK_TOOL, Process::Join(arguments, more));
        if (!module->WaitForOut("module ready on " + dpRam + ", " + lines + "\n"))
            throw std::runtime_error("the module does not start: " + module->Err());
        return module;
    }

    /// The module ends when it is told to, and has nothing to complain of.
    static void ExpectRightHost(Process& module) {
        EXPECT_EQ(module.End(SIGTERM), 0);
        EXPECT_EQ(module.Err(), "") << "what a module must never see";
    }

    /// `vesk run` with so many cycles of process data; 20 do for a whole life.
    std::unique_ptr<Process> StartHost(int cycles = 20, const Arguments& more = {}) const {
        return Start(Process::Join({"run", PLANT, "--cycles", std::to_string(cycles)}, more));
    }

    /// Any command on this module.
    std::unique_ptr<Process> Start(const Arguments& arguments) const {
        return std::make_unique<Process>(VESK_TOOL, With(arguments));
    }
};
