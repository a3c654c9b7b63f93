// SPDX-License-Identifier: MIT
#include "virtualmodule/faults/FaultyBoard.h"

#include "vesk/hostinterface/BootloaderDpRam.h"
#include "vesk/hostinterface/MasterDpRam.h"
#include "virtualmodule/wires/FatalEvent.h"

#include <utility>

using Vesk::Modules::DPVM::Vt22VelmoIndication_t;

namespace VirtualModule {

namespace {

/// A fatal event that has something in each of its fields.
FatalEvent FullEvent(unsigned errorCode) {
    FatalEvent event;
    event.errorCode = Word(0, errorCode);
    event.errorCause = 0x0304;
    event.taskId = 5;
    event.timeStamp = 86'400'000;
    event.additionalInfo = {0xDE, 0xAD, 0xBE, 0xEF};
    event.sourceLine = 142;
    event.sourceFile = "dpmaster.c";
    return event;
}

} // namespace

FaultyBoard::FaultyBoard(Wiring wiring, FaultInjector& faults) : Board(std::move(wiring)), _faults(faults) {}

Board::Phase FaultyBoard::Look(std::int64_t now) {
    if (!_faultyDpRam && FaultyDpRam::IsNeeded(_faults)) {
        _faultyDpRam = std::make_unique<FaultyDpRam>(_wiring.memory, _faults);
        dpRam.MoveTo(_faultyDpRam->ModuleSide());
    }
    if (_faultyDpRam) {
        _faultyDpRam->TakeHostWrites();
        _faultyDpRam->Show();
    }
    Phase phase = Board::Look(now);
    if (phase == Phase::HELD) {
        HoldInReset(now);
        return phase;
    }
    if (phase == Phase::RUNS && _faults.Reboots()) {
        Boot(now, _wiring.bootDelay);
        phase = Phase::BOOTS;
    }
    return RepeatInterrupt() || _faults.IsFailing() ? Phase::STANDS : phase;
}

void FaultyBoard::HoldInReset(std::int64_t now) {
    CountBoot();
    if (_faults.Strike(FaultId::RESET_IRQ_STUCK)) {
        _wiring.lines.OverrideReset();
        Board::Boot(now, 0);
        _counted = false;
    }
}

void FaultyBoard::CountBoot() {
    if (!std::exchange(_counted, true))
        _faults.Count(Counts::BOOTS);
}

void FaultyBoard::Boot(std::int64_t now, std::int64_t delay) {
    CountBoot();
    _counted = _interrupted = false;
    _bootloader = BootloaderEnabled();
    _faults.Recover();
    if (_faults.Strike(FaultId::BOOT_SILENT))
        _faults.Fail(FaultInjector::Outage::DEAD);
    const Fault* late = _faults.Strike(FaultId::BOOT_LATE);
    Board::Boot(now, late != nullptr ? late->value * 1'000'000 : delay);
}

bool FaultyBoard::TakeTurn(std::int64_t now, std::int64_t period) {
    if (_faults.IsFailing() || !Board::TakeTurn(now, period))
        return false;
    _faults.Count(Counts::INTERRUPTS);
    if (_faults.Strike(FaultId::DEAD))
        _faults.Fail(FaultInjector::Outage::DEAD);
    else if (_interrupted && !_bootloader && _faults.Strike(FaultId::REBOOT))
        _faults.Fail(FaultInjector::Outage::REBOOT);
    return !_faults.IsFailing();
}

void FaultyBoard::Indicate(std::initializer_list<std::size_t> registers, unsigned value) {
    if (_faults.IsFailing())
        return;
    if (!_interrupted)
        FalsifyIdentity();
    const unsigned indication =
        _bootloader ? value ^ _faults.Falsify(FaultId::BOOT_HANDSHAKE, 0) : FalsifyIndication(value);
    Board::Indicate(registers, indication);
}

/// What the module says about itself, at its first interrupt.
void FaultyBoard::FalsifyIdentity() {
    namespace Master = Vesk::HostInterface::MasterDpRam::Identity;
    namespace Bootloader = Vesk::HostInterface::BootloaderDpRam::Ctrl;
    const auto falsify = [this](FaultId id, std::size_t inMaster, std::size_t inBootloader) {
        if (const Fault* fault = _faults.Strike(id))
            dpRam.Write16(_bootloader ? Bootloader::OFFSET + inBootloader : Master::OFFSET + inMaster,
                          fault->value);
    };
    falsify(FaultId::WRONG_MODULE_TYPE, Master::MODULE_TYPE, Bootloader::MODULE_TYPE);
    falsify(FaultId::WRONG_VENDOR_ID, Master::VENDOR_ID, Bootloader::VENDOR_ID);
    falsify(FaultId::WRONG_FIELDBUS_TYPE, Master::FIELDBUS_TYPE, Bootloader::FIELDBUS_TYPE);
    const Fault* major = _bootloader ? _faults.Strike(FaultId::BOOTLOADER_MAJOR) : nullptr;
    if (major != nullptr)
        dpRam.Write8(Bootloader::OFFSET + Bootloader::BOOTLOADER_MAJOR, major->value);
}

/// The master's.
unsigned FaultyBoard::FalsifyIndication(unsigned indication) {
    if (const Fault* fault = _faults.Strike(_interrupted ? FaultId::FATAL : FaultId::BOOT_FATAL)) {
        FullEvent(fault->value).Write(dpRam);
        _faults.Fail(FaultInjector::Outage::DEAD);
        indication = Vt22VelmoIndication_t::FATAL;
    } else if (!_interrupted) {
        indication = FalsifyBootIndication(indication);
    }
    return _faults.Strike(FaultId::INDICATION_RESERVED) ? indication | Vt22VelmoIndication_t::RESERVED
                                                        : indication;
}

unsigned FaultyBoard::FalsifyBootIndication(unsigned indication) {
    if (_faults.Strike(FaultId::BOOT_EMPTY))
        return 0;
    return _faults.Falsify(FaultId::BOOT_NO_POWER_ON, indication) |
           _faults.Falsify(FaultId::BOOT_EXTRA_BITS, 0);
}

void FaultyBoard::PullInterrupt() {
    if (_faultyDpRam)
        _faultyDpRam->Show();
    Board::PullInterrupt();
    _interrupted = true;
    _bounces = 0;
}

/// Pulls the line low again where it bounces or is stuck. True while the module stands still, so that the
/// host sees each bounce, and that the line is stuck, before the module says anything else.
bool FaultyBoard::RepeatInterrupt() {
    const bool stuck = _faults.Strike(FaultId::IRQ_STUCK) != nullptr;
    const unsigned most = stuck ? 1 : _faults.Falsify(FaultId::IRQ_BOUNCE, 0);
    const bool taken = !InterruptIsPending();
    const bool standsStill = _interrupted && (taken ? _bounces < most : _bounces > 0 && _bounces <= most);
    if (_interrupted && taken && (standsStill || stuck)) {
        Board::PullInterrupt();
        ++_bounces;
    }
    return standsStill;
}

} // namespace VirtualModule
