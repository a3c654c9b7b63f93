// SPDX-License-Identifier: MIT
#include "tools/vesk/explain/Diagnosis.h"
#include "tools/vesk/files/ConfigJson.h"
#include "tools/vesk/files/DatabaseFile.h"
#include "tools/vesk/text/ByteText.h"
#include "tools/vesk/text/Numbers.h"
#include "tools/vesk/text/Text.h"
#include "tools/vesk/verbs/Signals.h"
#include "tools/vesk/verbs/Stations.h"
#include "tools/vesk/verbs/Verbs.h"

#include <algorithm>

namespace VeskTool {

namespace {

Json LengthOf(const std::optional<std::vector<unsigned char>>& bytes) {
    return bytes ? Json(bytes->size()) : Json();
}

Json DataOf(const std::optional<std::vector<unsigned char>>& bytes) {
    return bytes ? Json(HexDigits(*bytes)) : Json();
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
    const auto input = TryAboutSlave(session, address, &Module::ReadSlaveInput);
    const auto output = TryAboutSlave(session, address, &Module::ReadSlaveOutput);
    const auto identifiers = TryAboutSlave(session, address, &Module::GetSlaveConfig);
    const auto bytes = TryAboutSlave(session, address, &Module::GetSlaveDiag);
    const Diagnosis diagnosis(bytes.value_or(std::vector<unsigned char>()));
    // A slave that does not answer has no ident number; what is there then is the master's.
    const bool there = bytes && !diagnosis.IsSet("stationNonExistent");
    return {{"address", address},
            {"identNumber", there ? Json(diagnosis.IdentNumber()) : Json()},
            {"inputLength", LengthOf(input)},
            {"outputLength", LengthOf(output)},
            {"input", DataOf(input)},
            {"output", DataOf(output)},
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

/// Adds what the description calls the slaves, and the values of their signals.
void AddNames(Session& session, Json& facts, const DescribedBus* known) {
    if (known == nullptr || HeldBy(session) != ChecksumText(known->config->Checksum()))
        return;
    for (Json& slave : facts["slaves"]) {
        const auto* const text = known->SlaveAt(slave["address"]);
        if (text == nullptr)
            continue;
        slave["name"] = text->name;
        slave["signals"] = Json::array();
        for (const BusDescription::Signal& signal : text->signals) {
            const Json& data = slave[signal.toBus ? "input" : "output"];
            slave["signals"].push_back(
                SignalToJson(signal, ParseHex("data", data.is_null() ? "" : data.get<std::string>())));
        }
    }
}

// ---- for people

std::string NumberText(const Json& value) {
    return value.is_null() ? "-" : value.dump();
}

std::vector<std::string> BriefRow(const Json& slave) {
    const Json& ident = slave["identNumber"];
    std::vector<std::string> row{slave["address"].dump(),
                                 ident.is_null() ? "-" : Hex(ident.get<unsigned int>()),
                                 NumberText(slave["inputLength"]), NumberText(slave["outputLength"])};
    for (const char* const list : {"configured", "dataTransfer", "diagnostic", "dpv1Connection"})
        row.emplace_back(slave[list].get<bool>() ? "yes" : "no");
    return row;
}

/// What a record of the configuration lets a slave do, and what it tells it.
std::vector<std::string> RecordCells(const Json& record) {
    if (record.is_null())
        return {"-", "-"};
    const Json& parameters = record["parameterData"];
    const auto milliseconds =
        10 * parameters["watchdogFactor1"].get<int>() * parameters["watchdogFactor2"].get<int>();
    const auto user = parameters["userParameters"].get<std::string>();
    return {milliseconds == 0 ? "off" : std::to_string(milliseconds) + " ms", user.empty() ? "-" : user};
}

/// The signals of all slaves.
std::string SignalTable(const Json& slaves) {
    std::vector<std::vector<std::string>> rows{{"SIGNAL", "DIRECTION", "VALUE"}};
    for (const Json& slave : slaves)
        for (const Json& signal : slave.value("signals", Json::array()))
            rows.push_back({slave["name"].get<std::string>() + "." + signal["name"].get<std::string>(),
                            signal["toBus"] ? "to the bus" : "from the bus", SignalText(signal)});
    std::string text = "\n";
    for (const std::string& line : TableLines(rows))
        text += line + "\n";
    return rows.size() > 1 ? text : "";
}

std::string SlavesText(const Json& facts, const Paint& paint, bool verbose) {
    const bool records = verbose && !facts["configMatches"].is_null();
    std::vector<std::vector<std::string>> rows{
        {"ADDRESS", "IDENT", "IN", "OUT", "CONFIGURED", "DATA TRANSFER", "DIAGNOSTICS", "DP-V1"}};
    const bool names = verbose && std::any_of(facts["slaves"].begin(), facts["slaves"].end(),
                                              [](const Json& slave) { return slave.contains("name"); });
    if (names)
        rows[0].insert(rows[0].begin() + 1, "NAME");
    if (verbose)
        rows[0].insert(rows[0].end(), {"IDENTIFIERS", "DIAGNOSIS"});
    if (records)
        rows[0].insert(rows[0].end(), {"WATCHDOG", "PARAMETERS"});
    for (const Json& slave : facts["slaves"]) {
        std::vector<std::string> row = BriefRow(slave);
        if (names)
            row.insert(row.begin() + 1, slave.value("name", "-"));
        const Json& identifiers = slave["identifiers"];
        const Json& diagnosis = slave["diagnosis"];
        if (verbose)
            row.insert(row.end(), {identifiers.is_null() ? "-" : identifiers.get<std::string>(),
                                   diagnosis.is_null() ? "-" : Diagnosis::Summary(diagnosis)});
        if (records) {
            const auto cells = RecordCells(slave["record"]);
            row.insert(row.end(), cells.begin(), cells.end());
        }
        rows.push_back(row);
    }
    std::string text = SlaveTable(rows, facts["slaves"], paint);
    if (names)
        text += SignalTable(facts["slaves"]);
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
        "What each slave says of itself, and what --config tells it");
    command->AddConfig("Configuration database (.ddb) or bus description (.toml) that the module was given",
                       [self](const std::string& path) {
                           self->bus = LoadDescribedBus(path);
                           self->arguments["config"] = ToJson(*self->bus->config);
                       });
    command->preparations.emplace_back([self](const DescribedBus* known) {
        self->complete = [known](Session& session, Json& facts) { AddNames(session, facts, known); };
    });
    return [command] { return command->Execute(); };
}

Action AddLiveList(CLI::App& app) {
    static constexpr Verb LIVE_LIST{Need::OPERATING, AnswerLiveList, LiveListText};
    const auto command = std::make_shared<VerbCommand>(app, LIVE_LIST);
    return [command] { return command->Execute(); };
}

} // namespace VeskTool
