// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/modules/IModule.h"
#include "vesk/modules/bootloader/TarnFile.h"

#include <memory>

namespace Vesk::Modules::Bootloader {

/// A module that runs its bootloader, ready to take new firmware. One object carries out one download: start
/// it once Booted(), then call Update() and EndDownload() in turn until EndDownload() is true.
class IBootloaderModule : public IModule {
public:
    /// Starts the download of a new bootloader or of a new application firmware. `*remaining` is set to the
    /// number of requests that are to be answered. ArgumentNullException without a file or a place for the
    /// number, ArgumentOutOfRangeException in a state other than "booted", ArgumentException for a file of
    /// another type; nothing has been started then.
    virtual void BeginBootloaderDownload(std::shared_ptr<TarnFile> firmware, int* remaining) = 0;
    virtual void BeginFirmwareDownload(std::shared_ptr<TarnFile> firmware, int* remaining) = 0;

    /// Whether the download has completed; `*remaining` is set to the number of requests that are still to
    /// be answered. ArgumentNullException without a place for the number, InvalidOperationException before a
    /// download.
    virtual bool EndDownload(int* remaining) = 0;
};

} // namespace Vesk::Modules::Bootloader
