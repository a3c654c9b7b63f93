// SPDX-License-Identifier: MIT
#include "tools/vesk/Commands.h"
#include "tools/vesk/files/DpRamMap.h"
#include "tools/vesk/text/ByteText.h"
#include "tools/vesk/text/Failure.h"
#include "vesk/system/io/FileStream.h"

#include <algorithm>
#include <array>
#include <iostream>

namespace VeskTool {

namespace {

struct DumpOptions {
    std::string path;
    bool bootloader = false;
    bool json = false;
};

std::array<unsigned char, DpRamMap::SIZE> ReadDump(const std::string& path) {
    const auto file =
        System::IO::FileStream::Create(path, System::IO::FileMode::OPEN, System::IO::FileAccess::READ);
    if (file->Length() != DpRamMap::SIZE)
        throw Failure(path + ": " + std::to_string(file->Length()) + " bytes; a dump of the DPRAM has " +
                      std::to_string(DpRamMap::SIZE));
    const auto content = System::Array<unsigned char>::Create(DpRamMap::SIZE);
    if (file->Read(content, 0, DpRamMap::SIZE) != DpRamMap::SIZE)
        throw Failure(path + ": cannot be read");
    std::array<unsigned char, DpRamMap::SIZE> bytes{};
    std::copy_n(content->Data(), bytes.size(), bytes.begin());
    return bytes;
}

void ShowDump(const DumpOptions& options) {
    const auto bytes = ReadDump(options.path);
    const DpRamMap map = options.bootloader ? DpRamMap::Bootloader(bytes) : DpRamMap::Master(bytes);
    std::cout << (options.json ? JsonText(map.ToJson()) : map.ToText());
}

} // namespace

void AddDump(CLI::App& program, int& status) {
    CLI::App* const command = program.add_subcommand(
        "dump", "Show a dump of the dual-port RAM, such as an application leaves behind, as a readable map: "
                "every block and register with its bits, both mailbox messages, the process data.\n"
                "Example: vesk dump /tmp/hostinterface.bin");
    const auto options = std::make_shared<DumpOptions>();
    command->add_option("FILE", options->path, "Dump of 8192 bytes")->required()->type_name("");
    command->add_flag("--bootloader", options->bootloader, "The module ran its bootloader");
    command->add_flag("--json", options->json, "Print one JSON object instead of text");
    command->callback([options, &status] {
        ShowDump(*options);
        status = DONE;
    });
}

} // namespace VeskTool
