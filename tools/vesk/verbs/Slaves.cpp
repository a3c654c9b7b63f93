// SPDX-License-Identifier: MIT
#include "tools/vesk/explain/Diagnosis.h"
#include "tools/vesk/files/ConfigJson.h"
#include "tools/vesk/files/DatabaseFile.h"
#include "tools/vesk/text/ByteText.h"
#include "tools/vesk/text/Elements.h"
#include "tools/vesk/text/Numbers.h"
#include "tools/vesk/text/Text.h"
#include "tools/vesk/verbs/Stations.h"
#include "tools/vesk/verbs/Verbs.h"

namespace VeskTool {

namespace {

/// The bytes that the module answers about a slave; nothing where it answers with an error.
std::optional<std::vector<unsigned char>> AskAbout(Session& session, Session::SlaveService service,
                                                   unsigned int address) {
    const auto answer =
        session.TryAsk(session.About(address, service), "a question about slave " + std::to_string(address));
    if (answer->Error() != Vesk::Mailbox::ErrorCode::NO_ERROR)
        return std::nullopt;
    return Elements(*answer->Data());
}

Json LengthOf(const std::optional<std::vector<unsigned char>>& bytes) {
    return bytes ? Json(bytes->size()) : Json();
}

/// What `config`, the JSON form of a configuration or null, says about a slave; null if nothing.
Json RecordOf(const Json& config, unsigned int address) {
    if (!config.is_null())
        for (const Json& slave : config["slaves"])
            if (slave["address"] == address)
                return slave;
    return {};
}

Json SlaveToJson(Session& session, unsigned int address, const Json& lists, const Json& config) {
    using Module = Vesk::Modules::DPVM::IDPVMModule;
    const auto input = AskAbout(session, &Module::ReadSlaveInput, address);
    const auto output = AskAbout(session, &Module::ReadSlaveOutput, address);
    const auto identifiers = AskAbout(session, &Module::GetSlaveConfig, address);
    const auto bytes = AskAbout(session, &Module::GetSlaveDiag, address);
    const Diagnosis diagnosis(bytes.value_or(std::vector<unsigned char>()));
    // A slave that does not answer has no ident number; what is there then is the master's.
    const bool there = bytes && !diagnosis.IsSet("stationNonExistent");
    return {{"address", address},
            {"identNumber", there ? Json(diagnosis.IdentNumber()) : Json()},
            {"inputLength", LengthOf(input)},
            {"outputLength", LengthOf(output)},
            {"configured", Lists(lists["configured"], address)},
            {"dataTransfer", Lists(lists["dataTransfer"], address)},
            {"diagnostic", Lists(lists["diagnostic"], address)},
            {"dpv1Connection", Lists(lists["dpv1Connection"], address)},
            {"diagnosis", bytes ? diagnosis.ToJson() : Json()},
            {"identifiers", identifiers ? Json(HexDigits(*identifiers)) : Json()},
            {"record", RecordOf(config, address)}};
}

Json AnswerSlaves(Session& session, const Json& arguments) {
    const Json lists = StationListsToJson(session);
    const Json liveList = AskForLiveList(session);
    const Json config = arguments.value("config", Json());
    const auto database = session.AskForDatabase();
    Json slavesThere = Json::array();
    for (const Json& station : liveList)
        if (station["kind"] == "slave")
            slavesThere.push_back(station["address"]);
    Json slaves = Json::array();
    for (unsigned int address = 0; address <= HIGHEST_ADDRESS; ++address)
        if (Lists(lists["configured"], address) || Lists(slavesThere, address))
            slaves.push_back(SlaveToJson(session, address, lists, config));
    const bool matches = database && !config.is_null() && config["checksum"] == database->Description.Value();
    return {{"slaves", slaves},
            {"lists", lists},
            {"liveList", liveList},
            {"configMatches", config.is_null() ? Json() : Json(matches)}};
}

// ---- for people

std::string NumberText(const Json& value) {
    return value.is_null() ? "-" : value.dump();
}

std::string SlaveLine(const Json& slave, const Paint& paint) {
    const Json& ident = slave["identNumber"];
    const auto flag = [&slave](const char* key, std::size_t width) {
        return Padded(slave[key].get<bool>() ? "yes" : "no", width);
    };
    const bool right = slave["dataTransfer"].get<bool>() && !slave["diagnostic"].get<bool>();
    std::string line = Padded(slave["address"].dump(), 9) +
                       Padded(ident.is_null() ? "-" : Hex(ident.get<unsigned int>()), 8) +
                       Padded(NumberText(slave["inputLength"]), 5) +
                       Padded(NumberText(slave["outputLength"]), 5) + flag("configured", 12) +
                       flag("dataTransfer", 15) + flag("diagnostic", 13) + flag("dpv1Connection", 0);
    return (right ? line : paint.Bad(line)) + "\n";
}

std::string ValueText(const Json& value) {
    if (value.is_string())
        return value.get<std::string>();
    const bool both = value.is_number() && value.get<unsigned int>() > 9;
    return value.dump() + (both ? " (" + Hex(value.get<unsigned int>()) + ")" : "");
}

/// The values of nested objects, a line each, under their dotted names.
std::string Lines(const Json& object, const std::string& prefix) {
    std::string text;
    for (const auto& [key, value] : object.items())
        text += value.is_object() ? Lines(value, prefix + key + ".")
                                  : "    " + Padded(prefix + key, 44) + " " + ValueText(value) + "\n";
    return text;
}

std::string Details(const Json& slave) {
    std::string set;
    if (!slave["diagnosis"].is_null())
        for (const auto& [name, isSet] : slave["diagnosis"]["status"].items())
            if (isSet.get<bool>())
                set += (set.empty() ? "" : ", ") + name;
    const Json& identifiers = slave["identifiers"];
    return "    diagnosis    " + (set.empty() ? "nothing" : set) + "\n    identifiers  " +
           (identifiers.is_null() ? "-" : identifiers.get<std::string>()) + "\n" +
           (slave["record"].is_null() ? "" : Lines(slave["record"], ""));
}

std::string SlavesText(const Json& facts, const Paint& paint, bool verbose) {
    std::string text = "ADDRESS  IDENT   IN   OUT  CONFIGURED  DATA TRANSFER  DIAGNOSTICS  DP-V1\n";
    for (const Json& slave : facts["slaves"])
        text += SlaveLine(slave, paint) + (verbose ? Details(slave) : "");
    if (facts["configMatches"] == false)
        text += paint.Bad("The module holds another database than that file.") + "\n";
    return text + "\n" + StationGrid(facts["lists"], facts["liveList"], paint);
}

std::string BriefText(const Json& facts, const Paint& paint) {
    return SlavesText(facts, paint, false);
}

std::string VerboseText(const Json& facts, const Paint& paint) {
    return SlavesText(facts, paint, true);
}

Json AnswerLiveList(Session& session, const Json&) {
    return {{"stations", AskForLiveList(session)}, {"lists", StationListsToJson(session)}};
}

std::string LiveListText(const Json& facts, const Paint& paint) {
    std::string text;
    for (const Json& station : facts["stations"])
        text += Padded(station["address"].dump(), 5) + station["kind"].get<std::string>() + "\n";
    return text + "\n" + StationGrid(facts["lists"], facts["stations"], paint);
}

} // namespace

Action AddSlaves(CLI::App& app) {
    static constexpr Verb SLAVES{Need::OPERATING, AnswerSlaves, BriefText};
    static constexpr Verb VERBOSE{Need::OPERATING, AnswerSlaves, VerboseText};
    const auto command = std::make_shared<VerbCommand>(app, SLAVES);
    VerbCommand* const self = command.get();
    app.add_flag_callback(
        "-v,--verbose", [self] { self->verb = &VERBOSE; },
        "What each slave says of itself, and its record where --config has it");
    command->AddConfig(
        "Configuration database file (.ddb) that the module was given",
        [self](const std::string& path) { self->arguments["config"] = ToJson(*LoadDatabaseFile(path)); });
    return [command] { return command->Execute(); };
}

Action AddLiveList(CLI::App& app) {
    static constexpr Verb LIVE_LIST{Need::OPERATING, AnswerLiveList, LiveListText};
    const auto command = std::make_shared<VerbCommand>(app, LIVE_LIST);
    return [command] { return command->Execute(); };
}

} // namespace VeskTool
