// SPDX-License-Identifier: MIT
#include "virtualmodule/Module.h"

#include <stdexcept>

namespace VirtualModule {

Module::Module(std::span<volatile std::uint8_t> dpRam, Lines& lines, Flash& flash, Clock clock,
               Options options)
    : _board(dpRam, lines, flash, std::move(options)), _clock(std::move(clock)) {}

void Module::Step() {
    if (!_board.faultyDpRam) {
        StepPrograms();
        return;
    }
    _board.faultyDpRam->TakeHostWrites();
    StepPrograms();
    _board.faultyDpRam->Show();
}

void Module::StepPrograms() {
    if (_board.lines.ResetAsserted()) {
        HoldInReset();
        return;
    }
    const std::int64_t now = _clock();
    if (_board.lines.Generation() != _board.generation)
        Boot(now);
    if (!_board.RepeatInterrupt()) {
        StepProgram(now);
        HandleOutage(now);
    }
}

void Module::StepProgram(std::int64_t now) {
    if (_master)
        _master->Step(now);
    else if (_bootloader)
        _bootloader->Step(now);
}

void Module::HandleOutage(std::int64_t now) {
    switch (_board.faults.TakeOutage()) {
    case FaultInjector::Outage::NONE:
        return;
    case FaultInjector::Outage::DEAD:
        _master.reset();
        _bootloader.reset();
        return;
    case FaultInjector::Outage::REBOOT:
        Boot(now);
        return;
    }
}

void Module::HoldInReset() {
    PowerOff();
    if (_board.faults.Strikes(FaultId::RESET_IRQ_STUCK)) {
        _board.lines.OverrideReset();
        _board.generation = _board.lines.Generation();
        _off = false;
    }
}

void Module::PowerOff() {
    if (_off)
        return;
    _off = true;
    _board.faults.Count(Counts::BOOTS);
    if (_master || _bootloader)
        _board.watch.Log([] { return std::string("held in reset"); });
    _master.reset();
    _bootloader.reset();
}

void Module::Boot(std::int64_t now) {
    PowerOff();
    _off = false;
    _board.interrupted = false;
    _board.generation = _board.lines.Generation();
    if (_board.faults.Strikes(FaultId::BOOT_SILENT))
        return;
    if (_board.lines.BootloaderEnabled()) {
        _board.watch.Log([] { return std::string("boots as the bootloader"); });
        _bootloader = std::make_unique<Bootloader>(_board, now);
    } else if (_board.flash.application.valid) {
        _board.watch.Log([] { return std::string("boots as the master"); });
        _master = std::make_unique<Master>(_board, now);
    } else {
        _board.watch.Log([] { return std::string("has no valid application and stays silent"); });
    }
}

Master& Module::RunningMaster() {
    if (!_master)
        throw std::logic_error("The module does not run as the master");
    return *_master;
}

void Module::SetSlavePresent(std::uint8_t address, bool present) {
    _board.watch.Log([&] {
        return "slave " + std::to_string(address) + (present ? " put on the bus" : " taken off the bus");
    });
    _board.stations.SetPresent(address, present);
}

} // namespace VirtualModule
