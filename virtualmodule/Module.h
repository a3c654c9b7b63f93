// SPDX-License-Identifier: MIT
#pragma once

#include "virtualmodule/Bootloader.h"
#include "virtualmodule/Master.h"
#include "virtualmodule/faults/FaultInjector.h"

#include <memory>

namespace VirtualModule {

/// A VT22 module in software: the other side of a DPRAM and of the three lines.
///
/// It is passive: Step() looks at the DPRAM and the lines, does what is due by the clock, and returns. When
/// reset is released it boots, as the master or, with the bootloader-enable line low, as the bootloader;
/// while reset is held it is dead, and only its flash and what hangs on its bus last. A module whose
/// application is not valid stays silent instead of booting as the master.
///
/// It shares nothing with a driver but the map of the DPRAM: messages, records and checksums are its own, so
/// that a mistake on one side shows on the other. It trusts no length and no value that the host writes, and
/// watches what the host must never do; Violations() tells.
///
/// Where to look: Master and Bootloader are the two programs with their handshakes; the folder wires has the
/// board that they run on, flash what it keeps, bus the master's view of its slaves and the devices on the
/// cable, commands the mailbox and what carries out its requests. Each of these is an honest part; faults has
/// the table of what can be made to go wrong, and parts that do it, which take the place of the honest ones
/// in a module that is to have faults.
class Module {
public:
    using Clock = std::function<std::int64_t()>;

    /// On a DPRAM of exactly 8192 bytes (std::invalid_argument otherwise), with a clock that counts
    /// nanoseconds and never goes back. The memory, the lines and the flash outlive the module.
    Module(std::span<volatile std::uint8_t> dpRam, Lines& lines, Flash& flash, Clock clock,
           Options options = {});
    Module(const Module&) = delete;
    Module& operator=(const Module&) = delete;

    /// Does what is due now. To be called as often as the host may expect something: before each look at the
    /// interrupt line, or in a loop.
    void Step();

    /// What the host did that it must not do, in order; each begins with a name from namespace Violation.
    const std::vector<std::string>& Violations() const { return _watch.Violations(); }

    /// Where the log goes from now on: every request, answer, indication and change of state, a line each.
    void SetLog(Watch::Sink log) { _watch.SetLog(std::move(log)); }

    /// How often something has happened that the STEP of a fault counts, since the module was made; a module
    /// without faults counts nothing.
    unsigned Counted(Counts what) const { return _faults ? _faults->Counted(what) : 0; }

    /// Whether any of its faults has struck.
    bool FaultHasStruck() const { return _faults && _faults->HasStruck(); }

    /// Nothing goes wrong from now on; what went wrong stays so until the next reset.
    void ClearFaults() {
        if (_faults)
            _faults->Clear();
    }

    /// Lets a fault strike the next `count` times at its step, or from then on; NAME or NAME=VALUE.
    /// std::invalid_argument for what is no fault, std::logic_error without Options::faultsOnRequest.
    void Strike(std::string_view fault, unsigned count);

    /// Off and on again, as soon as the host has answered the last interrupt; only the flash lasts, and what
    /// hangs on the bus. While reset is held it is off anyway.
    void PowerCycle() { _powerCycled = true; }

    /// Takes a slave off the bus or puts it back, in any state of the module.
    void SetSlavePresent(std::uint8_t address, bool present);

    struct SlaveState {
        std::uint8_t address;
        std::uint16_t identNumber;
        bool present;   // on the bus
        bool exchanges; // data, with the master that runs

        bool operator==(const SlaveState&) const = default;
    };

    /// The slaves of the last whole database that the flash had, each at its address now.
    std::vector<SlaveState> Slaves() const;
    /// One of them, on the bus or off it, until the database or its address changes; std::invalid_argument,
    /// which names them, where there is none.
    Station& Slave(std::uint8_t address);

    /// Who is told, within Step(), when a slave has got other bytes than before.
    void SetInputListener(Stations::InputListener listener) {
        _stations.SetInputListener(std::move(listener));
    }

    /// Ends the master's life with a fatal event; std::logic_error while it does not run.
    void RaiseFatal(const FatalEvent& event) { RunningMaster().RaiseFatal(event); }

    /// Lets the master report log data; std::logic_error while it does not run.
    void RaiseLog() { RunningMaster().RaiseLog(); }

private:
    Board::Phase Look(std::int64_t now);
    void StepProgram(std::int64_t now);
    void PopulateBus();
    void PowerOff();
    void Boot();
    Master& RunningMaster();

    const Options _options;
    Flash& _flash;
    Clock _clock;
    Watch _watch;
    Stations _stations;
    std::uint64_t _populatedWrites = 0; // of the flash, when its slaves were put on the bus
    bool _held = false;                 // in reset, at the last step
    bool _powerCycled = false;          // is to be
    std::unique_ptr<FaultInjector> _faults;
    std::unique_ptr<const Kit> _kit;
    std::unique_ptr<Board> _board;
    std::unique_ptr<Master> _master;         // set while it runs
    std::unique_ptr<Bootloader> _bootloader; // set while it runs
};

} // namespace VirtualModule
