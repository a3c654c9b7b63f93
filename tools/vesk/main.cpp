// SPDX-License-Identifier: MIT
#include "tools/vesk/Commands.h"
#include "tools/vesk/explain/Advice.h"
#include "tools/vesk/session/Dumps.h"
#include "tools/vesk/session/LinkOptions.h"
#include "tools/vesk/text/ByteText.h"
#include "tools/vesk/text/Failure.h"
#include "tools/vesk/text/Interruption.h"
#include "tools/vesk/text/Nearest.h"
#include "tools/vesk/text/StandardOutput.h"
#include "tools/vesk/text/Text.h"
#include "vesk/core/Version.h"
#include "vesk/hostinterface/RuntimeConfig.h"

#include <algorithm>
#include <filesystem>
#include <iostream>

using VeskTool::Harmless;

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

/// The command that was begun, with those above it: "vesk config show".
static const CLI::App& Chosen(const CLI::App& app, std::string& path) {
    path += (path.empty() ? "" : " ") + app.get_name();
    const auto below = app.get_subcommands();
    return below.empty() ? app : Chosen(*below.front(), path);
}

/// The command that is most like an unknown one below `app`; empty where `word` is an option.
static std::string NearestCommand(const CLI::App& app, const std::string& word) {
    std::vector<std::string> names;
    for (const CLI::App* const command : app.get_subcommands([](const CLI::App*) { return true; }))
        if (!command->get_name().empty() && !command->get_group().empty())
            names.push_back(command->get_name());
    return names.empty() || word.starts_with('-') ? "" : VeskTool::Nearest(word, names, 1).front();
}

/// What is wrong with the arguments.
static std::string WrongUsage(const CLI::ParseError& error, const CLI::App& program, const CLI::App& chosen) {
    std::vector<std::string> unknown = program.remaining(true);
    const bool incomplete = error.get_exit_code() == static_cast<int>(CLI::ExitCodes::RequiredError);
    const bool extra = error.get_exit_code() == static_cast<int>(CLI::ExitCodes::ExtrasError);
    if (unknown.empty() && incomplete && chosen.get_require_subcommand_min() > 0)
        return "a command is required";
    if (unknown.empty() || (!extra && !(incomplete && chosen.get_require_subcommand_min() > 0)))
        return error.what();
    if (const std::string nearest = NearestCommand(chosen, unknown.front()); !nearest.empty())
        return "unknown command '" + unknown.front() + "'; did you mean '" + nearest + "'?";
    return (unknown.size() == 1 ? "unexpected argument: " : "unexpected arguments: ") +
           VeskTool::Joined(unknown, " ");
}

/// Says what is wrong, and in further lines what to do, as every failure is said.
static void Report(const std::string& what, const std::vector<std::string>& lines) {
    std::cerr << "vesk: " << Harmless(what) << "\n";
    for (const std::string& line : lines)
        std::cerr << (line.empty() ? "" : "      " + Harmless(line) + "\n");
}

/// Runs the command that the arguments name; its exit status. `failed`: the one that it has when something
/// fails.
static int Execute(int argc, char** argv, int& failed) {
    CLI::App program("Drives a VT22 PROFIBUS DP-V1 master module.", "vesk");
    program.set_version_flag("--version", std::string("vesk ") + Vesk::Version());
    program.require_subcommand(1);
    AddTrace(program);
    AddDumps(program);
    int status = VeskTool::FAILED;
    VeskTool::AddCommands(program, status, failed);
    try {
        program.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == 0)
            return program.exit(error); // which prints it
        std::string path;
        const CLI::App& chosen = Chosen(program, path);
        const std::string what = WrongUsage(error, program, chosen);
        const std::string hint = "See " + path + " --help";
        Report(what, {hint});
        PrintJson(argc, argv, VeskTool::ErrorToJson("Usage", what, hint));
        return VeskTool::USAGE;
    }
    return status;
}

/// What there is to say of a fatal event, and where its dump is.
static std::vector<std::string> FatalLines(const nlohmann::ordered_json& event, const std::string& dump) {
    if (event.is_null())
        return {};
    std::error_code ignored;
    return {"The module says: " + VeskTool::FatalEventText(event) + ".",
            std::filesystem::exists(dump, ignored)
                ? "The DPRAM is kept in " + dump + "; vesk dump shows it."
                : "The DPRAM could not be kept in " + dump + ": check the folder, or name another, --dumps."};
}

/// Says what has failed; the same as JSON.
static nlohmann::ordered_json ReportFailure(const std::exception& exception) {
    const VeskTool::Advice advice = VeskTool::AdviceFor(exception);
    const auto event = VeskTool::FatalEventOf(exception);
    const std::string dump = VeskTool::Dumps::Path();
    std::vector<std::string> lines = FatalLines(event, dump);
    if (std::cout.good()) // what else could not be written needs no advice
        lines.insert(lines.end(), {advice.cause, advice.next});
    Report(VeskTool::Told(exception), lines);
    auto json = VeskTool::ErrorToJson(exception);
    if (!event.is_null())
        json["error"]["dump"] = dump;
    if (const std::string& link = VeskTool::LinkOptions::Opened(); !link.empty())
        json["link"] = link;
    return json;
}

/// Executes, with words for whatever goes wrong; the exit status.
static int ExecuteAndReport(int argc, char** argv, VeskTool::StandardOutput& output) {
    int failed = VeskTool::FAILED;
    try {
        const int status = Execute(argc, argv, failed);
        output.Finish();
        return status;
    } catch (const VeskTool::Interrupted& interrupted) {
        Report(interrupted.What(), {});
        PrintJson(argc, argv, VeskTool::ErrorToJson("Interrupted", interrupted.What(), ""));
        return VeskTool::SIGNALLED + interrupted.Signal();
    } catch (const std::exception& exception) {
        PrintJson(argc, argv, ReportFailure(exception));
    }
    return failed;
}

int main(int argc, char** argv) {
    VeskTool::OpenStandardDescriptors();
    VeskTool::StandardOutput output;
    // A dump after every command would only be in the way of the one that an application left behind.
    VeskTool::Dumps::KeepNone();
    try {
        return ExecuteAndReport(argc, argv, output);
    } catch (const std::exception& exception) { // the failure could not be printed as JSON
        Report(VeskTool::Told(exception), {});
        return VeskTool::FAILED;
    }
}
