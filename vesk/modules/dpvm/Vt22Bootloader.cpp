// SPDX-License-Identifier: MIT
#include "vesk/modules/dpvm/Vt22Bootloader.h"

#include "vesk/core/VeskException.h"
#include "vesk/mailbox/ErrorCode.h"
#include "vesk/mailbox/MailboxResponseException.h"
#include "vesk/mailbox/MessageType.h"
#include "vesk/modules/bootloader/BootloaderMessages.h"
#include "vesk/modules/bootloader/CRC16.h"
#include "vesk/modules/bootloader/ProductionMessages.h"
#include "vesk/modules/dpvm/CheckIdentity.h"
#include "vesk/system/Exception.h"
#include "vesk/system/text/StringBuilder.h"

#include <algorithm>
#include <limits>

namespace Vesk::Modules::DPVM {

namespace DpRam = HostInterface::BootloaderDpRam;
using Bootloader::BootloaderMessages;
using Bootloader::FirmwareType_e;
using Bootloader::ProductionMessages;
using Bootloader::TarnFile;
using Mailbox::IRequest;
using Mailbox::IResponse;
using System::Array;
using System::IArray;
using System::Text::StringBuilder;

static constexpr std::int64_t RESET_NANOSECONDS = 500'000;
static constexpr std::int64_t BOOT_NANOSECONDS = 1'000'000'000;
static constexpr unsigned short MODULE_TYPE = 0x0101;
static constexpr unsigned short FIELDBUS_TYPE = 0;
static constexpr unsigned short VENDOR_ID = 0;
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
    _hostInterface->PowerOff();
    _timer->_nanoseconds = RESET_NANOSECONDS;
    _timer->Start();
    ChangeState(ModuleState_e::POWER_OFF);
}

void Vt22Bootloader::PowerOn() {
    _hostInterface->PowerOn();
    _timer->_nanoseconds = BOOT_NANOSECONDS;
    _timer->Start();
    ChangeState(ModuleState_e::POWER_ON);
    CreateAreas();
}

void Vt22Bootloader::CreateAreas() {
    const int size = _hostInterface->Size();
    if (size != DpRam::SIZE)
        System::_throw_equal_exception(size, DpRam::SIZE, "_hostInterface->Size()", "sizeof(DpRam)");
    _velmoIndication = Handshake::VelmoIndication::Create(DpRam::VELMO_INDICATION, _hostInterface);
    _applicationIndication =
        Handshake::ApplicationIndication::Create(DpRam::APPLICATION_INDICATION, _hostInterface);
    _bootloaderCtrl = Bootloader::BootloaderCtrl::Create(DpRam::Ctrl::OFFSET, _hostInterface);
    _mailbox = Mailbox::MailboxAreaHandler::Create(DpRam::MAILBOX_IN, _hostInterface);
}

void Vt22Bootloader::Update() {
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
    System::_env_throw(
        ModuleStateException::Create("Unknown state: " + std::to_string(static_cast<int>(_state))));
}

void Vt22Bootloader::PollPowerOff() {
    if (!_timer->Expired())
        return;
    _timer->Stop();
    if (_hostInterface->VelmoIRQ())
        System::_env_throw(ModuleStateException::Create("IRQ not cleared at power off"));
    PowerOn();
}

void Vt22Bootloader::PollPowerOn() {
    if (!_hostInterface->VelmoIRQ()) {
        if (_timer->Expired())
            System::_env_throw(StartupException::Create("Timeout waiting for initial IRQ"));
        return;
    }
    CheckAreas();
    _timer->Stop();
    _velmoIndication->HandleBootEvent();
    _mailbox->HandleBootEvent();
    _bootloaderCtrl->HandleBootEvent();
    VerifyIdentity();
    ChangeState(ModuleState_e::BOOTED);
}

/// The mailbox is the last area that a power-on creates: without it there was none, or it has failed.
void Vt22Bootloader::CheckAreas() const {
    if (!_mailbox)
        System::_throw_null_reference_exception("_mailbox");
}

