// SPDX-License-Identifier: MIT
#pragma once

#include "virtualmodule/commands/Answer.h"
#include "virtualmodule/flash/Flash.h"

namespace VirtualModule {

/// The bootloader's commands that bring new programs into the flash.
///
/// An application needs Enable, FlashWriteEnable, FlashErase, FwDownloadInit, its data frames in order, and
/// FwDownloadLast; from FlashErase on the old application is gone, and the new one runs only once its
/// checksum was good. A bootloader needs BlDownloadInit, data frames and BlDownloadLast; it is kept back
/// until its checksum was good, so the old one lasts until then. A command out of its order answers COMMAND,
/// a frame out of its order FRAME_NUMBER or OFFSET (the right one may still follow). A wrong checksum of what
/// was sent, or a seal of the image that does not hold, answers FLASH_CONFIG_ERROR.
class DownloadCommands {
public:
    /// `eraseTime` and `burnTime` are the nanoseconds that FlashErase and the last command take.
    DownloadCommands(Flash& flash, Watch& watch, std::int64_t eraseTime, std::int64_t burnTime);

    /// Carries out any request to the bootloader.
    Answer Handle(const Message& request);

private:
    enum class Step : std::uint8_t {
        LOCKED,
        ENABLED,
        WRITABLE,
        ERASED,
        RECEIVING_APPLICATION,
        RECEIVING_BOOTLOADER,
        BURNING,
    };

    static const std::array<Command<DownloadCommands>, 3> PRODUCTION_COMMANDS;
    static const std::array<Command<DownloadCommands>, 6> BOOTLOADER_COMMANDS;

    Answer Enable(const Message& request);
    Answer FlashWriteEnable(const Message& request);
    Answer FlashErase(const Message& request);
    Answer FwDownloadInit(const Message& request);
    Answer FwDownloadData(const Message& request);
    Answer FwDownloadLast(const Message& request);
    Answer BlDownloadInit(const Message& request);
    Answer BlDownloadData(const Message& request);
    Answer BlDownloadLast(const Message& request);

    Answer Begin(const Message& request, Step step);
    Answer Receive(const Message& request, std::size_t room);
    ErrorCode CheckFrame(const Message& request, std::size_t room) const;
    Answer Finish(const Message& request, FlashRegion& region);

    Flash& _flash;
    Watch& _watch;
    std::int64_t _eraseTime;
    std::int64_t _burnTime;
    Step _step = Step::LOCKED;
    // The image that is coming in.
    Bytes _image;
    std::uint32_t _base = 0;   // the offset of its first frame
    std::uint16_t _frames = 0; // how many it has; 0 before the first
    std::uint16_t _frame = 0;  // the last one that came
};

} // namespace VirtualModule
