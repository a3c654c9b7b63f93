// SPDX-License-Identifier: MIT
// The verbs that ask what a slave says of itself: diag and slave-config.
#include "busdescription/gsd/Reader.h"
#include "tools/vesk/explain/Diagnosis.h"
#include "tools/vesk/text/ByteText.h"
#include "tools/vesk/text/Text.h"
#include "tools/vesk/verbs/Stations.h"
#include "tools/vesk/verbs/Verbs.h"

namespace VeskTool {

using Vesk::Modules::DPVM::IDPVMModule;

namespace {

// ---- vesk diag

Json AnswerDiag(Session& session, const Json& arguments) {
    const auto bytes = AskAboutSlave(session, arguments, &IDPVMModule::GetSlaveDiag, "the diagnosis");
    Json facts{{"address", arguments["address"]}};
    facts.update(Diagnosis(bytes).ToJson());
    return facts;
}

std::string DiagText(const Json& facts, const Paint&) {
    return "Slave         " + facts["address"].dump() + "\n" + Diagnosis::Text(facts);
}

Json AnswerDiagOfAll(Session& session, const Json&) {
    const Json lists = StationListsToJson(session);
    Json slaves = Json::array();
    for (const Json& address : lists["configured"]) {
        const auto bytes = TryAboutSlave(session, address, &IDPVMModule::GetSlaveDiag);
        slaves.push_back({{"address", address},
                          {"dataTransfer", Lists(lists["dataTransfer"], address)},
                          {"diagnostic", Lists(lists["diagnostic"], address)},
                          {"diagnosis", bytes ? Diagnosis(*bytes).ToJson() : Json()}});
    }
    return {{"slaves", slaves}};
}

/// Adds the texts of the slave's device description file, where the description names one.
void AddTexts(Json& diagnosis, const Json& address, const DescribedBus& known) {
    const auto* const slave = known.SlaveAt(address);
    if (slave != nullptr && slave->gsd)
        Diagnosis::AddTexts(diagnosis, BusDescription::Gsd::ReadFile(known.PathOf(slave->gsd.value)).device);
}

void AddTextsToFacts(Json& facts, const DescribedBus& known) {
    if (!facts.contains("slaves"))
        return AddTexts(facts, facts["address"], known);
    for (Json& slave : facts["slaves"])
        if (!slave["diagnosis"].is_null())
            AddTexts(slave["diagnosis"], slave["address"], known);
}

std::string DiagOfAllText(const Json& facts, const Paint& paint) {
    std::vector<std::vector<std::string>> rows{{"ADDRESS", "IDENT", "MASTER", "DATA TRANSFER", "DIAGNOSIS"}};
    for (const Json& slave : facts["slaves"]) {
        const Json diagnosis = slave["diagnosis"].is_null() ? Diagnosis({}).ToJson() : slave["diagnosis"];
        const Json& ident = diagnosis["identNumber"];
        const Json& master = diagnosis["masterAddress"];
        rows.push_back({slave["address"].dump(), ident.is_null() ? "-" : Hex(ident.get<unsigned int>()),
                        master.is_null() ? "none" : master.dump(), slave["dataTransfer"] ? "yes" : "no",
                        slave["diagnosis"].is_null() ? "-" : Diagnosis::Summary(diagnosis)});
    }
    return SlaveTable(rows, facts["slaves"], paint);
}

// ---- vesk slave-config

Json AnswerSlaveConfig(Session& session, const Json& arguments) {
    const auto bytes = AskAboutSlave(session, arguments, &IDPVMModule::GetSlaveConfig, "the configuration");
    return {
        {"address", arguments["address"]}, {"modules", DecodeIdentifiers(bytes)}, {"data", HexDigits(bytes)}};
}

std::string LengthText(const Json& length, const char* direction) {
    if (length.is_null())
        return "";
    return ", " + length["length"].dump() + " bytes " + direction + " (" + length["unit"].get<std::string>() +
           "s, consistent as " + (length["consistency"] == "whole" ? "a whole" : "units") + ")";
}

std::string ModuleText(const Json& module) {
    if (module.contains("cutShort"))
        return ", cut short";
    const std::string lengths = LengthText(module["input"], "in") + LengthText(module["output"], "out");
    const std::string manufacturer = module.value("manufacturerData", "");
    return (lengths.empty() ? ", empty slot" : lengths) +
           (manufacturer.empty() ? "" : ", manufacturer's data " + manufacturer);
}

std::string SlaveConfigText(const Json& facts, const Paint&) {
    std::string text = "Slave " + facts["address"].dump() + ", identifiers " +
                       facts["data"].get<std::string>() +
                       "; \"in\" goes to the slave, \"out\" comes from it\n";
    int number = 0;
    for (const Json& module : facts["modules"])
        text += "  module " + std::to_string(number++) + ": " + module["identifier"].get<std::string>() +
                ModuleText(module) + "\n";
    return text;
}

} // namespace

Action AddDiag(CLI::App& app) {
    static constexpr Verb DIAG{Need::OPERATING, AnswerDiag, DiagText};
    static constexpr Verb ALL{Need::OPERATING, AnswerDiagOfAll, DiagOfAllText};
    const auto command = std::make_shared<VerbCommand>(app, DIAG);
    CLI::Option* const address = command->AddAddress()->required(false);
    app.add_flag_callback(
           "--all", [self = command.get()] { self->verb = &ALL; },
           "The diagnoses of all slaves that are configured, a line each")
        ->excludes(address);
    return [command, address] {
        if (command->verb == &DIAG && address->empty())
            throw CLI::RequiredError("ADDRESS or --all");
        command->preparations.emplace_back([self = command.get()](const DescribedBus* known) {
            if (known != nullptr)
                self->complete = [known](Session&, Json& facts) { AddTextsToFacts(facts, *known); };
        });
        return command->Execute();
    };
}

Action AddSlaveConfig(CLI::App& app) {
    static constexpr Verb SLAVE_CONFIG{Need::OPERATING, AnswerSlaveConfig, SlaveConfigText};
    const auto command = std::make_shared<VerbCommand>(app, SLAVE_CONFIG);
    command->AddAddress();
    return [command] { return command->Execute(); };
}

} // namespace VeskTool
