// SPDX-License-Identifier: MIT
#include "tools/vesk/Commands.h"
#include "tools/vesk/explain/Advice.h"
#include "tools/vesk/text/ByteText.h"
#include "tools/vesk/text/Failure.h"
#include "vesk/core/Version.h"
#include "vesk/hostinterface/RuntimeConfig.h"

#include <algorithm>
#include <iostream>

/// Errors come as JSON too where facts would; known from the arguments, for they may be what is wrong.
static bool WantsJson(int argc, char** argv) {
    return std::find(argv, argv + argc, std::string("--json")) != argv + argc;
}

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

/// Runs the command that the arguments name; its exit status.
static int Execute(int argc, char** argv) {
    CLI::App program("Drives a VT22 PROFIBUS DP-V1 master module.", "vesk");
    program.set_version_flag("--version", std::string("vesk ") + Vesk::Version());
    program.require_subcommand(1);
    int status = VeskTool::FAILED;
    AddTrace(program);
    VeskTool::AddCommands(program, status);
    try {
        program.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        const bool done = program.exit(error) == 0; // which prints it
        if (!done && WantsJson(argc, argv))
            std::cout << VeskTool::JsonText(VeskTool::ErrorToJson("Usage", error.what(), "See --help"));
        return done ? VeskTool::DONE : VeskTool::USAGE;
    }
    return status;
}

int main(int argc, char** argv) {
    // A dump after every command would only be in the way of the one that an application left behind.
    Vesk::RuntimeConfig::_hostInterfaceDumpPath = nullptr;
    try {
        return Execute(argc, argv);
    } catch (const std::exception& exception) {
        const VeskTool::Advice advice = VeskTool::AdviceFor(exception);
        std::cerr << "vesk: " << VeskTool::OneLine(exception) << "\n";
        for (const std::string& line : {advice.cause, advice.next})
            std::cerr << (line.empty() ? "" : "      " + line + "\n");
        if (WantsJson(argc, argv))
            std::cout << VeskTool::JsonText(VeskTool::ErrorToJson(exception));
    }
    return VeskTool::FAILED;
}
