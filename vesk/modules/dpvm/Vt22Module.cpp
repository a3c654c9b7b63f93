// SPDX-License-Identifier: MIT
// The start-up and the cycle of the master module. The configuration download and the services have files of
// their own beside this one.
#include "vesk/modules/dpvm/Vt22Module.h"

#include "vesk/core/TextOf.h"
#include "vesk/core/VeskException.h"
#include "vesk/mailbox/ErrorCode.h"
#include "vesk/mailbox/MailboxResponseException.h"
#include "vesk/modules/InitMessages.h"
#include "vesk/modules/dpvm/CheckIdentity.h"
#include "vesk/modules/dpvm/DPVMMessages.h"
#include "vesk/modules/dpvm/StartUp.h"
#include "vesk/modules/dpvm/Vt22FatalEventException.h"
#include "vesk/modules/dpvm/Vt22Messages.h"

namespace Vesk::Modules::DPVM {

namespace MasterDpRam = HostInterface::MasterDpRam;
using Mailbox::IResponse;

static constexpr std::int64_t BOOT_NANOSECONDS = 2'000'000'000;
static constexpr std::int64_t DOWNLOAD_NANOSECONDS = 10'000'000'000;
static constexpr std::int64_t INITIALIZATION_NANOSECONDS = 10'000'000'000;

static constexpr int DATABASE_INFO_SECONDS = 3;
static constexpr int INIT_SECONDS = 1;
static constexpr int END_INIT_SECONDS = 5;

static constexpr unsigned short MODULE_TYPE = 0x0201;
static constexpr unsigned short FIELDBUS_TYPE = 0x0005;
static constexpr unsigned short VENDOR_ID = 0x0001;

std::shared_ptr<Vt22Module>
Vt22Module::Create(std::shared_ptr<HostInterface::IHostInterface> hostInterface,
                   std::shared_ptr<System::IFunc<void>> offlineCallback,
                   std::shared_ptr<System::IFunc<void>> onlineCallback,
                   std::shared_ptr<System::IArgFunc<OperationMode_e, void>> operationModeCallback,
                   std::shared_ptr<Config::IBusConfig> busConfig) {
    if (!hostInterface)
        System::_throw_argument_null_exception("hostInterface");
    const auto module = System::MakeShared<Vt22Module>(
        std::move(hostInterface), std::move(offlineCallback), std::move(onlineCallback),
        std::move(operationModeCallback), std::move(busConfig));
    module->Reset();
    return module;
}

Vt22Module::Vt22Module(std::shared_ptr<HostInterface::IHostInterface> hostInterface,
                       std::shared_ptr<System::IFunc<void>> offlineCallback,
                       std::shared_ptr<System::IFunc<void>> onlineCallback,
                       std::shared_ptr<System::IArgFunc<OperationMode_e, void>> operationModeCallback,
                       std::shared_ptr<Config::IBusConfig> busConfig)
    : _busConfig(std::move(busConfig)),
      _hostInterface(std::move(hostInterface)),
      _timer(Timer::Create()),
      _offlineCallback(std::move(offlineCallback)),
      _onlineCallback(std::move(onlineCallback)),
      _operationModeCallback(std::move(operationModeCallback)) {}

// ---- the state machine

void Vt22Module::Update() {
    const auto self = shared_from_this(); // a callback may let go of the last reference
    switch (_state) {
    case ModuleState_e::POWER_OFF:
        return PollPowerOff();
    case ModuleState_e::POWER_ON:
        return PollPowerOn();
    case ModuleState_e::BOOTED:
        BeginDownload();
        return CommonStep();
    case ModuleState_e::DOWNLOADING:
        ThrowIfExpired("Timeout waiting for DOWNLOAD_COMPLETE");
        return CommonStep();
    case ModuleState_e::DOWNLOAD_COMPLETE:
        return CommonStep();
    case ModuleState_e::INITIALIZING:
        PollInitialization();
        return CommonStep();
    case ModuleState_e::INITIALIZED:
        return CommonStep();
    }
    System::_env_throw(ModuleStateException::Create(TextOf("Unknown state: ", static_cast<int>(_state))));
}

void Vt22Module::Reset() {
    _hostInterface->BootloaderDisable();
    StartUp::HoldInReset(*_hostInterface, *_timer);
    ChangeState(ModuleState_e::POWER_OFF);
    _initialized = false;
    _databaseInfo = nullptr;
}

void Vt22Module::PollPowerOff() {
    if (StartUp::PulseIsOver(*_hostInterface, *_timer))
        PowerOn();
}

void Vt22Module::PowerOn() {
    StartUp::ReleaseReset(*_hostInterface, *_timer, BOOT_NANOSECONDS);
    ChangeState(ModuleState_e::POWER_ON);
    CreateAreas();
}

void Vt22Module::CreateAreas() {
    StartUp::CheckSize(*_hostInterface, MasterDpRam::SIZE);
    _velmoIndication = nullptr;
    _applicationIndication = nullptr;
    _deviceIdArea = nullptr;
    _fatalEventArea = nullptr;
    _inArea = nullptr;
    _mailbox = nullptr;
    _outArea = nullptr;

    _velmoIndication = Vt22VelmoIndication::Create(MasterDpRam::VELMO_INDICATION,
                                                   MasterDpRam::VELMO_INDICATION_COMPANION, _hostInterface);
    _applicationIndication = Vt22ApplicationIndication::Create(
        MasterDpRam::APPLICATION_INDICATION, MasterDpRam::APPLICATION_INDICATION_COMPANION, _hostInterface);
    _deviceIdArea = Vt22DeviceIdArea::Create(MasterDpRam::Identity::OFFSET, _hostInterface);
    _fatalEventArea = Vt22FatalEventArea::Create(MasterDpRam::FatalEvent::OFFSET, _hostInterface);
    _inArea = IO::InArea::Create(MasterDpRam::INPUT_AREA, MasterDpRam::INPUT_AREA_SIZE, _hostInterface);
    _mailbox = Mailbox::MailboxAreaHandler::Create(MasterDpRam::MAILBOX_IN, _hostInterface);
    _outArea = Vt22OutArea::Create(MasterDpRam::OutArea::OFFSET, _hostInterface, _offlineCallback,
                                   _onlineCallback, _operationModeCallback);
}

/// Throws unless the boot indication of the module is its power-on and nothing else.
static void CheckBootIndication(const Vt22VelmoEvent& event) {
    const auto fail = [&event](const char* what) {
        System::_env_throw(
            ModuleStateException::Create(TextOf(what, "\nActual:   ", event.ToString(), "\n")));
    };
    if (!event.PowerOn)
        fail("Missing PowerOn indication at bootup!");
    if (event.InAreaAcquired || event.MailboxInAcknowledged || event.MailboxOutUpdated || event.OutAcquired ||
        event.Log)
        fail("Unexpected indication at bootup!");
}

void Vt22Module::PollPowerOn() {
    if (!StartUp::HasBooted(*_hostInterface, *_timer))
        return;
    RequireAreas();
    const auto& event = _velmoIndication->Update();
    if (!event)
        System::_env_throw(ModuleStateException::Create("Empty indication at bootup!"));
    if (event->Fatal)
        ThrowFatalEvent();
    CheckBootIndication(*event);
    _mailbox->HandleBootEvent();
    _deviceIdArea->Update();
    _applicationIndication->Unlock();
    VerifyIdentity();
    ChangeState(ModuleState_e::BOOTED);
}

void Vt22Module::VerifyIdentity() {
    CheckIdentity("module type", MODULE_TYPE, ModuleType());
    CheckIdentity("fieldbus type", FIELDBUS_TYPE, FieldbusType());
    CheckIdentity("vendor id", VENDOR_ID, VendorId());
}

void Vt22Module::BeginDownload() {
    if (!_busConfig)
        return;
    Download_Begin();
    _timer->Start(DOWNLOAD_NANOSECONDS);
    ChangeState(ModuleState_e::DOWNLOADING);
}

void Vt22Module::PollInitialization() {
    ThrowIfExpired("Timeout waiting for INITIALIZED");
    if (!_initialized)
        return;
    _timer->Stop();
    ChangeState(ModuleState_e::INITIALIZED);
}

// ---- the cycle

void Vt22Module::CommonStep() {
    RequireAreas();
    if (_hostInterface->VelmoIRQ())
        HandleInterrupt();
    if (_mailbox->Update())
        _applicationIndication->NotifyMailboxIn();
    if (_inArea->Update())
        _applicationIndication->ReleaseIn();
    _applicationIndication->Update();
}

void Vt22Module::HandleInterrupt() {
    const auto& event = _velmoIndication->Update();
    ++_interrupts;
    if (event && event->Fatal)
        ThrowFatalEvent();
    if (event && event->PowerOn)
        System::_env_throw(ModuleStateException::Create(
            TextOf("Unexpected poweron indication from module!\n", event->ToString(), "\n")));
    _applicationIndication->Unlock();
    if (!event)
        return;
    if (event->MailboxInAcknowledged)
        _mailbox->RequestAcknowledged();
    if (event->MailboxOutUpdated) {
        ++_messages;
        _mailbox->ResponseAvailable();
        _applicationIndication->AckMailboxOut();
    }
    if (event->InAreaAcquired)
        _inArea->Acquired();
    if (event->OutAcquired) {
        _outArea->Update();
        _applicationIndication->ReleaseOut();
    }
}

void Vt22Module::ThrowFatalEvent() {
    System::_env_throw(Vt22FatalEventException::Create(_fatalEventArea->GetFatalEventInfo()));
}

void Vt22Module::ThrowIfExpired(const char* message) const {
    if (_timer->Expired())
        System::_env_throw(ModuleStateException::Create(message));
}

// ---- the initialisation

void Vt22Module::BeginInitialization() {
    if (_state < ModuleState_e::BOOTED)
        System::_env_throw(ModuleStateException::Create("Module not booted or configured!"));
    if (_state >= ModuleState_e::INITIALIZING)
        System::_env_throw(ModuleStateException::Create("Module already initialized"));
    // The mappings are checked against the database, so it has to be known before the initialisation starts.
    if (_databaseInfo)
        Ask(Slave::InitMessages::StartInit(), &Vt22Module::Init_StartInit, INIT_SECONDS);
    else
        Ask(DPVMMessages::GetDatabaseInfo(), &Vt22Module::Init_GetDatabaseInfo, DATABASE_INFO_SECONDS);
    _timer->Start(INITIALIZATION_NANOSECONDS);
    ChangeState(ModuleState_e::INITIALIZING);
}

void Vt22Module::Init_GetDatabaseInfo(std::shared_ptr<IResponse> response) {
    _databaseInfo = DatabaseInfo::FromMailboxResponse(response);
    Ask(Slave::InitMessages::StartInit(), &Vt22Module::Init_StartInit, INIT_SECONDS);
}

void Vt22Module::Init_StartInit(std::shared_ptr<IResponse> response) {
    Mailbox::MailboxResponseException::ThrowIfError(response);
    CheckMappings();
    const unsigned short input = Database().InitInputLength;
    const unsigned short output = Database().InitOutputLength;
    Ask(Vt22Messages::VelmoInit(input, input, input, output, output, output), &Vt22Module::Init_VelmoInit,
        INIT_SECONDS);
}

void Vt22Module::Init_VelmoInit(std::shared_ptr<IResponse> response) {
    Mailbox::MailboxResponseException::ThrowIfError(response);
    Ask(Slave::InitMessages::EndInit(), &Vt22Module::Init_EndInit, END_INIT_SECONDS);
}

void Vt22Module::Init_EndInit(std::shared_ptr<IResponse> response) {
    Mailbox::MailboxResponseException::ThrowIfError(response);
    _initialized = true;
}

static void CheckMapping(const char* failure, unsigned short configured, unsigned short mapped) {
    if (mapped > configured)
        System::_env_throw(ConfigException::Create(TextOf(failure, " [ ", configured, " < ", mapped, " ]")));
}

void Vt22Module::CheckMappings() const {
    const IO::OutArea& output = *OutArea().OutputData();
    const DatabaseInfo& database = Database();
    CheckMapping("More input data mapped than available in config", database.TotalInputLength,
                 _inArea->TotalMapped());
    CheckMapping("More output data mapped than available in config", database.TotalOutputLength,
                 output.TotalMapped());
    CheckMapping("Input data mapped outside of available area", database.InitInputLength,
                 _inArea->HighestEnd());
    CheckMapping("Output data mapped outside of available area", database.InitOutputLength,
                 output.HighestEnd());
}

System::String Vt22Module::StateToString(ModuleState_e state) {
    switch (state) {
    case ModuleState_e::POWER_OFF:
        return "POWER_OFF";
    case ModuleState_e::POWER_ON:
        return "POWER_ON";
    case ModuleState_e::BOOTED:
        return "BOOTED";
    case ModuleState_e::DOWNLOADING:
        return "DOWNLOADING";
    case ModuleState_e::DOWNLOAD_COMPLETE:
        return "DOWNLOAD_COMPLETE";
    case ModuleState_e::INITIALIZING:
        return "INITIALIZING";
    case ModuleState_e::INITIALIZED:
        return "INITIALIZED";
    }
    return TextOf("UNKNOWN: ", static_cast<int>(state));
}

} // namespace Vesk::Modules::DPVM
