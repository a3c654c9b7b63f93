// SPDX-License-Identifier: MIT
#include "tools/vesk/files/DpRamMap.h"
#include "tools/vesk/files/FileBytes.h"
#include "tools/vesk/files/FileCommands.h"
#include "tools/vesk/files/Snapshot.h"
#include "tools/vesk/text/ByteText.h"

#include <iostream>
#include <limits>

namespace VeskTool {

namespace {

struct DumpOptions {
    std::string path;
    std::string dpRamPath; // of a DPRAM in use, instead of the dump
    int offset = 0;
    bool bootloader = false;
    bool json = false;
};

std::vector<unsigned char> ReadDump(const DumpOptions& options) {
    const auto file = ReadFile(options.path, DpRamMap::SIZE);
    if (file.size() != DpRamMap::SIZE)
        throw Failure(options.path + ": has " +
                      (file.size() > DpRamMap::SIZE ? "more bytes" : std::to_string(file.size()) + " bytes") +
                      ", and a dump of the DPRAM has " + std::to_string(DpRamMap::SIZE) + LooksLike(file));
    return file;
}

void ShowDump(const DumpOptions& options) {
    const bool live = !options.dpRamPath.empty();
    const auto content = live ? ReadSnapshot(options.dpRamPath, options.offset) : ReadDump(options);
    const DpRamMap::Bytes bytes(content);
    const auto source = live ? DpRamMap::Source::SNAPSHOT : DpRamMap::Source::DUMP;
    const DpRamMap map =
        options.bootloader ? DpRamMap::Bootloader(bytes, source) : DpRamMap::Master(bytes, source);
    std::cout << (options.json ? JsonText(map.ToJson()) : map.ToText());
}

} // namespace

Action AddDump(CLI::App& command) {
    const auto options = std::make_shared<DumpOptions>();
    // Not from the environment: that would be in the way of every FILE.
    CLI::Option* const dpRam =
        command.add_option("--dpram", options->dpRamPath, "DPRAM of a module in use: a file or a device")
            ->type_name("FILE");
    command.add_option("--offset", options->offset, "Where in that file the DPRAM begins (0)")
        ->type_name("BYTES")
        ->check(CLI::Range(0, std::numeric_limits<int>::max()).description(""))
        ->needs(dpRam);
    command.add_option("FILE", options->path, "Dump of 8192 bytes")->type_name("")->excludes(dpRam);
    command.add_flag("--bootloader", options->bootloader, "The module ran its bootloader");
    AddJson(command, options->json);
    return [options] {
        if (options->path.empty() && options->dpRamPath.empty())
            throw CLI::RequiredError("FILE or --dpram");
        ShowDump(*options);
        return DONE;
    };
}

} // namespace VeskTool
