// SPDX-License-Identifier: MIT
#include "vesk/modules/bootloader/BootloaderMessages.h"

#include "vesk/mailbox/RequestBuilder.h"
#include "vesk/system/io/BinaryWriter.h"
#include "vesk/system/io/MemoryStream.h"

namespace Vesk::Modules::Bootloader {

using Mailbox::IRequest;
using Mailbox::MailboxCommand;
using Mailbox::RequestBuilder;
namespace Commands = Mailbox::Commands;
using System::Array;
using System::IArray;

static constexpr int FW_INIT_SIZE = 8;
static constexpr int FW_LAST_SIZE = 38; // the CRC information and 28 bytes that stay 0
static constexpr int BL_LAST_SIZE = 10;

static std::shared_ptr<IRequest> Last(const MailboxCommand& command, int size, unsigned short crc,
                                      unsigned int crcStart, unsigned int crcLength) {
    const auto data = Array<unsigned char>::Create(size);
    BootloaderMessages::WriteCrcInfo(crc, crcStart, crcLength, data);
    return RequestBuilder::Create(command)->Data(data)->Build();
}

static std::shared_ptr<IRequest> Data(const MailboxCommand& command, unsigned short totalFrameCount,
                                      unsigned short frameNumber, unsigned int offset,
                                      std::shared_ptr<IArray<unsigned char>> data) {
    return RequestBuilder::Create(command)
        ->Data(std::move(data))
        ->TotalFrameCount(totalFrameCount)
        ->FrameNumber(frameNumber)
        ->Offset(offset)
        ->Build();
}

std::shared_ptr<IRequest> BootloaderMessages::FwDownloadInit() {
    return RequestBuilder::Create(Commands::FW_DOWNLOAD_INIT)
        ->Data(Array<unsigned char>::Create(FW_INIT_SIZE))
        ->Build();
}

std::shared_ptr<IRequest> BootloaderMessages::FwDownloadData(unsigned short totalFrameCount,
                                                             unsigned short frameNumber, unsigned int offset,
                                                             std::shared_ptr<IArray<unsigned char>> data) {
    return Data(Commands::FW_DOWNLOAD_DATA, totalFrameCount, frameNumber, offset, std::move(data));
}

std::shared_ptr<IRequest> BootloaderMessages::FwDownloadLast(unsigned short crc, unsigned int crcStart,
                                                             unsigned int crcLength) {
    return Last(Commands::FW_DOWNLOAD_LAST, FW_LAST_SIZE, crc, crcStart, crcLength);
}

std::shared_ptr<IRequest> BootloaderMessages::BlDownloadInit() {
    return RequestBuilder::Create(Commands::BL_DOWNLOAD_INIT)->Build();
}

std::shared_ptr<IRequest> BootloaderMessages::BlDownloadData(unsigned short totalFrameCount,
                                                             unsigned short frameNumber, unsigned int offset,
                                                             std::shared_ptr<IArray<unsigned char>> data) {
    return Data(Commands::BL_DOWNLOAD_DATA, totalFrameCount, frameNumber, offset, std::move(data));
}

std::shared_ptr<IRequest> BootloaderMessages::BlDownloadLast(unsigned short crc, unsigned int crcStart,
                                                             unsigned int crcLength) {
    return Last(Commands::BL_DOWNLOAD_LAST, BL_LAST_SIZE, crc, crcStart, crcLength);
}

void BootloaderMessages::WriteCrcInfo(unsigned short crc, unsigned int crcStart, unsigned int crcLength,
                                      std::shared_ptr<IArray<unsigned char>> array) {
    const auto writer = System::IO::BinaryWriter::Create(System::IO::MemoryStream::Create(std::move(array)));
    writer->WriteUInt8(static_cast<unsigned char>(crc & 0xFF));
    writer->WriteUInt8(static_cast<unsigned char>(crc >> 8));
    writer->WriteUInt32(crcStart);
    writer->WriteUInt32(crcStart + crcLength - 1);
}

} // namespace Vesk::Modules::Bootloader
