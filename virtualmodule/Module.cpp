// SPDX-License-Identifier: MIT
#include "virtualmodule/Module.h"

#include "virtualmodule/faults/FaultyKit.h"

#include <stdexcept>

namespace VirtualModule {

Module::Module(std::span<volatile std::uint8_t> dpRam, Lines& lines, Flash& flash, Clock clock,
               Options options)
    : _options(std::move(options)), _flash(flash), _clock(std::move(clock)) {
    if (_options.faults.empty() && !_options.faultsOnRequest) {
        _kit = std::make_unique<Kit>();
    } else {
        _faults = std::make_unique<FaultInjector>(_options.faults, _watch);
        _kit = std::make_unique<FaultyKit>(*_faults);
    }
    _board = _kit->MakeBoard({dpRam, lines, _watch, _options.bootDelay, _options.beforeInterrupt});
    PopulateBus();
}

void Module::Step() {
    const std::int64_t now = _clock();
    const Board::Phase phase = Look(now);
    _held = phase == Board::Phase::HELD;
    switch (phase) {
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
        if (_flash.writes != _populatedWrites)
            PopulateBus();
        return;
    case Board::Phase::STANDS:
        return;
    }
}

Board::Phase Module::Look(std::int64_t now) {
    const Board::Phase phase = _board->Look(now);
    const bool waits = _master && _master->AwaitsHost() && phase != Board::Phase::HELD;
    if (waits || !std::exchange(_powerCycled, false) || phase == Board::Phase::HELD)
        return phase;
    _watch.Log([] { return std::string("power-cycled"); });
    _master.reset();
    _bootloader.reset();
    _board->Restart(now);
    return Board::Phase::BOOTS;
}

/// What a database says about the cable holds from the moment on when it is whole, so that the slaves can be
/// told what to do before the bus runs.
void Module::PopulateBus() {
    _populatedWrites = _flash.writes;
    if (_flash.database.Complete())
        _stations.Populate(_flash.database);
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

std::vector<Module::SlaveState> Module::Slaves() const {
    std::vector<SlaveState> slaves;
    slaves.reserve(_stations.All().size());
    for (const auto& [address, station] : _stations.All())
        slaves.push_back({address, station.IdentNumber(), _stations.IsPresent(address),
                          _master && _master->Exchanges(address)});
    return slaves;
}

Station& Module::Slave(std::uint8_t address) {
    const auto found = _stations.All().find(address);
    if (found != _stations.All().end())
        return found->second;
    std::string all;
    for (const auto& slave : _stations.All())
        all += (all.empty() ? "the slaves are " : ", ") + std::to_string(slave.first);
    throw std::invalid_argument("there is no slave " + std::to_string(address) + ": " +
                                (all.empty() ? "the module holds no database yet" : all));
}

/// A module in reset has counted the boot that is to come.
void Module::Strike(std::string_view text, unsigned count) {
    if (!_options.faultsOnRequest)
        throw std::logic_error("The module takes no faults on request");
    Fault fault = Fault::ParseWithoutStep(text);
    const Counts counts = KindOf(fault.id).counts;
    fault.step = _faults->Counted(counts) + (_held && counts == Counts::BOOTS ? 0 : 1);
    fault.count = count;
    _watch.Log([&] { return "fault " + fault.Text() + " is to strike"; });
    _faults->Add(fault);
}

} // namespace VirtualModule
