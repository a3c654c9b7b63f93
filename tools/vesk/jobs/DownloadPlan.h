// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/modules/bootloader/TarnFile.h"

#include <string>

namespace VeskTool {

/// The requests that a firmware file takes, in order, so that progress and failures can be told in their
/// terms. `remaining` is always the number of requests that are still to be answered; the first of them is
/// the one that is on its way.
class DownloadPlan {
public:
    explicit DownloadPlan(const Vesk::Modules::Bootloader::TarnFile& file);

    int Requests() const { return _requests; }

    /// The program bytes that have arrived.
    int Bytes(int remaining) const;

    /// "request 5 of 13 (FwDownloadData, 0x20000)".
    std::string Request(int remaining) const;

    /// The last request, upon which the module checks what it has got, is on its way.
    bool AtLast(int remaining) const { return remaining == 1; }

    /// What the module is left with if the download ends here, a sentence. `refused`: the module has answered
    /// with an error, so the request did nothing.
    std::string ModuleState(int remaining, bool refused) const;

private:
    bool Application() const {
        return _type == Vesk::Modules::Bootloader::FirmwareType_e::APPLICATION_FIRMWARE;
    }

    std::string Place(int frame) const;

    Vesk::Modules::Bootloader::FirmwareType_e _type;
    unsigned int _address; // of the first byte, as the data frames say it
    unsigned int _crcStart;
    unsigned int _crcLength;
    int _size;
    int _frames;
    int _requests;
};

} // namespace VeskTool
