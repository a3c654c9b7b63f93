// SPDX-License-Identifier: MIT
#include "tools/vesk/explain/Telling.h"

#include "tools/vesk/explain/Advice.h"
#include "tools/vesk/explain/Nearest.h"
#include "tools/vesk/session/Dumps.h"
#include "tools/vesk/session/LinkOptions.h"
#include "tools/vesk/text/ByteText.h"
#include "tools/vesk/text/Command.h"
#include "tools/vesk/text/Interruption.h"
#include "tools/vesk/text/Series.h"
#include "tools/vesk/text/Text.h"

#include <filesystem>
#include <iostream>

namespace VeskTool {

namespace {

/// The command that was begun, with those above it: "vesk config show".
const CLI::App& Chosen(const CLI::App& app, std::string& path) {
    path += (path.empty() ? "" : " ") + app.get_name();
    const auto below = app.get_subcommands();
    return below.empty() ? app : Chosen(*below.front(), path);
}

/// The command that is most like an unknown one below `app`; empty where `word` is an option.
std::string NearestCommand(const CLI::App& app, const std::string& word) {
    std::vector<std::string> names;
    for (const CLI::App* const command : app.get_subcommands([](const CLI::App*) { return true; }))
        if (!command->get_name().empty() && !command->get_group().empty())
            names.push_back(command->get_name());
    return names.empty() || word.starts_with('-') ? "" : Nearest(word, names, 1).front();
}

/// What is wrong with the arguments.
std::string WrongUsage(const CLI::ParseError& error, const CLI::App& program, const CLI::App& chosen) {
    std::vector<std::string> unknown = program.remaining(true);
    const bool incomplete = error.get_exit_code() == static_cast<int>(CLI::ExitCodes::RequiredError);
    const bool extra = error.get_exit_code() == static_cast<int>(CLI::ExitCodes::ExtrasError);
    if (unknown.empty() && incomplete && chosen.get_require_subcommand_min() > 0)
        return "a command is required";
    if (unknown.empty() || (!extra && !(incomplete && chosen.get_require_subcommand_min() > 0)))
        return error.what();
    if (const std::string nearest = NearestCommand(chosen, unknown.front()); !nearest.empty())
        return "unknown command '" + unknown.front() + "'; did you mean '" + nearest + "'?";
    return (unknown.size() == 1 ? "unexpected argument: " : "unexpected arguments: ") + Joined(unknown, " ");
}

/// What there is to say of a fatal event, and where its dump is.
std::vector<std::string> FatalLines(const nlohmann::ordered_json& event, const std::string& dump) {
    if (event.is_null())
        return {};
    std::error_code ignored;
    return {"The module says: " + FatalEventText(event) + ".",
            std::filesystem::exists(dump, ignored)
                ? "The DPRAM is kept in " + dump + "; vesk dump shows it."
                : "The DPRAM could not be kept in " + dump + ": check the folder, or name another, --dumps."};
}

} // namespace

void Telling::Say(const std::string& what, const std::vector<std::string>& lines) const {
    std::cerr << "vesk: " << _place << Harmless(what) << "\n";
    for (const std::string& line : lines)
        std::cerr << (line.empty() ? "" : "      " + Harmless(line) + "\n");
}

void Telling::Print(const nlohmann::ordered_json& error) const {
    if (_json && std::cout.good())
        std::cout << JsonText(error) << std::flush;
}

int Telling::Usage(const CLI::ParseError& error, const CLI::App& program) const {
    if (error.get_exit_code() == 0) {
        std::ostringstream text;
        const int status = program.exit(error, text);
        std::cout << (_json && Series::Current() ? JsonText({{"help", text.str()}}) : text.str())
                  << std::flush;
        return status;
    }
    std::string path;
    const CLI::App& chosen = Chosen(program, path);
    const std::string what = WrongUsage(error, program, chosen);
    const std::string hint = path.empty() ? "See help" : "See " + path + " --help";
    Say(what, {hint});
    Print(ErrorToJson("Usage", what, hint));
    return USAGE;
}

int Telling::Do(const std::function<int()>& work, const int& failed) const {
    try {
        return work();
    } catch (const CLI::ParseError&) {
        throw;
    } catch (const Interrupted& interrupted) {
        Say(interrupted.What(), {});
        Print(ErrorToJson("Interrupted", interrupted.What(), ""));
        return SIGNALLED + interrupted.Signal();
    } catch (const std::exception& exception) {
        if (!std::cout.good())
            throw;
        Failure(exception);
    }
    return failed;
}

void Telling::Failure(const std::exception& exception) const {
    const Advice advice = AdviceFor(exception);
    const auto event = FatalEventOf(exception);
    const std::string dump = Dumps::Path();
    std::vector<std::string> lines = FatalLines(event, dump);
    lines.insert(lines.end(), {advice.cause, advice.next});
    Say(Told(exception), lines);
    auto json = ErrorToJson(exception);
    if (!event.is_null())
        json["error"]["dump"] = dump;
    if (const std::string& link = LinkOptions::Opened(); !link.empty())
        json["link"] = link;
    Print(json);
}

void Telling::Shortly(const std::exception& exception) const {
    Say(Told(exception), {});
}

} // namespace VeskTool
