// SPDX-License-Identifier: MIT
// The start-up and the exchange of the module in its bootloader. The download has a file of its own beside
// this one.
#include "vesk/modules/dpvm/Vt22Bootloader.h"

#include "vesk/core/TextOf.h"
#include "vesk/core/VeskException.h"
#include "vesk/modules/dpvm/CheckIdentity.h"
#include "vesk/modules/dpvm/StartUp.h"

namespace Vesk::Modules::DPVM {

namespace DpRam = HostInterface::BootloaderDpRam;

static constexpr std::int64_t BOOTLOADER_NANOSECONDS = 1'000'000'000;
static constexpr unsigned short BOOTLOADER_MODULE_TYPE = 0x0101;
static constexpr unsigned short BOOTLOADER_FIELDBUS_TYPE = 0;
static constexpr unsigned short BOOTLOADER_VENDOR_ID = 0;
static constexpr int LOWEST_BOOTLOADER_MAJOR = 2;

std::shared_ptr<Vt22Bootloader>
Vt22Bootloader::Create(std::shared_ptr<HostInterface::IHostInterface> hostInterface) {
    if (!hostInterface)
        System::_throw_argument_null_exception("hostInterface");
    const auto bootloader = System::MakeShared<Vt22Bootloader>(std::move(hostInterface));
    bootloader->Reset();
    return bootloader;
}

Vt22Bootloader::Vt22Bootloader(std::shared_ptr<HostInterface::IHostInterface> hostInterface)
    : _hostInterface(std::move(hostInterface)), _timer(Timer::Create()) {}

void Vt22Bootloader::Reset() {
    _hostInterface->BootloaderEnable();
    StartUp::HoldInReset(*_hostInterface, *_timer);
    ChangeState(ModuleState_e::POWER_OFF);
}

void Vt22Bootloader::PowerOn() {
    StartUp::ReleaseReset(*_hostInterface, *_timer, BOOTLOADER_NANOSECONDS);
    ChangeState(ModuleState_e::POWER_ON);
    CreateAreas();
}

void Vt22Bootloader::CreateAreas() {
    StartUp::CheckSize(*_hostInterface, DpRam::SIZE);
    _velmoIndication = Handshake::VelmoIndication::Create(DpRam::VELMO_INDICATION, _hostInterface);
    _applicationIndication =
        Handshake::ApplicationIndication::Create(DpRam::APPLICATION_INDICATION, _hostInterface);
    _bootloaderCtrl = Bootloader::BootloaderCtrl::Create(DpRam::Ctrl::OFFSET, _hostInterface);
    _mailbox = Mailbox::MailboxAreaHandler::Create(DpRam::MAILBOX_IN, _hostInterface);
}

void Vt22Bootloader::Update() {
    const auto self = shared_from_this(); // a callback may let go of the last reference
    switch (_state) {
    case ModuleState_e::POWER_OFF:
        return PollPowerOff();
    case ModuleState_e::POWER_ON:
        return PollPowerOn();
    case ModuleState_e::BOOTED:
    case ModuleState_e::BOOTLOADER_DOWNLOADING:
    case ModuleState_e::FIRMWARE_DOWNLOADING:
        return CommonStep();
    case ModuleState_e::DOWNLOAD_COMPLETE:
        return;
    }
    System::_env_throw(ModuleStateException::Create(TextOf("Unknown state: ", static_cast<int>(_state))));
}

void Vt22Bootloader::PollPowerOff() {
    if (StartUp::PulseIsOver(*_hostInterface, *_timer))
        PowerOn();
}

void Vt22Bootloader::PollPowerOn() {
    if (!StartUp::HasBooted(*_hostInterface, *_timer))
        return;
    RequireAreas();
    _velmoIndication->HandleBootEvent();
    _mailbox->HandleBootEvent();
    _bootloaderCtrl->HandleBootEvent();
    VerifyIdentity();
    ChangeState(ModuleState_e::BOOTED);
}

void Vt22Bootloader::RequireAreas() const {
    if (!_mailbox) // the last one that a power-on creates
        System::_throw_null_reference_exception("_mailbox");
}

void Vt22Bootloader::CommonStep() {
    RequireAreas();
    if (_hostInterface->VelmoIRQ())
        HandleIndication();
    if (_mailbox->Update())
        _applicationIndication->NotifyMailboxIn();
    _applicationIndication->Update();
}

void Vt22Bootloader::HandleIndication() {
    const auto event = _velmoIndication->Update();
    if (!event)
        return;
    if (event->MailboxInAcknowledged)
        _mailbox->RequestAcknowledged();
    if (event->MailboxOutUpdated) {
        _mailbox->ResponseAvailable();
        _applicationIndication->AckMailboxOut();
    }
}

void Vt22Bootloader::VerifyIdentity() {
    CheckIdentity("module type", BOOTLOADER_MODULE_TYPE, ModuleType());
    CheckIdentity("fieldbus type", BOOTLOADER_FIELDBUS_TYPE, FieldbusType());
    CheckIdentity("vendor id", BOOTLOADER_VENDOR_ID, VendorId());
    if (BootloaderMajor() < LOWEST_BOOTLOADER_MAJOR)
        System::_env_throw(ModuleIdentityException::Create(
            TextOf("Unsupported major bootloader version: ", BootloaderMajor(),
                   ", expected: ", LOWEST_BOOTLOADER_MAJOR)));
}

bool Vt22Bootloader::Booted() {
    return _state > ModuleState_e::POWER_ON;
}

Bootloader::BootloaderCtrl& Vt22Bootloader::Ctrl() const {
    if (!_bootloaderCtrl)
        System::_throw_null_reference_exception("_bootloaderCtrl");
    return *_bootloaderCtrl;
}

unsigned char Vt22Bootloader::BootloaderMajor() {
    return Ctrl().BootloaderMajor();
}

unsigned char Vt22Bootloader::BootloaderMinor() {
    return Ctrl().BootloaderMinor();
}

unsigned short Vt22Bootloader::FieldbusType() {
    return Ctrl().FieldbusType();
}

unsigned short Vt22Bootloader::ModuleType() {
    return Ctrl().ModuleType();
}

unsigned int Vt22Bootloader::Serial() {
    return Ctrl().Serial();
}

unsigned short Vt22Bootloader::VendorId() {
    return Ctrl().VendorId();
}

} // namespace Vesk::Modules::DPVM
