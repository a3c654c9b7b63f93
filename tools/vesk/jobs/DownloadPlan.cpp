// SPDX-License-Identifier: MIT
#include "tools/vesk/jobs/DownloadPlan.h"

#include "tools/vesk/text/Text.h"
#include "vesk/mailbox/Commands.h"

#include <algorithm>
#include <array>
#include <vector>

namespace VeskTool {

using Vesk::Modules::Bootloader::TarnFile;
namespace Commands = Vesk::Mailbox::Commands;

static constexpr int FRAME_SIZE = 256;
// What comes before the data frames.
static constexpr std::array APPLICATION_HEAD{Commands::ENABLE.name, Commands::FLASH_WRITE_ENABLE.name,
                                             Commands::FLASH_ERASE.name, Commands::FW_DOWNLOAD_INIT.name};
static constexpr std::array BOOTLOADER_HEAD{Commands::BL_DOWNLOAD_INIT.name};
static constexpr int ERASE = 2; // index in APPLICATION_HEAD

DownloadPlan::DownloadPlan(const TarnFile& file)
    : _type(file.FirmwareType),
      _address(Application() ? file.AddressBurnStart : 0),
      _crcStart(Application() ? file.CrcStart : 0),
      _crcLength(file.CrcLength),
      _size(file.ProgramData->Count()),
      _frames((_size + FRAME_SIZE - 1) / FRAME_SIZE),
      _requests(static_cast<int>(Application() ? APPLICATION_HEAD.size() : BOOTLOADER_HEAD.size()) + _frames +
                1) {}

int DownloadPlan::Bytes(int remaining) const {
    const int framesToCome = std::max(0, remaining - 1);
    return framesToCome >= _frames ? 0 : std::min(_size, (_frames - framesToCome) * FRAME_SIZE);
}

std::string DownloadPlan::Request(int remaining) const {
    const auto& [data, last] =
        Application() ? std::pair(Commands::FW_DOWNLOAD_DATA.name, Commands::FW_DOWNLOAD_LAST.name)
                      : std::pair(Commands::BL_DOWNLOAD_DATA.name, Commands::BL_DOWNLOAD_LAST.name);
    const int index = _requests - remaining;
    const int head = _requests - _frames - 1;
    std::string what;
    if (AtLast(remaining))
        what = std::string(last) + ", " + Hex(_crcStart) + " to " + Hex(_crcStart + _crcLength - 1);
    else if (index >= head)
        what =
            std::string(data) + ", " + Hex(_address + static_cast<unsigned int>((index - head) * FRAME_SIZE));
    else
        what = Application() ? APPLICATION_HEAD.at(static_cast<std::size_t>(index))
                             : BOOTLOADER_HEAD.at(static_cast<std::size_t>(index));
    return "request " + std::to_string(index + 1) + " of " + std::to_string(_requests) + " (" + what + ")";
}

std::string DownloadPlan::ModuleState(int remaining, bool refused) const {
    const int index = _requests - remaining;
    if (!Application())
        return AtLast(remaining) && !refused ? "Whether the new bootloader is in place is not known."
                                             : "The old bootloader is still in place.";
    if (index < ERASE || (index == ERASE && refused))
        return "Nothing was erased; the old application is still in place.";
    return std::string("The application ") + (index == ERASE ? "may be" : "is") +
           " erased; the module keeps its bootloader.";
}

} // namespace VeskTool
