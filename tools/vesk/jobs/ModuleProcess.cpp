// SPDX-License-Identifier: MIT
#include "tools/vesk/jobs/ModuleProcess.h"

#include "tools/vesk/text/Failure.h"

#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <ostream>

namespace VeskTool {

// Between two steps: short against the period of the interrupts, and next to nothing for the processor.
static constexpr timespec REST{0, 20'000};
static constexpr timespec REST_IN_RESET{0, 1'000'000};

ModuleProcess::ModuleProcess(Options options, const Console& console)
    : _options(std::move(options)),
      _console(console),
      _dpRam(_options.dpRamPath, VirtualModule::DpRam::SIZE),
      _lines(_options.linesPath, VirtualModule::Lines::SIZE),
      _flash(LoadFlash()),
      _module(
          {static_cast<volatile std::uint8_t*>(_dpRam.Memory()), VirtualModule::DpRam::SIZE},
          VirtualModule::Lines::At(_lines.Memory()), _flash, [this] { return ModuleTime(); },
          ModuleOptions()) {
    if (_options.log)
        _module.SetLog([this](const std::string& text) { Log(text); });
    if (!_options.publish.name.empty())
        _published.emplace(_options.publish, _module);
}

std::int64_t ModuleProcess::ModuleTime() const {
    const std::chrono::duration<double, std::nano> passed = std::chrono::steady_clock::now() - _start;
    return static_cast<std::int64_t>(passed.count() * _options.speed);
}

/// What the host is told it may rely on, even if this process is killed the next moment.
VirtualModule::Options ModuleProcess::ModuleOptions() {
    VirtualModule::Options options = _options.module;
    options.faultsOnRequest = !_options.publish.name.empty();
    options.beforeInterrupt = [this] { SaveFlash(); };
    return options;
}

/// A module that has no flash file yet gets one at once, so that a path that cannot be written shows now.
VirtualModule::Flash ModuleProcess::LoadFlash() {
    const std::string& path = _options.flashPath;
    if (path.empty())
        return {};
    if (std::filesystem::exists(path) && !std::filesystem::is_regular_file(path))
        throw Failure(path + " is not a regular file");
    LockFlash();
    std::error_code notThere;
    std::filesystem::remove(path + VirtualModule::Flash::UNFINISHED, notThere);
    if (std::filesystem::exists(path))
        return VirtualModule::Flash::Load(path);
    const VirtualModule::Flash flash;
    flash.Save(path);
    return flash;
}

void ModuleProcess::LockFlash() {
    try {
        _flashLock.emplace(_options.flashPath + LOCK, LockedFile::Side::MODULE, O_CREAT);
    } catch (const InUse& inUse) {
        throw InUse(_options.flashPath, inUse.User());
    }
}

void ModuleProcess::Execute() {
    // The signals stay pending until the end of a step, so that they cut nothing off.
    sigset_t ends;
    sigemptyset(&ends);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP})
        sigaddset(&ends, signal);
    sigprocmask(SIG_BLOCK, &ends, nullptr);
    const auto& lines = VirtualModule::Lines::At(_lines.Memory());
    for (const unsigned int address : _options.absentSlaves)
        _module.SetSlavePresent(static_cast<std::uint8_t>(address), false);
    _console.out << "module ready on " << _options.dpRamPath << ", " << _options.linesPath << std::endl;
    do {
        _module.Step();
        SaveFlash(); // what is written long before its answer, or never answered
        ReportViolations();
        if (_published)
            _published->Serve();
    } while (sigtimedwait(&ends, nullptr, lines.ResetAsserted() ? &REST_IN_RESET : &REST) < 0);
    if (_reportedViolations > 0)
        _console.err << "vesk: the host broke the protocol "
                     << (_reportedViolations < VirtualModule::Watch::MOST_VIOLATIONS ? "" : "at least ")
                     << _reportedViolations << " times" << std::endl;
}

void ModuleProcess::SaveFlash() {
    if (_options.flashPath.empty() || _flash.writes == _savedWrites)
        return;
    _flash.Save(_options.flashPath);
    _savedWrites = _flash.writes;
    if (_options.log)
        Log("flash saved");
}

void ModuleProcess::ReportViolations() {
    const auto& violations = _module.Violations();
    for (; _reportedViolations < violations.size(); ++_reportedViolations)
        _console.err << "vesk: violation: " << violations[_reportedViolations] << std::endl;
}

void ModuleProcess::Log(const std::string& text) {
    const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - _start;
    char stamp[32];
    std::snprintf(stamp, sizeof stamp, "%12.6f  ", passed.count());
    _console.out << stamp << text << std::endl;
}

} // namespace VeskTool
