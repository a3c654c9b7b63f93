// SPDX-License-Identifier: MIT
#include "tools/vesk/LinkOptions.h"

#include "examples/LinesFile.h"
#include "tools/vesk/Failure.h"

#include <filesystem>
#include <iostream>
#include <limits>

namespace VeskTool {

namespace {

void CheckThere(const std::string& path) {
    std::error_code ignored;
    if (!std::filesystem::exists(path, ignored))
        throw Failure(path + " does not exist", "Start `vesk module` with the same two files; it makes them");
}

Link FileLink(const std::string& dpRamPath, int offset, const std::string& linesPath) {
    CheckThere(dpRamPath);
    CheckThere(linesPath);
    const auto lines = LinesFile::Open(linesPath);
    Link link;
    link.description = "module at " + dpRamPath;
    link.dpRamPath = dpRamPath;
    link.offset = offset;
    link.velmoIrq_n = lines->VelmoIrq_n();
    link.reset_n = lines->Reset_n();
    link.bootloader_enable_n = lines->BootloaderEnable_n();
    return link;
}

} // namespace

void LinkOptions::AddTo(CLI::App& command) {
    const auto add = [&command](const char* name, auto& target, const char* variable, const char* text) {
        return command.add_option(name, target, text)->envname(variable)->group("Where the module is");
    };
    CLI::Option* const dpRam = add("--dpram", _dpRamPath, "VESK_DPRAM", "DPRAM of the module");
    CLI::Option* const offset =
        add("--offset", _offset, "VESK_OFFSET", "Where in the file the DPRAM begins (0)");
    CLI::Option* const lines = add("--lines", _linesPath, "VESK_LINES",
                                   "Lines file of a `vesk module`. Without both files a virtual module in "
                                   "this process serves.");
    dpRam->type_name("FILE")->needs(lines);
    offset->type_name("BYTES")
        ->check(CLI::Range(0, std::numeric_limits<int>::max()).description(""))
        ->needs(dpRam);
    lines->type_name("FILE")->needs(dpRam);
}

Link LinkOptions::Open(VirtualModule::Flash flash) const {
    if (_dpRamPath && _linesPath)
        return FileLink(*_dpRamPath, _offset, *_linesPath);
    std::cerr << "vesk: no --dpram and --lines, so a virtual module in this process serves"
              << (flash.database.Complete() ? ", with the plant of the examples" : "") << std::endl;
    return InProcessLink(std::move(flash));
}

} // namespace VeskTool
