// SPDX-License-Identifier: MIT
#include "tools/vesk/verbs/Changes.h"

#include "tools/vesk/explain/Advice.h"
#include "tools/vesk/text/ByteText.h"
#include "tools/vesk/text/Clock.h"
#include "tools/vesk/verbs/Stations.h"

#include <algorithm>

namespace VeskTool {

/// How long a plant that has failed is left alone.
static constexpr double AGAIN_SECONDS = 0.5;

static Json FailureToJson(const Json& type, const Json& message) {
    return {{"change", "failure"}, {"type", type}, {"message", message}};
}

static std::vector<Json> FactsOf(Session& session) {
    const auto state = Vesk::Modules::DPVM::Vt22Module::StateToString(session.ModuleState()).Value();
    const std::string mode = session.Online() != true ? "OFFLINE"
                             : session.Mode()         ? ModeName(*session.Mode())
                                                      : "";
    std::vector<Json> facts{{{"change", "state"}, {"state", state}}, {{"change", "mode"}, {"mode", mode}}};
    const Json lists = StationListsToJson(session);
    for (const Json& address : lists["configured"])
        facts.push_back({{"change", "slave"},
                         {"address", address},
                         {"dataTransfer", Lists(lists["dataTransfer"], address)},
                         {"diagnostic", Lists(lists["diagnostic"], address)}});
    return facts;
}

Changes::Changes(Session& session) : _session(session), _failure(FailureToJson({}, {})) {}

/// A plant that has left the bus is looked for again, and then is another one.
void Changes::GoOn() {
    try {
        if (!_session.Alive())
            _session.Restart();
        _session.Update();
        _failure = FailureToJson({}, {});
    } catch (const std::exception& exception) {
        if (_session.Alive())
            _failure = FailureToJson(TypeOf(exception), MessageOf(exception));
        _session.Rest(AGAIN_SECONDS);
        try {
            _session.Restart();
        } catch (const std::exception&) {
            // it is still away, which was said
        }
    }
}

std::vector<Json> Changes::Next() {
    GoOn();
    std::vector<Json> now{_failure};
    if (_session.Alive()) {
        const std::vector<Json> facts = FactsOf(_session);
        now.insert(now.end(), facts.begin(), facts.end());
    }
    std::vector<Json> changes;
    for (const Json& fact : now)
        if (std::find(_before.begin(), _before.end(), fact) == _before.end() &&
            !(_before.empty() && fact["change"] == "failure" && fact["type"].is_null())) {
            changes.push_back(fact);
            changes.back()["time"] = UniversalTime();
        }
    _before = std::move(now);
    return changes;
}

std::string Changes::Text(const Json& change) {
    const std::string kind = change["change"];
    if (kind == "state" || kind == "mode")
        return kind + " " + change[kind].get<std::string>();
    if (kind == "failure" && change["type"].is_null())
        return "the application goes on";
    if (kind == "failure") {
        const std::string type = change["type"];
        return (type == "Failure" ? "" : type + ": ") + Harmless(change["message"].get<std::string>());
    }
    return "slave " + change["address"].dump() +
           (change["dataTransfer"] ? " exchanges data" : " does not exchange data") +
           (change["diagnostic"] ? ", has diagnostics" : "");
}

} // namespace VeskTool
