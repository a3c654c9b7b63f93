// SPDX-License-Identifier: MIT
#include "tools/vesk/jobs/Jobs.h"
#include "tools/vesk/jobs/ModuleProcess.h"
#include "tools/vesk/text/Numbers.h"
#include "tools/vesk/text/Text.h"
#include "virtualmodule/faults/Faults.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <iostream>
#include <map>
#include <stdexcept>

namespace VeskTool {

namespace {

/// Nanoseconds in "0", "100us" or "1ms".
std::int64_t ParseDuration(const std::string& text) {
    static const std::map<std::string, std::int64_t> UNITS{
        {"ns", 1}, {"us", 1'000}, {"ms", 1'000'000}, {"s", 1'000'000'000}};
    static constexpr std::int64_t LONGEST = 3'600'000'000'000;
    std::uint32_t count = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), count);
    const std::string unitName(end, text.data() + text.size());
    const auto unit = UNITS.find(unitName);
    if (error == std::errc() && count == 0 && unitName.empty())
        return 0;
    if (error != std::errc() || unit == UNITS.end() || count * unit->second > LONGEST)
        throw CLI::ValidationError("--period", text + " is not a duration like 0, 100us, 1ms or 2s");
    return count * unit->second;
}

std::string CheckSpeed(const std::string& text) {
    const double speed = std::strtod(text.c_str(), nullptr);
    return speed >= 0.001 && speed <= 1000 ? "" : text + " is not from 0.001 to 1000";
}

VirtualModule::Fault ParseFault(const std::string& text) {
    try {
        return VirtualModule::Fault::Parse(text);
    } catch (const std::invalid_argument& error) {
        throw CLI::ValidationError("--fault", error.what());
    }
}

/// What goes wrong, and the VALUEs with which it does.
std::string Explanation(const VirtualModule::FaultKind& kind) {
    const auto& [name, usual, least, most] = kind.values;
    std::string text(kind.wrong);
    if (!name.empty())
        text += " (" + std::string(name) + " " + std::to_string(least) +
                (least == most ? "" : " to " + std::to_string(most)) + ")";
    return text;
}

/// What the library then says, in one line.
std::string Promise(const VirtualModule::Outcome& outcome) {
    if (!outcome.IsException())
        return std::string(outcome.means);
    std::string text = std::string(outcome.type) + ": ";
    for (const char character : outcome.message)
        text += character == '\n' ? std::string("; ") : std::string(1, character);
    return text.substr(0, text.find_last_not_of("; :") + 1);
}

/// One line for each fault.
void PrintFaults() {
    std::size_t width = 0;
    for (const auto& kind : VirtualModule::Faults())
        width = std::max(width, kind.Usage().size() + 2);
    constexpr std::size_t countsWidth = 19;
    std::cout << Padded("FAULT", width) << Padded("STEP counts", countsWidth)
              << "what goes wrong -> what the library then says\n";
    for (const auto& kind : VirtualModule::Faults())
        std::cout << Padded(kind.Usage(), width)
                  << Padded(std::string(VirtualModule::Name(kind.counts)), countsWidth) << Explanation(kind)
                  << " -> " << Promise(kind.Promise()) << "\n";
}

} // namespace

Action AddModule(CLI::App& command) {
    const auto options = std::make_shared<ModuleProcess::Options>();
    const auto addFile = [&command](const char* name, std::string& path, const char* text) {
        return command.add_option(name, path, text)->type_name("FILE");
    };
    addFile("--dpram", options->dpRamPath, "DPRAM, 8192 bytes")->required()->envname("VESK_DPRAM");
    addFile("--lines", options->linesPath, "The three lines, 4 bytes")->required()->envname("VESK_LINES");
    addFile("--flash", options->flashPath,
            "Flash: configuration database and firmware, which last from one module to the next. Without it "
            "the module starts with an empty database and forgets it at the end.");
    command
        .add_option_function<std::string>(
            "--period",
            [options](const std::string& text) { options->module.interruptPeriod = ParseDuration(text); },
            "Least time between two interrupts of the master: 0, 100us, 1ms, ... (1ms)")
        ->type_name("DURATION");
    command
        .add_option("--speed", options->speed,
                    "Let the module's time, its period and its delays, run NUMBER times as fast (1)")
        ->type_name("NUMBER")
        ->check(CheckSpeed);
    command
        .add_option("--absent", options->absentSlaves,
                    "Take this slave off the bus; may be given more than once")
        ->allow_extra_args(false)
        ->type_name("ADDRESS")
        ->check(CLI::Range(0u, HIGHEST_ADDRESS).description(""));
    command
        .add_option("--publish", options->publish.name,
                    "Offer the module on D-Bus as org.libvesk.VirtualModule.NAME, for a model of the plant "
                    "that plays its "
                    "slaves: docs/guide.md")
        ->type_name("NAME")
        ->check(PublishedModule::CheckName);
    command
        .add_option("--bus", options->publish.bus,
                    "The bus for --publish: session, system, or an address like unix:path=/tmp/bus (session)")
        ->type_name("BUS")
        ->envname("VESK_BUS");
    command.add_flag("--log", options->log,
                     "Print every indication, message and change of state, with the seconds since the start");
    command
        .add_option_function<std::vector<std::string>>(
            "--fault",
            [options](const std::vector<std::string>& texts) {
                for (const std::string& text : texts)
                    options->module.faults.push_back(ParseFault(text));
            },
            "Let something go wrong, from the STEP-th time on or COUNT times; may be given more than once. "
            "Example: --fault answer-late@4x1=250")
        ->allow_extra_args(false)
        ->type_name("NAME[@STEP][xCOUNT][=VALUE]");
    command.add_flag_callback(
        "--faults",
        [] {
            PrintFaults();
            throw CLI::Success();
        },
        "List the faults: what goes wrong, and what the library then says");
    return [options] {
        ModuleProcess(*options, Console::Standard()).Execute();
        return DONE;
    };
}

} // namespace VeskTool
