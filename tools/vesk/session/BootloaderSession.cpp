// SPDX-License-Identifier: MIT
#include "tools/vesk/session/BootloaderSession.h"

#include "tools/vesk/text/Interruption.h"
#include "vesk/modules/dpvm/Vt22.h"

#include <chrono>
#include <thread>

namespace VeskTool {

using Vesk::Modules::Bootloader::FirmwareType_e;
using Vesk::Modules::Bootloader::TarnFile;

BootloaderSession::BootloaderSession(const Link& link)
    : _module(Vesk::Modules::DPVM::Vt22::CreateBootloaderModule(link.dpRamPath, link.offset, link.velmoIrq_n,
                                                                link.reset_n, link.bootloader_enable_n)) {}

void BootloaderSession::Boot() {
    while (!_module->Booted())
        Update();
}

void BootloaderSession::Download(const std::shared_ptr<TarnFile>& file,
                                 const std::function<void(int remaining)>& observer) {
    int remaining = 0;
    if (file->FirmwareType == FirmwareType_e::BOOTLOADER_FIRMWARE)
        _module->BeginBootloaderDownload(file, &remaining);
    else
        _module->BeginFirmwareDownload(file, &remaining);
    observer(remaining);
    for (bool done = false; !done;) {
        const int before = remaining;
        Update();
        done = _module->EndDownload(&remaining);
        if (remaining != before)
            observer(remaining);
    }
}

/// One Update, and a rest for the processor that is short against the 0.5 ms between two requests.
void BootloaderSession::Update() {
    StopIfSignalled([](int) { return "in the bootloader; the module is in reset"; });
    _module->Update();
    std::this_thread::sleep_for(std::chrono::microseconds(20));
}

} // namespace VeskTool
