// SPDX-License-Identifier: MIT
#include "tools/vesk/explain/SlaveState.h"

#include "failures/Problem.h"
#include "tools/vesk/explain/Diagnosis.h"
#include "tools/vesk/session/StationLists.h"
#include "tools/vesk/text/Elements.h"
#include "tools/vesk/text/Text.h"

#include <algorithm>

namespace VeskTool {

using Vesk::Modules::DPVM::IDPVMModule;

static bool Has(const std::vector<int>& stations, unsigned int address) {
    return std::find(stations.begin(), stations.end(), static_cast<int>(address)) != stations.end();
}

static bool Answers(Session& session, unsigned int address) {
    const auto list = session.Ask(
        [&](IDPVMModule::ResponseAction action) { session.Module().GetLiveList(std::move(action)); },
        "the live list");
    return Has(LiveStations(*list->Data()), address);
}

std::string WhatIsWrong(Session& session, unsigned int address) {
    const bool exchanges = Has(ListedStations(*session.Module().GetDataTransferList()), address);
    if (exchanges && !Has(ListedStations(*session.Module().GetSlaveDiagnosticList()), address))
        return "";
    const auto answer = session.TryAsk(session.About(address, &IDPVMModule::GetSlaveDiag),
                                       "the diagnosis of slave " + std::to_string(address));
    const Diagnosis diagnosis(Elements(*answer->Data()));
    if (exchanges)
        return diagnosis.IsSet("extendedDiagnostics") ? "it reports a fault of its own"
                                                      : std::string(Failures::Problems::REPORTS_DIAGNOSIS);
    if (diagnosis.IsSet("stationNonExistent") || !Answers(session, address))
        return "it does not answer on the bus: no supply, another address, or the cable";
    const std::string cause = diagnosis.Cause();
    return cause.empty() ? "its diagnosis does not say why" : cause;
}

void CheckExchange(Session& session, const std::vector<int>& addresses) {
    const auto exchanging = ListedStations(*session.Module().GetDataTransferList());
    std::vector<int> missing;
    std::copy_if(addresses.begin(), addresses.end(), std::back_inserter(missing),
                 [&](int address) { return !Has(exchanging, static_cast<unsigned int>(address)); });
    if (missing.empty())
        return;
    const std::string first = std::to_string(missing.front());
    const std::string why = WhatIsWrong(session, static_cast<unsigned int>(missing.front()));
    if (missing.size() == 1)
        throw Failure("Slave " + first + " does not exchange data: " + why);
    throw Failure("Slaves " + Addresses(missing) + " do not exchange data; slave " + first + ": " + why);
}

} // namespace VeskTool
