// SPDX-License-Identifier: MIT
#include "tools/vesk/files/DpRamMap.h"
#include "tools/vesk/files/FileBytes.h"
#include "tools/vesk/files/FileCommands.h"
#include "tools/vesk/text/ByteText.h"

#include <iostream>

namespace VeskTool {

namespace {

struct DumpOptions {
    std::string path;
    bool bootloader = false;
    bool json = false;
};

void ShowDump(const DumpOptions& options) {
    const auto check = [&options](std::int64_t length) {
        if (length != DpRamMap::SIZE)
            throw Failure(options.path + ": " + std::to_string(length) + " bytes; a dump of the DPRAM has " +
                          std::to_string(DpRamMap::SIZE));
    };
    const auto file = ReadFile(options.path, check);
    const DpRamMap::Bytes bytes(file);
    const DpRamMap map = options.bootloader ? DpRamMap::Bootloader(bytes) : DpRamMap::Master(bytes);
    std::cout << (options.json ? JsonText(map.ToJson()) : map.ToText());
}

} // namespace

Action AddDump(CLI::App& command) {
    const auto options = std::make_shared<DumpOptions>();
    AddArgument(command, "FILE", options->path, "Dump of 8192 bytes");
    command.add_flag("--bootloader", options->bootloader, "The module ran its bootloader");
    AddJson(command, options->json);
    return [options] {
        ShowDump(*options);
        return DONE;
    };
}

} // namespace VeskTool
