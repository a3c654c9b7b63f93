// SPDX-License-Identifier: MIT
#include "tools/vesk/session/OwnSession.h"

#include "tools/vesk/session/Dumps.h"
#include "vesk/modules/dpvm/CreateHostInterface.h"
#include "vesk/modules/dpvm/DPVMMessages.h"
#include "vesk/modules/dpvm/Vt22FatalEventException.h"

#include <algorithm>
#include <csignal>

namespace VeskTool {

using namespace Vesk::Modules::DPVM;
using Vesk::Mailbox::ErrorCode;

/// How long slaves may take to be parameterised, configured and taken into the exchange.
static constexpr double SETTLING_SECONDS = 1;

// The word of an INVALID_OTHER answer that says why, and its value where there is no database.
static constexpr int REASON_WORD = 7;
static constexpr unsigned short NO_DATABASE = 1;

OwnSession::OwnSession(Link link, std::shared_ptr<Config::IBusConfig> config)
    : Session(std::chrono::microseconds(20)), _link(std::move(link)), _config(std::move(config)) {
    OwnSession::Restart();
}

void OwnSession::Restart() {
    const Callbacks callbacks = End(); // the end of the object before would reset the next one's module
    Begin(Vt22Module::Create(CreateHostInterface(_link.dpRamPath, _link.offset, _link.velmoIrq_n,
                                                 _link.reset_n, _link.bootloader_enable_n),
                             callbacks.offline, callbacks.online, callbacks.mode, _config));
}

Vt22Module& OwnSession::Own() {
    return dynamic_cast<Vt22Module&>(*_module);
}

Session::State OwnSession::ModuleState() const {
    return dynamic_cast<const Vt22Module&>(*_module).State();
}

void OwnSession::UpdateModule() {
    try {
        _module->Update();
    } catch (const Vt22FatalEventException&) {
        Dumps::Keep();
        _module.reset();
        throw;
    } catch (...) {
        _module.reset();
        throw;
    }
}

std::string OwnSession::AfterSignal(int signal) const {
    return signal == SIGINT && OutlivesInterrupts() ? "; the module goes on" : "; the module is in reset";
}

// ---- how far the module is

void OwnSession::Reach(Need need) {
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

void OwnSession::Initialise() {
    if (ModuleState() < State::INITIALIZING) {
        const auto database = _config ? _module->GetDatabaseInfo() : AskForDatabase();
        if (!database)
            throw Failure("The module holds no database, so it cannot go onto a bus");
        _inputs.Map(*_module, database->Description.Value());
        _module->BeginInitialization();
    }
    UpdateUntil([this] { return _module->Initialized(); }, "INITIALIZED");
}

void OwnSession::Operate() {
    if (_settled)
        return;
    SetMode(OperationMode_e::OPERATE);
    UpdateFor(SETTLING_SECONDS, [this] { return AllExchange(); });
    _settled = true;
}

bool OwnSession::AllExchange() {
    const auto configured = _module->GetSlaveConfiguredList();
    const auto dataTransfer = _module->GetDataTransferList();
    return std::equal(configured->Data(), configured->Data() + configured->Count(), dataTransfer->Data());
}

// ---- what is asked and set

std::shared_ptr<DatabaseInfo> OwnSession::AskForDatabase() {
    const std::string what = "the request for the database information";
    const Response answer = TryAsk(
        [this](IDPVMModule::ResponseAction action) {
            Own().Enqueue(DPVMMessages::GetDatabaseInfo(), std::move(action), SERVICE_SECONDS);
        },
        what);
    if (answer->Error() == ErrorCode::NO_ERROR)
        return DatabaseInfo::FromMailboxResponse(answer);
    if (answer->Error() == ErrorCode::INVALID_OTHER && answer->Extended()->Get(REASON_WORD) == NO_DATABASE)
        return nullptr;
    throw Refusal(what, *answer->Error());
}

void OwnSession::TakePlaces(std::shared_ptr<Config::IBusConfig> places) {
    _inputs.TakePlaces(std::move(places));
}

void OwnSession::SetInput(unsigned int address, std::size_t offset, std::span<const unsigned char> bytes,
                          std::span<const unsigned char> mask) {
    _inputs.Set(address, offset, bytes, mask);
}

} // namespace VeskTool
