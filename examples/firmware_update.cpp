// SPDX-License-Identifier: MIT
// Brings new firmware into a module, and starts it to see which version it is. Arguments: the DPRAM file, the
// lines file and the firmware file.
#include "Updating.h"
#include "vesk/lines/LinesFile.h"

#include "vesk/Vesk.h"

#include <iostream>

using namespace Vesk::Modules::DPVM;
using Vesk::Modules::Bootloader::TarnFile;

static void Download(const char* dpRam, LinesFile& lines, const std::shared_ptr<TarnFile>& firmware) {
    const auto bootloader = Vt22::CreateBootloaderModule(dpRam, 0, lines.VelmoIrq_n(), lines.Reset_n(),
                                                         lines.BootloaderEnable_n());
    UpdateUntil(*bootloader, "the bootloader runs", [&] { return bootloader->Booted(); });

    // The old firmware is erased first. From here on only a complete download makes the module run again.
    int remaining = 0;
    bootloader->BeginFirmwareDownload(firmware, &remaining);
    std::cout << "downloading " << firmware->Description.Value() << ", " << remaining << " requests\n";
    for (; !bootloader->EndDownload(&remaining); std::this_thread::sleep_for(std::chrono::microseconds(100)))
        bootloader->Update();
}

static void ShowVersion(const char* dpRam, LinesFile& lines) {
    const auto master =
        Vt22::CreateUnconfigured(dpRam, 0, lines.VelmoIrq_n(), lines.Reset_n(), lines.BootloaderEnable_n());
    UpdateUntil(*master, "the module has booted", [&] { return master->Booted(); });
    std::cout << "the module runs version " << int(master->SoftwareMajor()) << "."
              << int(master->SoftwareMinor()) << "." << int(master->SoftwareBuild()) << "\n";
}

int main(int argc, char** argv) try {
    if (argc != 4)
        throw std::runtime_error("usage: firmware_update DPRAM LINES FIRMWARE");
    const auto lines = LinesFile::Open(argv[2]);
    Download(argv[1], *lines, TarnFile::FromPath(argv[3]));
    ShowVersion(argv[1], *lines);
    return 0;

} catch (const std::exception& failure) {

    std::cerr << failure.what() << "\n";
    return 1;
}
