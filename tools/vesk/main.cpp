// SPDX-License-Identifier: MIT
#include "tools/vesk/Commands.h"
#include "tools/vesk/explain/Telling.h"
#include "tools/vesk/session/Dumps.h"
#include "tools/vesk/session/PublishedPlants.h"
#include "tools/vesk/text/StandardOutput.h"
#include "vesk/core/Version.h"
#include "vesk/hostinterface/RuntimeConfig.h"

#include <algorithm>
#include <iostream>

/// The library's own traces, on standard error, for every command.
static void AddTrace(CLI::App& program) {
    program.fallthrough(); // so that it may stand behind the command too
    const auto take = [](const std::vector<std::string>& traces) {
        for (const std::string& trace : traces)
            if (trace == "mailbox")
                Vesk::RuntimeConfig::_printMailbox = true;
            else
                Vesk::RuntimeConfig::_printVelmoHandshake = Vesk::RuntimeConfig::_printApplicationHandshake =
                    true;
    };
    program
        .add_option_function<std::vector<std::string>>("--trace", take,
                                                       "What the library shows on standard error")
        ->delimiter(',')
        ->allow_extra_args(false)
        ->check(CLI::IsMember({"mailbox", "handshake"}))
        ->type_name("mailbox,handshake");
}

/// Where dumps are kept, for every command.
static void AddDumps(CLI::App& program) {
    program
        .add_option_function<std::string>(
            "--dumps", VeskTool::Dumps::SetFolder,
            "Folder for the dump of the DPRAM that is kept when the module stops "
            "with a fatal event (that for temporary files)")
        ->envname("VESK_DUMPS")
        ->type_name("FOLDER");
}

/// Runs the command that the arguments name; its exit status. `failed`: the one that it has when something
/// fails.
static int Execute(int argc, char** argv, const VeskTool::Telling& telling, int& failed) {
    CLI::App program("Drives a VT22 PROFIBUS DP-V1 master module.", "vesk");
    program.set_version_flag("--version", std::string("vesk ") + Vesk::Version());
    program.require_subcommand(1);
    AddTrace(program);
    AddDumps(program);
    VeskTool::PublishedPlants::AddTo(program);
    int status = VeskTool::FAILED;
    VeskTool::AddCommands(program, status, failed);
    try {
        program.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return telling.Usage(error, program);
    }
    return status;
}

/// The same, with words for whatever goes wrong.
static int ExecuteAndTell(int argc, char** argv) {
    VeskTool::OpenStandardDescriptors();
    VeskTool::StandardOutput output;
    // A dump after every command would only be in the way of the one that an application left behind.
    VeskTool::Dumps::KeepNone();
    // Known from the arguments, for they may be what is wrong.
    const VeskTool::Telling telling(std::find(argv, argv + argc, std::string("--json")) != argv + argc);
    int failed = VeskTool::FAILED;
    const auto work = [&] {
        const int status = Execute(argc, argv, telling, failed);
        output.Finish();
        return status;
    };
    try {
        return telling.Do(work, failed);
    } catch (const std::exception& exception) { // it could not even be printed as JSON
        telling.Shortly(exception);
        return failed;
    }
}

int main(int argc, char** argv) {
    try {
        return ExecuteAndTell(argc, argv);
    } catch (...) { // not even a sentence could be made of it
        return VeskTool::FAILED;
    }
}
