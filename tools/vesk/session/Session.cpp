// SPDX-License-Identifier: MIT
#include "tools/vesk/session/Session.h"

#include "tools/vesk/session/Dumps.h"
#include "tools/vesk/text/Interruption.h"
#include "tools/vesk/text/Text.h"

#include <algorithm>
#include <chrono>
#include <thread>

namespace VeskTool {

using namespace Vesk::Modules::DPVM;
using System::DateTime;
using Vesk::Mailbox::ErrorCode;

static constexpr double TIMEOUT_SECONDS = 15;

Refusal::Refusal(const std::string& what, ErrorCode& error)
    : Refusal("The module refused " + what + ": " + error.Name.Value() + " (" + Hex(error.Id) + ")",
              error.Id) {}

Refusal::Refusal(const std::string& whole, unsigned char code)
    : Failure(whole, "Refusal", whole), _code(code) {}

Session::Callbacks Session::End() {
    _module.reset();
    Dumps::KeepNone();
    _settled = false;
    _steps.clear();
    _start = DateTime::Now();
    const auto reports = _reports = std::make_shared<Reports>();
    return {System::Func<void>::Create([reports] { reports->online = false; }),
            System::Func<void>::Create([reports] { reports->online = true; }),
            System::ArgFunc<OperationMode, void>::Create(
                [reports](OperationMode mode) { reports->mode = mode; })};
}

void Session::Begin(std::shared_ptr<IDPVMModule> module) {
    _module = std::move(module);
    NoteState();
}

void Session::OnState(std::function<void(const Step&)> observer) {
    _stateObserver = std::move(observer);
    for (const Step& step : _steps)
        _stateObserver(step);
}

double SecondsSince(const DateTime& start) {
    return static_cast<double>((DateTime::Now() - start).Nanoseconds()) / 1e9;
}

std::string Session::FirmwareVersion() const {
    return Version({_module->SoftwareMajor(), _module->SoftwareMinor(), _module->SoftwareBuild()});
}

std::string Session::BootloaderVersion() const {
    return Version({_module->BootloaderMajor(), _module->BootloaderMinor()});
}

int Session::Downloads() const {
    const auto resets = std::count_if(_steps.begin(), _steps.end(),
                                      [](const Step& step) { return step.state == State::POWER_OFF; });
    return static_cast<int>(resets) - 1; // the first one is that of the start
}

// ---- the loop

void Session::CheckAlive() const {
    if (!Alive())
        throw Failure("The life of the module has ended, so nothing can be asked of it");
}

void Session::Update() {
    CheckAlive();
    StopIfSignalled([this](int signal) {
        return "in the state " + Vt22Module::StateToString(ModuleState()).Value() + AfterSignal(signal);
    });
    if (_cycle)
        _cycle->Do([this] { UpdateModule(); });
    else
        UpdateModule();
    NoteState();
    Pause(_cycle ? std::chrono::microseconds(0) : _rest);
}

void Session::Pause(std::chrono::microseconds rest) {
    if (_updateObserver)
        _updateObserver();
    if (rest.count() > 0)
        std::this_thread::sleep_for(rest);
}

void Session::NoteState() {
    const State state = ModuleState();
    if (!_steps.empty() && _steps.back().state == state)
        return;
    _steps.push_back({state, SecondsSince(_start) * 1000});
    if (_stateObserver)
        _stateObserver(_steps.back());
}

void Session::UpdateUntil(const std::function<bool()>& reached, const std::string& what) {
    const DateTime start = DateTime::Now();
    while (!reached()) {
        if (SecondsSince(start) > TIMEOUT_SECONDS)
            throw Failure("Timeout waiting for " + what);
        StopIfSignalled([&](int signal) { return "while waiting for " + what + AfterSignal(signal); });
        Update();
    }
}

void Session::Rest(double seconds) {
    for (const DateTime start = DateTime::Now(); SecondsSince(start) < seconds;) {
        StopIfSignalled(
            [this](int signal) { return "between two lives of the module" + AfterSignal(signal); });
        Pause(std::chrono::milliseconds(1));
    }
}

void Session::UpdateFor(double seconds, const std::function<bool()>& reached) {
    for (const DateTime start = DateTime::Now(); !reached() && SecondsSince(start) < seconds;)
        Update();
}

// ---- services

Session::Service Session::About(unsigned int address, SlaveService service) {
    return [this, address, service](IDPVMModule::ResponseAction action) {
        (_module.get()->*service)(static_cast<unsigned char>(address), std::move(action));
    };
}

Session::Response Session::TryAsk(const Service& service, const std::string& what) {
    CheckAlive();
    const auto answer = std::make_shared<Response>();
    service(System::ArgFunc<Response, void>::Create(
        [answer](Response response) { *answer = std::move(response); }));
    UpdateUntil([&] { return *answer != nullptr; }, "the answer to " + what);
    return *answer;
}

Session::Response Session::Ask(const Service& service, const std::string& what) {
    const Response answer = TryAsk(service, what);
    if (answer->Error() != ErrorCode::NO_ERROR)
        throw Refusal(what, *answer->Error());
    return answer;
}

void Session::SetMode(OperationMode mode) {
    const bool online = mode != OperationMode_e::OFFLINE;
    _module->SetOperationMode(mode);
    UpdateUntil([&] { return Online() == online && (!online || Mode() == mode); },
                "the operation mode " + ModeName(mode));
    _settled = mode != OperationMode_e::OPERATE;
}

void Session::InMode(OperationMode mode, const std::function<void()>& work) {
    const auto before = Online() == true ? Mode() : std::nullopt;
    const auto goBack = [&] {
        if (before && Alive())
            SetMode(*before);
    };
    SetMode(mode);
    _settled = false;
    try {
        work();
    } catch (...) {
        goBack();
        throw;
    }
    goBack();
}

} // namespace VeskTool
