// SPDX-License-Identifier: MIT
// The download of new firmware, or of a new bootloader, into the module: a queue of requests, each sent when
// the one before it has been answered.
#include "vesk/mailbox/Commands.h"
#include "vesk/mailbox/MailboxResponseException.h"
#include "vesk/modules/bootloader/BootloaderMessages.h"
#include "vesk/modules/bootloader/CRC16.h"
#include "vesk/modules/bootloader/ProductionMessages.h"
#include "vesk/modules/dpvm/Vt22Bootloader.h"

#include <algorithm>
#include <limits>

namespace Vesk::Modules::DPVM {

using Bootloader::BootloaderMessages;
using Bootloader::FirmwareType_e;
using Bootloader::ProductionMessages;
using Bootloader::TarnFile;
using Mailbox::IRequest;
using Mailbox::IResponse;
using System::Array;
using System::IArray;

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
    return crc->Value;
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
    const auto is = [&](const Mailbox::MailboxCommand& command) {
        return request.Type() == command.type && request.Command() == command.number;
    };
    return is(Mailbox::Commands::FLASH_ERASE) || is(Mailbox::Commands::FW_DOWNLOAD_LAST) ? 10 : 1;
}

void Vt22Bootloader::Send(const std::shared_ptr<IRequest>& request) {
    RequireAreas();
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
