// SPDX-License-Identifier: MIT
// The verbs for the process data of a slave: input, output and set.
#include "tools/vesk/verbs/ProcessVerbs.h"

#include "busdescription/description/SignalValue.h"
#include "tools/vesk/text/ByteText.h"
#include "tools/vesk/text/Clock.h"
#include "tools/vesk/text/Numbers.h"
#include "tools/vesk/text/Text.h"
#include "tools/vesk/verbs/Signals.h"
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
    if (facts.contains("signal"))
        return SignalText(facts["signals"][0]) + "\n";
    const auto bytes = BytesOf(facts);
    std::string text = std::to_string(bytes.size()) + " bytes\n" + HexDump(bytes);
    std::vector<std::vector<std::string>> rows;
    for (const Json& signal : facts.value("signals", Json::array()))
        rows.push_back({signal["name"], SignalText(signal)});
    for (const std::string& line : TableLines(rows))
        text += line + "\n";
    return text;
}

/// A slave, or one signal of a slave.
struct Choice {
    std::string name;                               // "slave.signal"; or empty
    const BusDescription::Signal* signal = nullptr; // of that name, once names are known
};

/// The positional argument ADDRESS, which may name a signal in the direction of the verb.
std::shared_ptr<Choice> AddChoice(VerbCommand& command, bool toBus) {
    const auto choice = std::make_shared<Choice>();
    const auto find = [&command, choice, toBus](const DescribedBus* known) {
        const DescribedBus& names = NeedNames(known);
        choice->signal = &names.SignalNamed(choice->name);
        if (choice->signal->toBus != toBus)
            throw Failure(choice->name + (toBus ? " comes from the bus, so it is among the output data"
                                                : " goes to the bus, so it is among the input data"));
        command.arguments["address"] =
            names.SlaveNamed(choice->name.substr(0, choice->name.find('.'))).address.value;
    };
    const auto take = [&command, choice, find](const std::string& text) {
        if (text.find('.') == std::string::npos)
            return command.TakeAddress("ADDRESS", text, HIGHEST_ADDRESS, [&command](unsigned int address) {
                command.arguments["address"] = address;
            });
        choice->name = text;
        command.preparations.emplace_back(find);
    };
    command.AddBus();
    command.App()
        .add_option_function<std::string>(
            "ADDRESS", take, "Station address of the slave, 0 to 126, or its name, or SLAVE.SIGNAL")
        ->required()
        ->type_name("");
    return choice;
}

/// Adds the values of the signals in the bytes of the facts, which begin with the slave's first one.
void AddSignals(Session& session, Json& facts, const DescribedBus* known, const Choice& choice, bool toBus) {
    const std::string held = known == nullptr ? "" : HeldBy(session);
    const std::string wanted = known == nullptr ? "" : ChecksumText(known->config->Checksum());
    if (held != wanted && choice.signal != nullptr)
        throw Failure("The module holds the database " + Printable(held) + " instead of " + wanted +
                      ", so nobody knows where its slaves have their bytes");
    const auto* const slave = known != nullptr && held == wanted ? known->SlaveAt(facts["address"]) : nullptr;
    if (slave == nullptr)
        return;
    const auto bytes = BytesOf(facts);
    Json signals = Json::array();
    for (const BusDescription::Signal& signal : slave->signals)
        if (signal.toBus == toBus && (choice.signal == nullptr || choice.signal == &signal))
            signals.push_back(SignalToJson(signal, bytes));
    if (choice.signal != nullptr)
        facts["signal"] = choice.name;
    facts["signals"] = signals;
}

Json ChangedBytes(const std::vector<unsigned char>& before, const std::vector<unsigned char>& now) {
    Json changed = Json::array();
    for (std::size_t i = 0; i < now.size(); ++i)
        if (i >= before.size() || before[i] != now[i])
            changed.push_back(i);
    return changed;
}

int Watch(Session& session, const VerbCommand& command, double seconds) {
    Json before;
    WatchData(*command.verb, session, command.arguments, seconds, [&](Json facts) {
        command.complete(session, facts);
        const bool signal = facts.contains("signal");
        if (signal && facts["signals"] == before)
            return; // other bytes have changed
        before = facts.value("signals", Json());
        std::cout << (command.PrintsJson()
                          ? JsonLine(facts)
                          : LocalTime() + " " +
                                (signal ? SignalText(before[0]) : ChangedText(facts, Paint::Standard())) +
                                "\n")
                  << std::flush;
    });
    return DONE;
}

