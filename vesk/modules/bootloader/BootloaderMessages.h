// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/mailbox/IRequest.h"

#include <memory>

namespace Vesk::Modules::Bootloader {

/// The requests that download a program image into the module's flash: init, one data frame after the other,
/// last; Fw for the application firmware, Bl for the bootloader itself.
class BootloaderMessages {
public:
    static std::shared_ptr<Mailbox::IRequest> FwDownloadInit();
    /// Frame `frameNumber` (from 1 on) of `totalFrameCount`: up to 256 bytes for flash address `offset`.
    /// ArgumentOutOfRangeException for more.
    static std::shared_ptr<Mailbox::IRequest>
    FwDownloadData(unsigned short totalFrameCount, unsigned short frameNumber, unsigned int offset,
                   std::shared_ptr<System::IArray<unsigned char>> data);
    /// The checksum of the image and the flash range that it covers; see WriteCrcInfo.
    static std::shared_ptr<Mailbox::IRequest> FwDownloadLast(unsigned short crc, unsigned int crcStart,
                                                             unsigned int crcLength);

    static std::shared_ptr<Mailbox::IRequest> BlDownloadInit();
    /// Like FwDownloadData, with an `offset` that counts from the start of the image.
    static std::shared_ptr<Mailbox::IRequest>
    BlDownloadData(unsigned short totalFrameCount, unsigned short frameNumber, unsigned int offset,
                   std::shared_ptr<System::IArray<unsigned char>> data);
    static std::shared_ptr<Mailbox::IRequest> BlDownloadLast(unsigned short crc, unsigned int crcStart,
                                                             unsigned int crcLength);

    /// Writes the ten bytes of the CRC information to the start of `array`: the CRC, low byte first, then
    /// the first and the last address (modulo 2^32) of the range, big-endian. IOException for a shorter
    /// array.
    static void WriteCrcInfo(unsigned short crc, unsigned int crcStart, unsigned int crcLength,
                             std::shared_ptr<System::IArray<unsigned char>> array);
};

} // namespace Vesk::Modules::Bootloader
