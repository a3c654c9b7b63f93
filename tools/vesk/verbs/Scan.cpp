// SPDX-License-Identifier: MIT
// vesk config scan: a bus description of who answers on the bus.
#include "busdescription/decompile/FoundBus.h"
#include "busdescription/description/Units.h"
#include "tools/vesk/explain/Diagnosis.h"
#include "tools/vesk/files/DescriptionFile.h"
#include "tools/vesk/files/FileBytes.h"
#include "tools/vesk/text/ByteText.h"
#include "tools/vesk/text/Numbers.h"
#include "tools/vesk/text/Text.h"
#include "tools/vesk/verbs/Stations.h"
#include "tools/vesk/verbs/Verbs.h"

#include <algorithm>
#include <filesystem>
#include <iostream>

namespace VeskTool {

namespace {

/// What `known`, a configuration's "checksum", "rate" and "master" or null, says, if the module holds that
/// one; or null.
Json ConfigurationHeld(Session& session, const Json& known) {
    const auto database = session.AskForDatabase();
    return !known.is_null() && database && known["checksum"] == database->Description.Value() ? known
                                                                                              : Json();
}

/// The data rate as its code.
std::uint32_t Rate(const Json& arguments, const Json& held) {
    if (arguments.contains("rate"))
        return arguments["rate"];
    if (held.is_null())
        throw Failure("The module does not say at which rate its bus runs; name it with --rate");
    return held["rate"];
}

/// The station address of the master that was asked: that of its configuration, or else the one that its
/// slaves name, or the only one on the bus.
unsigned int OwnAddress(const Json& held, const Json& liveList, const Json& lists, const Json& slaves) {
    if (!held.is_null())
        return held["master"];
    for (const Json& slave : slaves)
        if (Lists(lists["dataTransfer"], slave["address"]) && !slave["diagnosis"].is_null() &&
            slave["diagnosis"]["masterAddress"].is_number())
            return slave["diagnosis"]["masterAddress"];
    for (const Json& station : liveList)
        if (station["kind"] == "master in the ring")
            return station["address"];
    return 0;
}

BusDescription::FoundSlave FoundSlave(const Json& slave) {
    BusDescription::FoundSlave found{slave["address"], {}, {}, ""};
    if (!slave["identNumber"].is_null())
        found.identNumber = slave["identNumber"].get<std::uint32_t>();
    if (!slave["identifiers"].is_null())
        found.identifierBytes = ParseHex("identifiers", slave["identifiers"].get<std::string>());
    if (const Json& diagnosis = slave["diagnosis"]; !diagnosis.is_null())
        if (const std::string summary = Diagnosis::Summary(diagnosis); summary != "nothing")
            found.remark = "It says: " + summary + ".";
    return found;
}

Json AnswerScan(Session& session, const Json& arguments) {
    const Json held = ConfigurationHeld(session, arguments["known"]);
    BusDescription::FoundBus bus{Rate(arguments, held), 0, {}};
    const Json lists = StationListsToJson(session);
    const Json liveList = AskForLiveList(session);
    const Json slaves = AskForFoundSlaves(session, liveList);
    bus.master = OwnAddress(held, liveList, lists, slaves);
    std::transform(slaves.begin(), slaves.end(), std::back_inserter(bus.slaves), FoundSlave);
    const auto base = FolderOfText(arguments.value("output", ""));
    BusDescription::DeviceFiles files(base.string());
    return {{"rate", BusDescription::Gsd::RateWithCode(bus.rate)->bitsPerSecond},
            {"master", bus.master},
            {"slaves", slaves},
            {"liveList", liveList},
            {"text", DraftFoundBus(bus, files, DeviceFilesIn(arguments.value("gsd", ""), base))}};
}

std::string ScanText(const Json& facts, const Paint&) {
    return facts["text"];
}

std::uint32_t ParseRate(const std::string& text) {
    std::string names;
    for (const auto& rate : BusDescription::Gsd::RATES) {
        const std::string name = BusDescription::RateText(rate);
        if (name == text)
            return rate.code;
        names += (names.empty() ? "" : ", ") + name;
    }
    throw CLI::ValidationError("--rate", text + " is none of " + names);
}

int WriteScan(Session& session, const VerbCommand& command) {
    const Json facts = Answer(*command.verb, session, command.arguments);
    const auto text = facts["text"].get<std::string>();
    const auto output = command.arguments["output"].get<std::string>();
    WriteFile(output, {text.begin(), text.end()}, "", "");
    if (command.PrintsJson())
        Print(*command.verb, facts, true);
    else
        std::cout << Harmless(output) << ": " << facts["slaves"].size() << " slaves\n" << std::flush;
    return DONE;
}

} // namespace

Action AddConfigScan(CLI::App& app) {
    static constexpr Verb SCAN{Need::OPERATING, AnswerScan, ScanText};
    const auto command = std::make_shared<VerbCommand>(app, SCAN);
    VerbCommand* const self = command.get();
    const auto take = [&](const char* option, const char* key, const char* type, const char* text) {
        return app
            .add_option_function<std::string>(
                option, [self, key](const std::string& value) { self->arguments[key] = value; }, text)
            ->type_name(type);
    };
    take("-o,--output", "output", "FILE", "Bus description to make; standard output without it");
    take("--gsd", "gsd", "FOLDER", "Folder of device description files to use where they fit");
    app.add_option_function<std::string>(
           "--rate", [self](const std::string& text) { self->arguments["rate"] = ParseRate(text); },
           "Data rate of the bus, 9.6k to 12M bit/s; not needed where --config is what the module holds")
        ->type_name("RATE");
    command->AddBus();
    command->preparations.emplace_back([self](const DescribedBus* known) {
        if (const std::string output = self->arguments.value("output", ""); std::filesystem::exists(output))
            throw Failure(output + ": is there already, so no draft takes its place");
        else if (!output.empty())
            self->run = [self](Session& session) { return WriteScan(session, *self); };
        Json& about = self->arguments["known"];
        if (known != nullptr)
            about = {{"checksum", ChecksumText(known->config->Checksum())},
                     {"rate", known->config->Master()->DataRate()},
                     {"master", known->config->Master()->StationAddress()}};
    });
    return [command] { return command->Execute(); };
}

} // namespace VeskTool
