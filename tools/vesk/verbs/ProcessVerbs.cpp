// SPDX-License-Identifier: MIT
// The verbs for the process data of a slave: input, output and set.
#include "tools/vesk/verbs/ProcessVerbs.h"

#include "tools/vesk/files/DatabaseFile.h"
#include "tools/vesk/text/ByteText.h"
#include "tools/vesk/text/Clock.h"
#include "tools/vesk/text/Numbers.h"
#include "tools/vesk/verbs/Stations.h"
#include "tools/vesk/verbs/Verbs.h"

#include <iostream>
#include <limits>

namespace VeskTool {

using Vesk::Modules::DPVM::IDPVMModule;

namespace {

/// How long a watch waits from one question to the next.
constexpr double WATCH_PAUSE_SECONDS = 0.01;

constexpr double EXCHANGE_SECONDS = 1; // until set data show
constexpr unsigned int LONGEST_WATCH = 1'000'000'000;
constexpr unsigned int MAX_DATA_SIZE = 244; // of a slave, in one direction

std::vector<unsigned char> BytesOf(const Json& facts) {
    return ParseHex("data", facts["data"].get<std::string>());
}

// ---- vesk input, vesk output

Json DataToJson(const Json& arguments, const std::vector<unsigned char>& bytes) {
    return {{"address", arguments["address"]}, {"length", bytes.size()}, {"data", HexDigits(bytes)}};
}

Json AnswerInput(Session& session, const Json& arguments) {
    return DataToJson(arguments,
                      AskAboutSlave(session, arguments, &IDPVMModule::ReadSlaveInput, "the input data"));
}

Json AnswerOutput(Session& session, const Json& arguments) {
    return DataToJson(arguments,
                      AskAboutSlave(session, arguments, &IDPVMModule::ReadSlaveOutput, "the output data"));
}

std::string DataText(const Json& facts, const Paint&) {
    const auto bytes = BytesOf(facts);
    return std::to_string(bytes.size()) + " bytes\n" + HexDump(bytes);
}

Json ChangedBytes(const std::vector<unsigned char>& before, const std::vector<unsigned char>& now) {
    Json changed = Json::array();
    for (std::size_t i = 0; i < now.size(); ++i)
        if (i >= before.size() || before[i] != now[i])
            changed.push_back(i);
    return changed;
}

int Watch(Session& session, const VerbCommand& command, double seconds) {
    WatchData(*command.verb, session, command.arguments, seconds, [&](const Json& facts) {
        std::cout << (command.PrintsJson() ? JsonLine(facts)
                                           : LocalTime() + " " + ChangedText(facts, Paint::Standard()) + "\n")
                  << std::flush;
    });
    return DONE;
}

Action AddData(CLI::App& app, const Verb& verb) {
    const auto command = std::make_shared<VerbCommand>(app, verb);
    command->AddAddress();
    const auto seconds = std::make_shared<double>(std::numeric_limits<double>::infinity());
    CLI::Option* const watch = app.add_flag_callback(
        "--watch",
        [self = command.get(), seconds] {
            self->run = [self, seconds](Session& session) { return Watch(session, *self, *seconds); };
        },
        "A line with the time whenever something has changed, until the program is interrupted");
    app.add_option_function<std::string>(
           "--seconds",
           [seconds](const std::string& text) {
               *seconds = ParseNumber("--seconds", text, 0, LONGEST_WATCH);
           },
           "Watch for that long")
        ->needs(watch)
        ->type_name("N");
    return [command] { return command->Execute(); };
}

// ---- vesk set

/// The bytes that an application is made to send are its own again when this program ends.
int SetAndHold(Session& session, const std::function<int(Session& session)>& set,
               const std::optional<unsigned int>& seconds) {
    const int status = set(session);
    if (session.Owns() || SharedLife::Current() || status != DONE)
        return status;
    std::cerr << "vesk: held " << (seconds ? "for " + std::to_string(*seconds) + " s" : "until Ctrl-C")
              << ", then the application's own bytes go out again" << std::endl;
    session.UpdateFor(seconds ? *seconds : std::numeric_limits<double>::infinity(), [] { return false; });
    return status;
}

/// Whether the master has the bytes as the input data of the slave by now.
bool Shows(Session& session, const Json& arguments) {
    const auto held = TryAboutSlave(session, arguments["address"], &IDPVMModule::ReadSlaveInput);
    const auto bytes = BytesOf(arguments);
    const auto offset = arguments["offset"].get<std::size_t>();
    return held && offset + bytes.size() <= held->size() &&
           std::equal(bytes.begin(), bytes.end(), held->begin() + static_cast<std::ptrdiff_t>(offset));
}

Json AnswerSet(Session& session, const Json& arguments) {
    const auto bytes = BytesOf(arguments);
    session.SetInput(arguments["address"], arguments["offset"], bytes);
    const auto start = System::DateTime::Now();
    bool shows = Shows(session, arguments);
    while (!shows && SecondsSince(start) < EXCHANGE_SECONDS)
        shows = Shows(session, arguments);
    Json facts{{"ok", shows}, {"offset", arguments["offset"]}};
    facts.update(DataToJson(arguments, bytes));
    return facts;
}

std::string SetText(const Json& facts, const Paint& paint) {
    const std::string what = "slave " + facts["address"].dump() + ", input from byte " +
                             facts["offset"].dump() + " on: " + facts["data"].get<std::string>() + "\n";
    return facts["ok"] ? "Set: " + what : paint.Bad("Not taken by the master: ") + what;
}

void TakeBytes(Json& arguments, const std::vector<std::string>& words) {
    const auto bytes = ParseHex("BYTES", words.back());
    if (bytes.empty() || words.size() > 2)
        throw CLI::ValidationError("BYTES",
                                   bytes.empty() ? "there are none" : "more than an offset and one word");
    arguments["data"] = HexDigits(bytes);
    arguments["offset"] = words.size() > 1 ? ParseNumber("OFFSET", words.front(), 0, MAX_DATA_SIZE - 1) : 0;
}

} // namespace

void WatchData(const Verb& verb, Session& session, const Json& arguments, double seconds,
               const std::function<void(const Json& facts)>& show) {
    const auto start = System::DateTime::Now();
    std::optional<std::vector<unsigned char>> before;
    do {
        Json facts = Answer(verb, session, arguments);
        const auto now = BytesOf(facts);
        if (!before || *before != now) {
            facts["time"] = UniversalTime();
            facts["changed"] = ChangedBytes(before.value_or(now), now);
            show(facts);
        }
        before = now;
        session.UpdateFor(WATCH_PAUSE_SECONDS, [] { return false; });
    } while (SecondsSince(start) < seconds);
}

std::string ChangedText(const Json& facts, const Paint& paint) {
    const auto bytes = BytesOf(facts);
    std::string text;
    bool before = false;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const bool changed = Lists(facts["changed"], static_cast<unsigned int>(i));
        const std::string digits = HexDigits({&bytes[i], 1});
        text += changed == before || paint.Colours() ? " " : changed ? "[" : "]";
        text += changed ? paint.Bad(digits) : digits;
        before = changed;
    }
    return text + (before && !paint.Colours() ? "]" : "");
}