void Vt22Bootloader::CommonStep() {
    CheckAreas();
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
    CheckIdentity("module type", MODULE_TYPE, ModuleType());
    CheckIdentity("fieldbus type", FIELDBUS_TYPE, FieldbusType());
    CheckIdentity("vendor id", VENDOR_ID, VendorId());
    if (BootloaderMajor() < LOWEST_BOOTLOADER_MAJOR)
        System::_env_throw(
            ModuleIdentityException::Create(StringBuilder()
                                                .Append("Unsupported major bootloader version: ")
                                                .Append(BootloaderMajor())
                                                .Append(", expected: ")
                                                .Append(LOWEST_BOOTLOADER_MAJOR)
                                                .ToString()));
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

std::shared_ptr<Vt22Bootloader::Segments>
Vt22Bootloader::GetSegments(const std::shared_ptr<IArray<unsigned char>>& data) {
    if (!data)
        System::_throw_argument_null_exception("data");
    constexpr int SEGMENT_SIZE = HostInterface::MailboxDpRam::MAX_DATA_SIZE;
    const auto segments = Segments::Create();
    const unsigned char* const bytes = data->Data();
    const int count = data->Count();
    for (int offset = 0; offset < count;) {
        const int size = std::min(SEGMENT_SIZE, count - offset);
        segments->Add(
            Array<unsigned char>::Create(std::vector<unsigned char>(bytes + offset, bytes + offset + size)));
        offset += size;
    }
    return segments;
}

/// Queues one data frame per segment of `program`, the first for `address`.
template <class Requests, class DataFrame>
static void EnqueueProgram(Requests& requests, const std::shared_ptr<IArray<unsigned char>>& program,
                           unsigned int address, DataFrame dataFrame) {
    constexpr int MAX_FRAMES = std::numeric_limits<unsigned short>::max();
    const auto segments = Vt22Bootloader::GetSegments(program);
    const int count = segments->Count();
    if (count > MAX_FRAMES)
        System::_throw_not_greater_exception(count, MAX_FRAMES, "segments", "frames");
    unsigned short frameNumber = 0;
    for (const auto& segment : *segments) {
        requests.Enqueue(dataFrame(static_cast<unsigned short>(count), ++frameNumber, address, segment));
        address += static_cast<unsigned int>(segment->Count());
    }
}

static unsigned short Checksum(const std::shared_ptr<IArray<unsigned char>>& program) {
    const auto crc = Bootloader::CRC16::Create();
    crc->Digest(program);
    return crc->Value();
}

void Vt22Bootloader::BeginFirmwareDownload(std::shared_ptr<TarnFile> firmware, int* remaining) {
    CheckDownload(firmware, remaining, FirmwareType_e::APPLICATION_FIRMWARE);
    const auto requests = Requests::Create();
    requests->Enqueue(ProductionMessages::Enable());
    requests->Enqueue(ProductionMessages::FlashWriteEnable());
    requests->Enqueue(ProductionMessages::FlashErase());
    requests->Enqueue(BootloaderMessages::FwDownloadInit());
    EnqueueProgram(*requests, firmware->ProgramData, firmware->AddressBurnStart,
                   BootloaderMessages::FwDownloadData);
    requests->Enqueue(BootloaderMessages::FwDownloadLast(Checksum(firmware->ProgramData), firmware->CrcStart,
                                                         firmware->CrcLength));
    BeginDownload(requests, remaining, ModuleState_e::FIRMWARE_DOWNLOADING);
}

void Vt22Bootloader::BeginBootloaderDownload(std::shared_ptr<TarnFile> firmware, int* remaining) {
    CheckDownload(firmware, remaining, FirmwareType_e::BOOTLOADER_FIRMWARE);
    const auto requests = Requests::Create();
    requests->Enqueue(BootloaderMessages::BlDownloadInit());
    EnqueueProgram(*requests, firmware->ProgramData, 0, BootloaderMessages::BlDownloadData);
    requests->Enqueue(
        BootloaderMessages::BlDownloadLast(Checksum(firmware->ProgramData), 0, firmware->CrcLength));
    BeginDownload(requests, remaining, ModuleState_e::BOOTLOADER_DOWNLOADING);
}

void Vt22Bootloader::CheckDownload(const std::shared_ptr<TarnFile>& firmware, const int* remaining,
                                   FirmwareType_e expected) const {
    if (!firmware)
        System::_throw_argument_null_exception("firmware");
    if (!remaining)
        System::_throw_argument_null_exception("remaining");
    if (_state != ModuleState_e::BOOTED)
        System::_throw_equal_exception(static_cast<int>(_state), static_cast<int>(ModuleState_e::BOOTED),
                                       "_state", "BOOTED");
    if (firmware->FirmwareType != expected)
        System::_env_throw(
            System::ArgumentException::Create(TarnFile::FirmwareTypeToString(firmware->FirmwareType)));
}

void Vt22Bootloader::BeginDownload(std::shared_ptr<Requests> requests, int* remaining, ModuleState_e state) {
    const int count = requests->Count();
    Send(requests->Dequeue());
    _downloadQueue = std::move(requests);
    _remaining = count;
    *remaining = count;
    ChangeState(state);
}

void Vt22Bootloader::DownloadNext(std::shared_ptr<IResponse> response) {
    Mailbox::MailboxResponseException::ThrowIfError(response);
    if (!_downloadQueue)
        System::_throw_null_reference_exception("_downloadQueue");
    --_remaining;
    if (_downloadQueue->Count() == 0) {
        _downloadQueue = nullptr;
        return ChangeState(ModuleState_e::DOWNLOAD_COMPLETE);
    }
    Send(_downloadQueue->Dequeue());
}

/// Erasing the flash and, at the end of a firmware download, checking it keep the module busy for seconds.
static int TimeoutSeconds(IRequest& request) {
    constexpr unsigned short SLOW_COMMAND = 3;
    const auto type = request.Type();
    const bool slowType =
        type == Mailbox::MessageType::PRODUCTION || type == Mailbox::MessageType::BOOTLOADER;
    return slowType && request.Command() == SLOW_COMMAND ? 10 : 1;
}

void Vt22Bootloader::Send(const std::shared_ptr<IRequest>& request) {
    CheckAreas();
    using ResponseAction = System::WeakMethodArgFunc<Vt22Bootloader, std::shared_ptr<IResponse>, void>;
    _mailbox->Enqueue(request, ResponseAction::Create(weak_from_this(), &Vt22Bootloader::DownloadNext),
                      TimeoutSeconds(*request));
}

bool Vt22Bootloader::EndDownload(int* remaining) {
    if (!remaining)
        System::_throw_argument_null_exception("remaining");
    switch (_state) {
    case ModuleState_e::BOOTLOADER_DOWNLOADING:
    case ModuleState_e::FIRMWARE_DOWNLOADING:
    case ModuleState_e::DOWNLOAD_COMPLETE:
        *remaining = _remaining;
        return _state == ModuleState_e::DOWNLOAD_COMPLETE;
    case ModuleState_e::POWER_OFF:
    case ModuleState_e::POWER_ON:
    case ModuleState_e::BOOTED:
        break;
    }
    System::_env_throw(System::InvalidOperationException::Create("No download in progress"));
}

} // namespace Vesk::Modules::DPVM
