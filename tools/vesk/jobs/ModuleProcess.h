// SPDX-License-Identifier: MIT
#pragma once

#include "tools/vesk/jobs/PublishedModule.h"
#include "tools/vesk/jobs/SharedFile.h"
#include "tools/vesk/text/Console.h"
#include "virtualmodule/Module.h"

#include <chrono>
#include <csignal>
#include <optional>
#include <string>
#include <vector>

namespace VeskTool {

/// The virtual module as a process of its own, for a host in another one: on a DPRAM file and a lines file
/// that both map, with its flash in a file.
class ModuleProcess {
public:
    /// The flash file is a new one after each change, so this one beside it is locked for it.
    static constexpr const char* LOCK = ".lock";

    struct Options {
        std::string dpRamPath;
        std::string linesPath;
        std::string flashPath; // empty: the flash lasts as long as the process
        VirtualModule::Options module;
        std::vector<unsigned int> absentSlaves; // addresses at which nothing answers on the bus
        PublishedModule::Options publish;
        double speed = 1; // of the module's clock
        bool log = false;
    };

    /// Takes the files, each of which serves one module at a time: InUse. Failure, or std::runtime_error for
    /// the flash, where one cannot be used; Failure too where it cannot be published as it should be.
    ModuleProcess(Options options, const Console& console);

    /// Plays the module until SIGINT, SIGTERM or SIGHUP.
    void Execute();

private:
    std::int64_t ModuleTime() const;
    VirtualModule::Options ModuleOptions();
    VirtualModule::Flash LoadFlash();
    void LockFlash();
    void SaveFlash();
    void ReportViolations();
    void Log(const std::string& text);

    Options _options;
    Console _console;
    std::chrono::steady_clock::time_point _start = std::chrono::steady_clock::now();
    SharedFile _dpRam;
    SharedFile _lines;
    std::optional<LockedFile> _flashLock;
    VirtualModule::Flash _flash;
    std::uint64_t _savedWrites = 0;
    VirtualModule::Module _module;
    std::optional<PublishedModule> _published;
    std::size_t _reportedViolations = 0;
};

} // namespace VeskTool
