// SPDX-License-Identifier: MIT
#include "tools/vesk/Commands.h"
#include "tools/vesk/explain/Advice.h"
#include "tools/vesk/text/ByteText.h"
#include "tools/vesk/text/Failure.h"
#include "tools/vesk/text/Interruption.h"
#include "tools/vesk/text/StandardOutput.h"
#include "vesk/core/Version.h"
#include "vesk/hostinterface/RuntimeConfig.h"

#include <algorithm>
#include <iostream>

/// Errors come as JSON too where facts would; known from the arguments, for they may be what is wrong.
static void PrintJson(int argc, char** argv, const nlohmann::ordered_json& error) {
    if (std::cout.good() && std::find(argv, argv + argc, std::string("--json")) != argv + argc)
        std::cout << VeskTool::JsonText(error) << std::flush;
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
        if (!done)
            PrintJson(argc, argv, VeskTool::ErrorToJson("Usage", error.what(), "See --help"));
        return done ? VeskTool::DONE : VeskTool::USAGE;
    }
    return status;
}

/// The same, with words for whatever goes wrong.
static int ExecuteAndReport(int argc, char** argv, VeskTool::StandardOutput& output) {
    try {
        const int status = Execute(argc, argv);
        output.Finish();
        return status;
    } catch (const VeskTool::Interrupted& interrupted) {
        std::cerr << "vesk: " << interrupted.What() << "\n";
        PrintJson(argc, argv, VeskTool::ErrorToJson("Interrupted", interrupted.What(), ""));
        return VeskTool::SIGNALLED + interrupted.Signal();
    } catch (const std::exception& exception) {
        const VeskTool::Advice advice = VeskTool::AdviceFor(exception);
        std::cerr << "vesk: " << VeskTool::OneLine(exception) << "\n";
        for (const std::string& line : {advice.cause, advice.next})
            std::cerr << (line.empty() ? "" : "      " + line + "\n");
        PrintJson(argc, argv, VeskTool::ErrorToJson(exception));
    }
    return VeskTool::FAILED;
}

int main(int argc, char** argv) {
    VeskTool::OpenStandardDescriptors();
    VeskTool::StandardOutput output;
    // A dump after every command would only be in the way of the one that an application left behind.
    Vesk::RuntimeConfig::_hostInterfaceDumpPath = nullptr;
    try {
        return ExecuteAndReport(argc, argv, output);
    } catch (const std::exception& exception) { // the failure could not be printed as JSON
        std::cerr << "vesk: " << exception.what() << "\n";
        return VeskTool::FAILED;
    }
}
