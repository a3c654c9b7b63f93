// SPDX-License-Identifier: MIT
#include "tools/vesk/session/Session.h"

#include "tools/vesk/session/Dumps.h"
#include "tools/vesk/text/Interruption.h"
#include "tools/vesk/text/Text.h"
#include "vesk/modules/dpvm/CreateHostInterface.h"
#include "vesk/modules/dpvm/DPVMMessages.h"
#include "vesk/modules/dpvm/Vt22FatalEventException.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <thread>

namespace VeskTool {

using namespace Vesk::Modules::DPVM;
using System::DateTime;
using Vesk::Mailbox::ErrorCode;

static constexpr double TIMEOUT_SECONDS = 15;

/// How long slaves may take to be parameterised, configured and taken into the exchange.
static constexpr double SETTLING_SECONDS = 1;

// The word of an INVALID_OTHER answer that says why, and its value where there is no database.
static constexpr int REASON_WORD = 7;
static constexpr unsigned short NO_DATABASE = 1;

Refusal::Refusal(const std::string& what, ErrorCode& error)
    : Refusal("The module refused " + what + ": " + error.Name.Value() + " (" + Hex(error.Id) + ")",
              error.Id) {}

Refusal::Refusal(const std::string& whole, unsigned char code)
    : Failure(whole, "Refusal", whole), _code(code) {}

Session::Session(Link link, std::shared_ptr<Config::IBusConfig> config)
    : _link(std::move(link)), _config(std::move(config)) {
    Restart();
}

void Session::Restart() {
    _module.reset(); // its end would reset the next one's module
    Dumps::KeepNone();
    _settled = false;
    _steps.clear();
    _start = DateTime::Now();
    const auto reports = _reports = std::make_shared<Reports>();
    _module = Vt22Module::Create(
        CreateHostInterface(_link.dpRamPath, _link.offset, _link.velmoIrq_n, _link.reset_n,
                            _link.bootloader_enable_n),
        System::Func<void>::Create([reports] { reports->online = false; }),
        System::Func<void>::Create([reports] { reports->online = true; }),
        System::ArgFunc<OperationMode, void>::Create([reports](OperationMode mode) { reports->mode = mode; }),
        _config);
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

// ---- how far the module is

void Session::Reach(Need need) {
    CheckAlive();
    if (need == Need::NOTHING)
        return;
    UpdateUntil([this] { return _module->Booted(); }, "BOOTED");
    if (need == Need::BOOTED)
        return;
    if (_config)
        UpdateUntil([this] { return _module->Configured(); }, "DOWNLOAD_COMPLETE");
    if (need == Need::CONFIGURED)
        return;
    Initialise();
    if (need == Need::OPERATING)
        Operate();
}

void Session::Initialise() {
    if (_module->State() < State::INITIALIZING) {
        const auto database = _config ? _module->GetDatabaseInfo() : AskForDatabase();
        if (!database)
            throw Failure("The module holds no database, so it cannot go onto a bus");
        _inputs.Map(*_module, database->Description.Value());
        _module->BeginInitialization();
    }
    UpdateUntil([this] { return _module->Initialized(); }, "INITIALIZED");
}

void Session::Operate() {
    if (_settled)
        return;
    SetMode(OperationMode_e::OPERATE);
    UpdateFor(SETTLING_SECONDS, [this] { return AllExchange(); });
    _settled = true;
}

bool Session::AllExchange() {
    const auto configured = _module->GetSlaveConfiguredList();
    const auto dataTransfer = _module->GetDataTransferList();
    return std::equal(configured->Data(), configured->Data() + configured->Count(), dataTransfer->Data());
}

// ---- the loop

void Session::CheckAlive() const {
    if (!Alive())
        throw Failure("The life of the module has ended, so nothing can be asked of it");
}

/// What the signal does to the module.
std::string Session::AfterSignal(int signal) const {
    return signal == SIGINT && _outlivesInterrupts ? "; the module goes on" : "; the module is in reset";
}

void Session::Update() {
    CheckAlive();
    StopIfSignalled([this](int signal) {
        return "in the state " + Vt22Module::StateToString(_module->State()).Value() + AfterSignal(signal);
    });
    try {
        if (_cycle)
            _cycle->Do([this] { _module->Update(); });
        else
            _module->Update();
    } catch (const Vt22FatalEventException&) {
        Dumps::Keep();
        _module.reset();
        throw;
    } catch (...) {
        _module.reset();
        throw;
    }
    NoteState();
    Pause(std::chrono::microseconds(_cycle ? 0 : 20));
}

void Session::Pause(std::chrono::microseconds rest) {
    if (_updateObserver)
        _updateObserver();
    if (rest.count() > 0)
        std::this_thread::sleep_for(rest);
}

void Session::NoteState() {
    const State state = _module->State();
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

std::shared_ptr<DatabaseInfo> Session::AskForDatabase() {
    const std::string what = "the request for the database information";
    const Response answer = TryAsk(
        [this](IDPVMModule::ResponseAction action) {
            _module->Enqueue(DPVMMessages::GetDatabaseInfo(), std::move(action), SERVICE_SECONDS);
        },
        what);
    if (answer->Error() == ErrorCode::NO_ERROR)
        return DatabaseInfo::FromMailboxResponse(answer);
    if (answer->Error() == ErrorCode::INVALID_OTHER && answer->Extended()->Get(REASON_WORD) == NO_DATABASE)
        return nullptr;
    throw Refusal(what, *answer->Error());
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

std::string ModeName(Session::OperationMode mode) {
    switch (mode) {
    case OperationMode_e::OFFLINE:
        return "OFFLINE";
    case OperationMode_e::STOP:
        return "STOP";
    case OperationMode_e::CLEAR:
        return "CLEAR";
    case OperationMode_e::OPERATE:
        return "OPERATE";
    }
    return Hex(static_cast<unsigned int>(mode));
}

} // namespace VeskTool
