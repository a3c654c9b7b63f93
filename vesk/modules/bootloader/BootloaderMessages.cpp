// SPDX-License-Identifier: MIT
#include "vesk/modules/bootloader/BootloaderMessages.h"

#include "vesk/mailbox/RequestBuilder.h"
#include "vesk/system/io/BinaryWriter.h"
#include "vesk/system/io/MemoryStream.h"

namespace Vesk::Modules::Bootloader {

using Mailbox::IRequest;
using System::Array;
using System::IArray;

static constexpr int FW_INIT_SIZE = 8;
static constexpr int FW_LAST_SIZE = 38; // the CRC information and 28 bytes that stay 0
static constexpr int BL_LAST_SIZE = 10;

static std::shared_ptr<Mailbox::RequestBuilder> Request(const char* name, unsigned short command) {
    return Mailbox::RequestBuilder::Create()
        ->Type(Mailbox::MessageType::BOOTLOADER)
        ->Name(name)
        ->Command(command);
}

static std::shared_ptr<IRequest> Last(const char* name, unsigned short command, int size, unsigned short crc,
                                      unsigned int crcStart, unsigned int crcLength) {
    const auto data = Array<unsigned char>::Create(size);
    BootloaderMessages::WriteCrcInfo(crc, crcStart, crcLength, data);
    return Request(name, command)->Data(data)->Build();
}

static std::shared_ptr<IRequest> Data(const char* name, unsigned short command,
                                      unsigned short totalFrameCount, unsigned short frameNumber,
                                      unsigned int offset, std::shared_ptr<IArray<unsigned char>> data) {
    return Request(name, command)
        ->Data(std::move(data))
        ->TotalFrameCount(totalFrameCount)
        ->FrameNumber(frameNumber)
        ->Offset(offset)
        ->Build();
}

std::shared_ptr<IRequest> BootloaderMessages::FwDownloadInit() {
    return Request("FwDownloadInit", 1)->Data(Array<unsigned char>::Create(FW_INIT_SIZE))->Build();
}

std::shared_ptr<IRequest> BootloaderMessages::FwDownloadData(unsigned short totalFrameCount,
                                                             unsigned short frameNumber, unsigned int offset,
                                                             std::shared_ptr<IArray<unsigned char>> data) {
    return Data("FwDownloadData", 2, totalFrameCount, frameNumber, offset, std::move(data));
}

std::shared_ptr<IRequest> BootloaderMessages::FwDownloadLast(unsigned short crc, unsigned int crcStart,
                                                             unsigned int crcLength) {
    return Last("FwDownloadLast", 3, FW_LAST_SIZE, crc, crcStart, crcLength);
}

std::shared_ptr<IRequest> BootloaderMessages::BlDownloadInit() {
    return Request("BlDownloadInit", 4)->Build();
}

std::shared_ptr<IRequest> BootloaderMessages::BlDownloadData(unsigned short totalFrameCount,
                                                             unsigned short frameNumber, unsigned int offset,
                                                             std::shared_ptr<IArray<unsigned char>> data) {
    return Data("BlDownloadData", 5, totalFrameCount, frameNumber, offset, std::move(data));
}

std::shared_ptr<IRequest> BootloaderMessages::BlDownloadLast(unsigned short crc, unsigned int crcStart,
                                                             unsigned int crcLength) {
    return Last("BlDownloadLast", 6, BL_LAST_SIZE, crc, crcStart, crcLength);
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
