// SPDX-License-Identifier: MIT
#include "tools/vesk/verbs/StartUp.h"

#include "failures/Problem.h"
#include "tools/vesk/explain/Advice.h"
#include "tools/vesk/explain/SlaveState.h"
#include "tools/vesk/session/Dumps.h"
#include "tools/vesk/text/ByteText.h"
#include "tools/vesk/text/Elements.h"
#include "tools/vesk/text/Text.h"
#include "tools/vesk/verbs/Stations.h"

#include <array>
#include <cctype>
#include <span>

namespace VeskTool {

namespace Problems = Failures::Problems;
using Failures::Problem;
using Vesk::Modules::DPVM::OperationMode_e;

namespace {

class Examination {
public:
    Examination(Session& session, const Json& arguments) : _session(session), _arguments(arguments) {}

    Json Examine();

    /// The facts where `exception` has just ended the session.
    Json ExamineEnd(const std::exception& exception);

private:
    struct Step {
        const char* name;
        /// Goes through the step; what there is to say of it. Throws where it is not right.
        std::string (Examination::*examine)();
    };

    static const std::array<Step, 6> STEPS;

    std::string ModuleReady();
    std::string DatabaseMatches();
    std::string Initialised();
    std::string BusOnline();
    std::string OperationMode();
    std::string Slaves();

    Json SlaveToJson(unsigned int address, const Json& lists);
    void Examine(const Step& step);
    void Fail(const Step& step, const Problem& problem);
    void End(const Step& step, const std::exception& exception);
    Json Facts() const;

