// SPDX-License-Identifier: MIT
#pragma once

#include "virtualmodule/flash/Database.h"
#include "virtualmodule/flash/Firmware.h"

namespace VirtualModule {

/// One program in the flash.
struct FlashRegion {
    bool valid = true; // an erased region, or one whose download did not end well, does not run
    Version version;
    Bytes image; // empty for what the module was made with
};

/// What outlives a reset of the module, and, kept in a file, the program that plays it.
struct Flash {
    static constexpr std::size_t APPLICATION_SIZE = 0x400000;
    static constexpr std::size_t BOOTLOADER_SIZE = 0x40000;
    /// Of the file: both programs, 126 slave records of 255 fragments of 256 bytes, and what little is left.
    static constexpr std::size_t MAX_FILE_SIZE = 0x1000000;

    Database database;
    FlashRegion application{true, {1, 4, 2}, {}};
    FlashRegion bootloader{true, {2, 1, 0}, {}};
    std::uint32_t serial = 0x00220001;
    /// Counts what the module has written; whoever keeps the flash in a file saves it when this has moved.
    std::uint64_t writes = 0;

    /// Save writes the file under its name and this, and then renames it.
    static constexpr const char* UNFINISHED = ".new";

    /// Reads the file at `path`. std::runtime_error, which names the path and the reason, if it cannot be
    /// read, is damaged or cut short.
    static Flash Load(const std::string& path);
    /// Writes the file at `path` whole or not at all; std::runtime_error with the reason if it fails. What a
    /// Save that was cut off left behind is overwritten.
    void Save(const std::string& path) const;
};

} // namespace VirtualModule