Action AddInput(CLI::App& app) {
    static constexpr Verb INPUT{Need::OPERATING, AnswerInput, DataText};
    return AddData(app, INPUT);
}

Action AddOutput(CLI::App& app) {
    static constexpr Verb OUTPUT{Need::OPERATING, AnswerOutput, DataText};
    return AddData(app, OUTPUT);
}

Action AddSet(CLI::App& app) {
    static constexpr Verb SET{Need::OPERATING, AnswerSet, SetText};
    const auto command = std::make_shared<VerbCommand>(app, SET);
    VerbCommand* const self = command.get();
    self->AddAddress();
    app.add_option_function<std::vector<std::string>>(
           "BYTES", [self](const std::vector<std::string>& words) { TakeBytes(self->arguments, words); },
           "Hexadecimal digits, two for each byte; in a word before them the number of the first byte, which "
           "is 0 without")
        ->required()
        ->type_name("");
    if (!SharedLife::Current()) {
        const auto seconds = std::make_shared<std::optional<unsigned int>>();
        app.add_option_function<std::string>(
               "--seconds",
               [seconds](const std::string& text) {
                   *seconds = ParseNumber("--seconds", text, 0, LONGEST_WATCH);
               },
               "With a plant: hold the bytes for that long, and not until the program is interrupted")
            ->type_name("N");
        self->run = [set = self->run, seconds](Session& session) {
            return SetAndHold(session, set, *seconds);
        };
    }
    return [command] { return command->Execute(); };
}

} // namespace VeskTool