Action AddData(CLI::App& app, const Verb& verb, bool toBus) {
    const auto command = std::make_shared<VerbCommand>(app, verb);
    const auto choice = AddChoice(*command, toBus);
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
    return [command, choice, toBus] {
        command->preparations.emplace_back(
            [command = command.get(), choice, toBus](const DescribedBus* known) {
                command->complete = [=](Session& session, Json& facts) {
                    AddSignals(session, facts, known, *choice, toBus);
                };
            });
        return command->Execute();
    };
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

std::vector<unsigned char> MaskOf(const Json& arguments) {
    return ParseHex("mask", arguments["mask"].get<std::string>());
}

/// The slave's input bytes at that place, if the master has the bits of the mask there as they were set by
/// now.
std::optional<std::vector<unsigned char>> Shown(Session& session, const Json& arguments) {
    const auto held = TryAboutSlave(session, arguments["address"], &IDPVMModule::ReadSlaveInput);
    const auto bytes = BytesOf(arguments);
    const auto mask = MaskOf(arguments);
    const auto offset = arguments["offset"].get<std::size_t>();
    if (!held || offset + bytes.size() > held->size())
        return std::nullopt;
    const auto first = held->begin() + static_cast<std::ptrdiff_t>(offset);
    std::vector<unsigned char> shown(first, first + static_cast<std::ptrdiff_t>(bytes.size()));
    for (std::size_t i = 0; i < bytes.size(); ++i)
        if (((shown[i] ^ bytes[i]) & mask[i]) != 0)
            return std::nullopt;
    return shown;
}

Json AnswerSet(Session& session, const Json& arguments) {
    const auto bytes = BytesOf(arguments);
    session.SetInput(arguments["address"], arguments["offset"], bytes, MaskOf(arguments));
    const auto start = System::DateTime::Now();
    auto shown = Shown(session, arguments);
    while (!shown && SecondsSince(start) < EXCHANGE_SECONDS)
        shown = Shown(session, arguments);
    Json facts{{"ok", shown.has_value()}, {"offset", arguments["offset"]}};
    facts.update(DataToJson(arguments, shown.value_or(bytes)));
    return facts;
}

std::string SetText(const Json& facts, const Paint& paint) {
    const std::string signal = facts.contains("signal") ? facts["signal"].get<std::string>() + " = " +
                                                              SignalText(facts["signals"][0]) + ", "
                                                        : "";
    const std::string what = signal + "slave " + facts["address"].dump() + ", input from byte " +
                             facts["offset"].dump() + " on: " + facts["data"].get<std::string>() + "\n";
    return facts["ok"] ? "Set: " + what : paint.Bad("Not taken by the master: ") + what;
}

void TakeBytes(Json& arguments, const std::vector<std::string>& words) {
    const auto bytes = ParseHex("BYTES", words.back());
    if (bytes.empty() || words.size() > 2)
        throw CLI::ValidationError("BYTES",
                                   bytes.empty() ? "there are none" : "more than an offset and one word");
    arguments["data"] = HexDigits(bytes);
    arguments["mask"] = HexDigits(std::vector<unsigned char>(bytes.size(), 0xFF));
    arguments["offset"] = words.size() > 1 ? ParseNumber("OFFSET", words.front(), 0, MAX_DATA_SIZE - 1) : 0;
}

void TakeValue(VerbCommand& command, const Choice& choice, const std::string& value) {
    try {
        const auto [bytes, mask] = BytesOf(*choice.signal, value);
        command.arguments["data"] = HexDigits(bytes);
        command.arguments["mask"] = HexDigits(mask);
        command.arguments["offset"] = choice.signal->offset;
    } catch (const BusDescription::SignalValueError& error) {
        throw Failure(error.what());
    }
    command.complete = [&choice](Session&, Json& facts) {
        BusDescription::Signal signal = *choice.signal;
        signal.offset = 0; // in the bytes that were set
        facts["signal"] = choice.name;
        facts["signals"] = {SignalToJson(signal, BytesOf(facts))};
    };
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
    return AddData(app, INPUT, true);
}

Action AddOutput(CLI::App& app) {
    static constexpr Verb OUTPUT{Need::OPERATING, AnswerOutput, DataText};
    return AddData(app, OUTPUT, false);
}

Action AddSet(CLI::App& app) {
    static constexpr Verb SET{Need::OPERATING, AnswerSet, SetText};
    const auto command = std::make_shared<VerbCommand>(app, SET);
    VerbCommand* const self = command.get();
    const auto choice = AddChoice(*self, true);
    const auto take = [self, choice](const std::vector<std::string>& words) {
        if (choice->name.empty())
            return TakeBytes(self->arguments, words);
        if (words.size() > 1)
            throw CLI::ValidationError("BYTES", "more than one value for " + choice->name);
        self->preparations.emplace_back(
            [self, choice, value = words.front()](const DescribedBus*) { TakeValue(*self, *choice, value); });
    };
    app.add_option_function<std::vector<std::string>>(
           "BYTES", take,
           "Hexadecimal digits, two for each byte; in a word before them the number of the first byte, which "
           "is 0 without. Of a signal its value: a number in its unit, true or false, or hexadecimal digits")
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
