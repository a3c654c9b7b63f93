// SPDX-License-Identifier: MIT
#include "virtualmodule/Module.h"

#include "virtualmodule/faults/FaultyKit.h"

#include <stdexcept>

namespace VirtualModule {

Module::Module(std::span<volatile std::uint8_t> dpRam, Lines& lines, Flash& flash, Clock clock,
               Options options)
    : _options(std::move(options)), _flash(flash), _clock(std::move(clock)) {
    if (_options.faults.empty()) {
        _kit = std::make_unique<Kit>();
    } else {
        _faults = std::make_unique<FaultInjector>(_options.faults, _watch);
        _kit = std::make_unique<FaultyKit>(*_faults);
    }
    _board = _kit->MakeBoard({dpRam, lines, _watch, _options.bootDelay, _options.beforeInterrupt});
}

void Module::Step() {
    const std::int64_t now = _clock();
    switch (_board->Look(now)) {
    case Board::Phase::HELD:
        PowerOff();
        return;
    case Board::Phase::BOOTS:
        PowerOff();
        Boot();
        StepProgram(now);
        return;
    case Board::Phase::RUNS:
        StepProgram(now);
        return;
    case Board::Phase::STANDS:
        return;
    }
}

void Module::StepProgram(std::int64_t now) {
    if (_master)
        _master->Step(now);
    else if (_bootloader)
        _bootloader->Step(now);
}

void Module::PowerOff() {
    if (_master || _bootloader)
        _watch.Log([] { return std::string("held in reset"); });
    _master.reset();
    _bootloader.reset();
}

void Module::Boot() {
    if (_board->BootloaderEnabled()) {
        _watch.Log([] { return std::string("boots as the bootloader"); });
        _bootloader = std::make_unique<Bootloader>(*_board, _flash, _options, *_kit);
    } else if (_flash.application.valid) {
        _watch.Log([] { return std::string("boots as the master"); });
        _master = std::make_unique<Master>(*_board, _flash, _stations, _options, *_kit);
    } else {
        _watch.Log([] { return std::string("has no valid application and stays silent"); });
    }
}

Master& Module::RunningMaster() {
    if (!_master)
        throw std::logic_error("The module does not run as the master");
    return *_master;
}

void Module::SetSlavePresent(std::uint8_t address, bool present) {
    _watch.Log([&] {
        return "slave " + std::to_string(address) + (present ? " put on the bus" : " taken off the bus");
    });
    _stations.SetPresent(address, present);
}

} // namespace VirtualModule
