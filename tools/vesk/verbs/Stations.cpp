// SPDX-License-Identifier: MIT
#include "tools/vesk/verbs/Stations.h"

#include "tools/vesk/explain/Diagnosis.h"
#include "tools/vesk/session/StationLists.h"
#include "tools/vesk/text/ByteText.h"
#include "tools/vesk/text/Elements.h"
#include "tools/vesk/text/Text.h"

#include <algorithm>
#include <array>

namespace VeskTool {

using Vesk::Modules::DPVM::IDPVMModule;

static constexpr unsigned int STATIONS = 128;
static constexpr unsigned int ROW = 10;

// By the value of a byte of the live list; any other says that nobody answers.
static constexpr std::array KINDS{"slave", "master, not ready", "master, ready for the ring",
                                  "master in the ring"};

Json StationListsToJson(Session& session) {
    auto& module = session.Module();
    return {{"configured", ListedStations(*module.GetSlaveConfiguredList())},
            {"dataTransfer", ListedStations(*module.GetDataTransferList())},
            {"diagnostic", ListedStations(*module.GetSlaveDiagnosticList())},
            {"dpv1Connection", ListedStations(*module.GetDpv1ConnectionLiveList())}};
}

bool Lists(const Json& list, unsigned int address) {
    return std::find(list.begin(), list.end(), address) != list.end();
}

Json AskForLiveList(Session& session) {
    const auto bytes =
        session
            .Ask([&](IDPVMModule::ResponseAction action) { session.Module().GetLiveList(action); },
                 "the live list")
            ->Data();
    Json stations = Json::array();
    for (int address = 0; address < bytes->Count(); ++address)
        if (const std::size_t kind = bytes->Get(address); kind < KINDS.size())
            stations.push_back({{"address", address}, {"kind", KINDS[kind]}});
    return stations;
}

static const Json* Find(const Json& liveList, unsigned int address) {
    const auto found = std::find_if(liveList.begin(), liveList.end(),
                                    [&](const Json& station) { return station["address"] == address; });
    return found == liveList.end() ? nullptr : &*found;
}

bool Lives(const Json& liveList, unsigned int address) {
    return Find(liveList, address) != nullptr;
}

std::vector<unsigned char> AskAboutSlave(Session& session, const Json& arguments,
                                         Session::SlaveService service, const std::string& what) {
    const auto address = arguments["address"].get<unsigned int>();
    return Elements(
        *session.Ask(session.About(address, service), what + " of slave " + std::to_string(address))->Data());
}

std::optional<std::vector<unsigned char>> TryAboutSlave(Session& session, unsigned int address,
                                                        Session::SlaveService service) {
    const auto answer =
        session.TryAsk(session.About(address, service), "a question about slave " + std::to_string(address));
    if (answer->Error() != Vesk::Mailbox::ErrorCode::NO_ERROR)
        return std::nullopt;
    return Elements(*answer->Data());
}

Json AskForFoundSlaves(Session& session, const Json& liveList) {
    Json slaves = Json::array();
    for (const Json& station : liveList) {
        if (station["kind"] != KINDS[0])
            continue;
        const Json& address = station["address"];
        const auto identifiers = TryAboutSlave(session, address, &IDPVMModule::GetSlaveConfig);
        const auto bytes = TryAboutSlave(session, address, &IDPVMModule::GetSlaveDiag);
        const Json diagnosis = bytes ? Diagnosis(*bytes).ToJson() : Json();
        const bool said = bytes && diagnosis["status"]["stationNonExistent"] == false;
        slaves.push_back({{"address", address},
                          {"identNumber", said ? diagnosis["identNumber"] : Json()},
                          {"identifiers", identifiers ? Json(HexDigits(*identifiers)) : Json()},
                          {"diagnosis", diagnosis}});
    }
    return slaves;
}

std::string SlaveTable(const std::vector<std::vector<std::string>>& rows, const Json& slaves,
                       const Paint& paint) {
    const std::vector<std::string> lines = TableLines(rows);
    std::string text = paint.Cut(lines.front()) + "\n";
    for (std::size_t i = 0; i < slaves.size(); ++i) {
        const std::string line = paint.Cut(lines[i + 1]);
        const bool right = slaves[i]["dataTransfer"].get<bool>() && !slaves[i]["diagnostic"].get<bool>();
        text += (right ? line : paint.Bad(line)) + "\n";
    }
    return text;
}

static std::string Sign(unsigned int address, const Json& lists, const Json& liveList, const Paint& paint) {
    const bool exchanges = Lists(lists["dataTransfer"], address);
    if (Lists(lists["diagnostic"], address))
        return paint.Bad(exchanges ? "D" : "!");
    if (exchanges)
        return paint.Good("X");
    if (Lists(lists["configured"], address))
        return paint.Bad("-");
    const Json* const station = Find(liveList, address);
    return !station ? "." : (*station)["kind"] == KINDS[0] ? "o" : "M";
}

std::string StationGrid(const Json& lists, const Json& liveList, const Paint& paint) {
    std::string text = "     ";
    for (unsigned int column = 0; column < ROW; ++column)
        text += " " + std::to_string(column);
    for (unsigned int address = 0; address < STATIONS; ++address) {
        const std::string row = std::to_string(address);
        if (address % ROW == 0)
            text += Padded("\n", 6 - row.size()) + row;
        text += ' '; // not " " + Sign(): at -O3 GCC 12 suspects that of an overflow
        text += Sign(address, lists, liveList, paint);
    }
    return text + "\nX exchanges data, D the same with diagnostics, ! only diagnostics, - configured only,\n"
                  "o a slave that is not configured, M a master, . nobody\n";
}

} // namespace VeskTool
