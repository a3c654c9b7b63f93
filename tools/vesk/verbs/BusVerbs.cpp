// SPDX-License-Identifier: MIT
// The verbs that change something on the bus: start, stop, mode and set-address.
#include "tools/vesk/explain/SlaveState.h"
#include "tools/vesk/session/StationLists.h"
#include "tools/vesk/text/Console.h"
#include "tools/vesk/text/Numbers.h"
#include "tools/vesk/text/Text.h"
#include "tools/vesk/verbs/Stations.h"
#include "tools/vesk/verbs/Verbs.h"
#include "vesk/modules/dpvm/DPVMMessages.h"

#include <algorithm>

namespace VeskTool {

using namespace Vesk::Modules::DPVM;
using ResponseAction = IDPVMModule::ResponseAction;

namespace {

/// How long a change on the bus may take until the lists show it.
constexpr double CHANGE_SECONDS = 1;

// ---- vesk start, vesk stop

void CheckConfigured(const Json& addresses, const std::vector<int>& configured) {
    for (const Json& address : addresses)
        if (std::find(configured.begin(), configured.end(), address.get<int>()) == configured.end())
            throw Failure("Slave " + address.dump() + " is not in the module's database, which has " +
                          Addresses(configured));
}

Json SetStarted(Session& session, const Json& arguments, bool started) {
    IDPVMModule& module = session.Module();
    const Json& addresses = arguments["addresses"];
    CheckConfigured(addresses, ListedStations(*module.GetSlaveConfiguredList()));
    const auto exchanges = [&](const Json& address) {
        return Lists(ListedStations(*module.GetDataTransferList()), address.get<unsigned int>());
    };
    Json slaves = Json::array();
    for (const Json& address : addresses)
        slaves.push_back({{"address", address}, {"before", exchanges(address)}});
    const auto flags = System::Array<unsigned char>::Create(HIGHEST_SLAVE + 1);
    for (const Json& address : addresses)
        flags->Set(address.get<int>(), 1);
    session.Ask(
        [&](ResponseAction action) {
            started ? module.StartSlaves(flags, action) : module.StopSlaves(flags, action);
        },
        started ? "the start of slaves" : "the stop of slaves");
    const auto reached = [&] {
        return std::all_of(addresses.begin(), addresses.end(),
                           [&](const Json& address) { return exchanges(address) == started; });
    };
    session.UpdateFor(CHANGE_SECONDS, reached);
    for (Json& slave : slaves) {
        const bool now = exchanges(slave["address"]);
        const std::string wrong = started && !now ? WhatIsWrong(session, slave["address"]) : "";
        slave["dataTransfer"] = now;
        slave["cause"] = wrong.empty() ? Json() : Json(wrong);
    }
    return {{"ok", reached()}, {"started", started}, {"slaves", slaves}};
}

Json AnswerStart(Session& session, const Json& arguments) {
    return SetStarted(session, arguments, true);
}

Json AnswerStop(Session& session, const Json& arguments) {
    return SetStarted(session, arguments, false);
}

std::string StartedText(const Json& facts, const Paint& paint) {
    const bool started = facts["started"];
    std::string text;
    for (const Json& slave : facts["slaves"]) {
        const bool now = slave["dataTransfer"];
        const std::string name = "Slave " + slave["address"].dump();
        if (now == started)
            text += name + (started           ? " exchanges data"
                            : slave["before"] ? " is stopped and exchanges no data any more"
                                              : " is stopped; it exchanged no data before either");
        else
            text += paint.Bad(started ? name + " was started, but does not exchange data: " +
                                            slave["cause"].get<std::string>()
                                      : name + " was stopped, but still exchanges data");
        text += "\n";
    }
    return text;
}

// ---- vesk mode

constexpr std::array MODES{OperationMode_e::OFFLINE, OperationMode_e::STOP, OperationMode_e::CLEAR,
                           OperationMode_e::OPERATE};

Json AnswerMode(Session& session, const Json& arguments) {
    session.SetMode(arguments["mode"].get<OperationMode_e>());
    return {{"online", session.Online() == true},
            {"mode", session.Online() == true ? Json(ModeName(*session.Mode())) : Json("OFFLINE")}};
}

std::string ModeText(const Json& facts, const Paint&) {
    return "The master is " + std::string(facts["online"] ? "online, in " : "") +
           facts["mode"].get<std::string>() + "\n";
}

// ---- vesk set-address

/// A slave takes a new address only outside the data exchange, so the whole bus stands in STOP.
Json AnswerSetAddress(Session& session, const Json& arguments) {
    const auto from = arguments["old"].get<unsigned char>();
    const auto to = arguments["new"].get<unsigned char>();
    const auto identNumber = arguments["identNumber"].get<unsigned short>();
    const unsigned char lock = arguments["lock"].get<bool>() ? 1 : 0;
    const std::string what = "the new address " + std::to_string(to) + " for slave " + std::to_string(from);
    Session::Response answer;
    bool answers = false;
    Vt22Module& module = session.Own();
    session.InMode(OperationMode_e::STOP, [&] {
        answer = session.TryAsk(
            [&](ResponseAction action) {
                module.Enqueue(DPVMMessages::SetSlaveAddress(from, to, identNumber, lock,
                                                             System::Array<unsigned char>::Create(0)),
                               std::move(action), SERVICE_SECONDS);
            },
            what);
        answers = Lives(AskForLiveList(session), to);
    });
    if (answer->Error() != Vesk::Mailbox::ErrorCode::NO_ERROR)
        throw Refusal(what, *answer->Error());
    return {{"ok", answers}, {"old", from}, {"new", to}, {"identNumber", identNumber}, {"locked", lock != 0}};
}

std::string SetAddressText(const Json& facts, const Paint& paint) {
    const std::string to = facts["new"].dump();
    return facts["ok"] ? "Slave " + facts["old"].dump() + " answers at " + to + " now" +
                             (facts["locked"] ? " and keeps that address\n" : "\n")
                       : paint.Bad("The request was taken, but nobody answers at " + to) + "\n";
}

Action AddStartOrStop(CLI::App& app, const Verb& verb) {
    const auto command = std::make_shared<VerbCommand>(app, verb);
    command->AddBus();
    const auto take = [self = command.get()](const std::vector<std::string>& texts) {
        for (const std::string& text : texts)
            self->TakeAddress("ADDRESS", text, HIGHEST_SLAVE, [self](unsigned int address) {
                self->arguments["addresses"].push_back(address);
            });
    };
    app.add_option_function<std::vector<std::string>>("ADDRESS", take,
                                                      "Station addresses of slaves, 0 to 125, or their names")
        ->required()
        ->type_name("");
    return [command] { return command->Execute(); };
}

} // namespace

Action AddStart(CLI::App& command) {
    static constexpr Verb START{Need::OPERATING, AnswerStart, StartedText};
    return AddStartOrStop(command, START);
}

Action AddStop(CLI::App& command) {
    static constexpr Verb STOP{Need::OPERATING, AnswerStop, StartedText};
    return AddStartOrStop(command, STOP);
}

Action AddMode(CLI::App& app) {
    static constexpr Verb MODE{Need::INITIALISED, AnswerMode, ModeText};
    const auto command = std::make_shared<VerbCommand>(app, MODE);
    std::vector<std::string> names(MODES.size());
    std::transform(MODES.begin(), MODES.end(), names.begin(),
                   [](OperationMode_e mode) { return Lower(ModeName(mode)); });
    const auto take = [self = command.get(), names](const std::string& text) {
        const auto found = std::find(names.begin(), names.end(), text);
        self->arguments["mode"] = MODES.at(static_cast<std::size_t>(found - names.begin()));
    };
    app.add_option_function<std::string>("MODE", take, "offline, stop, clear or operate")
        ->required()
        ->transform(CLI::IsMember(names, CLI::ignore_case))
        ->type_name("");
    return [command] { return command->Execute(); };
}

Action AddSetAddress(CLI::App& app) {
    static constexpr Verb SET_ADDRESS{Need::INITIALISED, AnswerSetAddress, SetAddressText, true};
    const auto command = std::make_shared<VerbCommand>(app, SET_ADDRESS);
    command->AddAddress("OLD", "old");
    command->AddNumber("NEW", "new", 0, HIGHEST_SLAVE, "Its new address, 0 to 125")->required();
    command->AddNumber("IDENT", "identNumber", 0, 0xFFFF, "Its ident number, 0 to 0xffff")->required();
    const auto lock = std::make_shared<bool>(false);
    const auto yes = std::make_shared<bool>(false);
    app.add_flag("--lock", *lock,
                 "The slave takes no other address after that, until it is reset to its delivery state");
    app.add_flag("--yes", *yes, "Do not ask before --lock; needed where there is no terminal");
    const auto confirm = [self = command.get(), lock, yes](const DescribedBus*) {
        Json& arguments = self->arguments;
        if (arguments["old"] == arguments["new"])
            throw CLI::ValidationError("NEW", arguments["new"].dump() + " is the slave's address already");
        arguments["lock"] = *lock;
        if (*lock) {
            const Console console = Console::Standard();
            console.NeedAnswer(*yes);
            console.Confirm(*yes, "Let slave " + arguments["old"].dump() + " keep the address " +
                                      arguments["new"].dump() + " for good?");
        }
    };
    return [command, confirm] {
        command->preparations.emplace_back(confirm);
        return command->Execute();
    };
}

} // namespace VeskTool