    Session& _session;
    const Json& _arguments;
    Json _steps = Json::array();
    Json _problem;
    bool _alive = true;
    Json _slaves = Json::array();
};

const std::array<Examination::Step, 6> Examination::STEPS{{
    {"module ready", &Examination::ModuleReady},
    {"database", &Examination::DatabaseMatches},
    {"initialised", &Examination::Initialised},
    {"bus online", &Examination::BusOnline},
    {"operation mode", &Examination::OperationMode},
    {"slaves", &Examination::Slaves},
}};

Json Examination::Examine() {
    for (const Step& step : STEPS)
        Examine(step);
    return Facts();
}

Json Examination::ExamineEnd(const std::exception& exception) {
    End(STEPS.front(), exception);
    for (const Step& step : std::span(STEPS).subspan(1))
        Examine(step);
    return Facts();
}

Json Examination::Facts() const {
    return {{"ok", _problem.is_null()},
            {"steps", _steps},
            {"problem", _problem},
            {"alive", _alive},
            {"mode", _session.Mode() ? Json(ModeName(*_session.Mode())) : Json()},
            {"slaves", _slaves}};
}

void Examination::Examine(const Step& step) {
    if (!_problem.is_null()) {
        _steps.push_back({{"name", step.name}, {"state", "not reached"}, {"detail", ""}});
        return;
    }
    try {
        const std::string detail = (this->*step.examine)();
        _steps.push_back({{"name", step.name}, {"state", "ok"}, {"detail", detail}});
    } catch (const Problem& problem) {
        Fail(step, problem);
    } catch (const Failure& failure) { // the module said no, and goes on
        const Advice advice = AdviceFor(failure);
        Fail(step, Failures::ProblemOf(failure.what(), advice.cause, advice.next));
    } catch (const std::exception& exception) {
        End(step, exception);
    }
}

void Examination::End(const Step& step, const std::exception& exception) {
    const Advice advice = AdviceFor(exception);
    _alive = false;
    const std::string line = Told(exception);
    Fail(step, Failures::ProblemOf(line.substr(0, line.find("; ")), advice.cause, advice.next));
    if (const Json event = FatalEventOf(exception); !event.is_null()) {
        _problem["fatalEvent"] = event;
        _problem["dump"] = Dumps::Path();
    }
}

void Examination::Fail(const Step& step, const Problem& problem) {
    _steps.push_back({{"name", step.name}, {"state", "wrong"}, {"detail", problem.what}});
    _problem = {
        {"step", step.name}, {"what", problem.what}, {"cause", problem.cause}, {"next", problem.next}};
}

// ---- the steps

std::string Examination::ModuleReady() {
    _session.Reach(Need::BOOTED);
    return "VT22, serial " + Hex(_session.Module().Serial()) + ", firmware " + _session.FirmwareVersion();
}

std::string Examination::DatabaseMatches() {
    const auto info = _session.AskForDatabase();
    if (!info)
        throw Problems::NO_DATABASE.With();
    const std::string description = Printable(info->Description.Value());
    const std::string expected = _arguments.value("checksum", description);
    if (!Failures::IsChecksum(info->Description.Value()))
        throw Problems::NO_CHECKSUM.With({description});
    if (expected != description)
        throw Problems::OTHER_DATABASE.With({description, expected});
    return description + ", " + std::to_string(info->NoOfSlaves) + " slaves, " +
           std::to_string(info->TotalInputLength) + " bytes in, " + std::to_string(info->TotalOutputLength) +
           " bytes out";
}

std::string Examination::Initialised() {
    _session.Reach(Need::INITIALISED);
    return Vesk::Modules::DPVM::Vt22Module::StateToString(_session.ModuleState()).Value();
}

std::string Examination::BusOnline() {
    try {
        _session.Reach(Need::OPERATING);
    } catch (const Failure&) {
        // what it has not reported by now says it better
    }
    if (_session.Online() != true)
        throw Problems::OFF_BUS.With();
    // Only an answer shows that the module still lives.
    const Json liveList = AskForLiveList(_session);
    return std::to_string(liveList.size()) + (liveList.size() == 1 ? " station" : " stations");
}

std::string Examination::OperationMode() {
    if (_session.Mode() != OperationMode_e::OPERATE)
        throw Problems::OTHER_MODE.With({_session.Mode() ? ModeName(*_session.Mode()) : "unknown"});
    return "OPERATE";
}

Json Examination::SlaveToJson(unsigned int address, const Json& lists) {
    const std::string wrong = WhatIsWrong(_session, address);
    return {{"address", address},
            {"configured", true},
            {"dataTransfer", Lists(lists["dataTransfer"], address)},
            {"diagnostic", Lists(lists["diagnostic"], address)},
            {"cause", wrong.empty() ? Json() : Json(wrong)}};
}

std::string Examination::Slaves() {
    const Json lists = StationListsToJson(_session);
    for (const Json& address : lists["configured"])
        _slaves.push_back(SlaveToJson(address, lists));
    for (const Json& slave : _slaves)
        if (!slave["cause"].is_null()) {
            const auto& words = slave["dataTransfer"] ? Problems::DIAGNOSIS : Problems::NO_EXCHANGE;
            throw words.With({slave["address"].dump(), slave["cause"], slave["address"].dump()});
        }
    return std::to_string(_slaves.size()) + " of " + std::to_string(_slaves.size()) + " exchange data";
}

std::string SlaveText(const Json& slave, const Paint& paint) {
    if (slave["cause"].is_null())
        return "        " + Padded(slave["address"].dump(), 5) + "configured, exchanges data\n";
    return "        " +
           paint.Bad(Padded(slave["address"].dump(), 5) + "configured, " +
                     (slave["dataTransfer"] ? "exchanges data" : "does not exchange data") +
                     (slave["diagnostic"] ? ", diagnostics: " : ": ") + slave["cause"].get<std::string>()) +
           "\n";
}

std::string Sentence(std::string sentence) {
    if (!sentence.empty())
        sentence.front() = static_cast<char>(std::toupper(static_cast<unsigned char>(sentence.front())));
    return sentence;
}

} // namespace

Json ExamineStartUp(Session& session, const Json& arguments) {
    return Examination(session, arguments).Examine();
}

std::string StartUpText(const Json& facts, const Paint& paint) {
    std::string text;
    for (const Json& step : facts["steps"]) {
        const std::string state = step["state"];
        const std::string detail = step["detail"];
        text += (state == "ok"      ? paint.Good(Padded("ok", 8))
                 : state == "wrong" ? paint.Bad(Padded("WRONG", 8))
                                    : Padded("-", 8)) +
                (detail.empty() ? step["name"].get<std::string>() : Padded(step["name"], 16) + detail) + "\n";
    }
    for (const Json& slave : facts["slaves"])
        text += SlaveText(slave, paint);
    const Json& problem = facts["problem"];
    if (problem.is_null())
        return text + paint.Good("Everything is operational.") + "\n";
    const std::string what = problem["what"];
    text += paint.Bad(what.back() == '.' ? what : what + ".") + "\n";
    const std::string cause = problem["cause"];
    const std::string next = problem["next"];
    text += cause.empty() ? "" : "Cause: " + Sentence(cause) + (cause.back() == '.' ? "\n" : ".\n");
    text += next.empty() ? "" : "Next:  " + next + "\n";
    if (problem.contains("fatalEvent"))
        text += "Event: " + FatalEventText(problem["fatalEvent"]) + "\n" +
                "Dump:  " + problem["dump"].get<std::string>() + "\n";
    return text;
}

void WatchStartUp(Session& session, const Json& arguments, double seconds,
                  const std::function<void(const Json& facts)>& show) {
    while (true) {
        const Json facts = ExamineStartUp(session, arguments);
        show(facts);
        bool goesOn = facts["alive"];
        try {
            if (goesOn)
                session.UpdateFor(seconds, [] { return false; });
        } catch (const std::exception& exception) {
            show(Examination(session, arguments).ExamineEnd(exception));
            goesOn = false;
        }
        if (!goesOn) {
            session.Rest(seconds);
            session.Restart();
        }
    }
}

} // namespace VeskTool
