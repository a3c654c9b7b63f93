// SPDX-License-Identifier: MIT
#pragma once

#include "virtualmodule/wires/DpRam.h"
#include "virtualmodule/wires/Lines.h"
#include "virtualmodule/wires/Watch.h"

#include <initializer_list>

namespace VirtualModule {

/// The module's side of the wires, whichever of its programs runs: what the reset line has it do, when it may
/// interrupt, and the interrupts themselves. It outlives a reset.
class Board {
public:
    /// What a board is made with. Everything that it refers to outlives it.
    struct Wiring {
        std::span<volatile std::uint8_t> memory; // the DPRAM, DpRam::SIZE bytes
        Lines& lines;
        Watch& watch;
        std::int64_t bootDelay;                // nanoseconds from the release of reset to the first interrupt
        std::function<void()> beforeInterrupt; // called before each; may be empty
    };

    /// What the module is to do.
    enum class Phase : std::uint8_t {
        HELD,   // nothing: it is held in reset
        BOOTS,  // to start a program: reset was released
        RUNS,   // to go on
        STANDS, // nothing for now
    };

    /// std::invalid_argument for a DPRAM of another size.
    explicit Board(Wiring wiring);
    virtual ~Board() = default;
    Board(const Board&) = delete;
    Board& operator=(const Board&) = delete;

    /// Looks at the lines. To be called once in each step of the module.
    virtual Phase Look(std::int64_t now);

    /// The module boots in the same release of reset, as after its supply has failed.
    void Restart(std::int64_t now) { Boot(now, _wiring.bootDelay); }

    /// The program that starts is the bootloader.
    bool BootloaderEnabled() const { return _wiring.lines.BootloaderEnabled(); }

    /// Takes the program's turn to interrupt, after which the next one comes `period` nanoseconds later at
    /// the earliest; false if it is too early for it.
    virtual bool TakeTurn(std::int64_t now, std::int64_t period);

    /// Writes `value` to the program's registers and pulls the interrupt line low, after everything that the
    /// host is to see.
    virtual void Indicate(std::initializer_list<std::size_t> registers, unsigned value);

    /// The host has not yet taken the last interrupt.
    bool InterruptIsPending() const { return _wiring.lines.IrqAsserted(_generation); }

    /// Reports what the host has written where it may not. `mailboxIn` is where the running program has its
    /// mailbox-in, which has a report of its own.
    void CheckMemory(std::size_t mailboxIn);

    DpRam dpRam;
    Watch& watch;

protected:
    /// Begins with the release of reset that the lines show; its interrupts count only in that one.
    virtual void Boot(std::int64_t now, std::int64_t delay);
    virtual void PullInterrupt();

    const Wiring _wiring;

private:
    std::uint8_t _generation = 0; // the release of reset in which it booted
    std::int64_t _due = 0;        // when the next turn may be taken
};

} // namespace VirtualModule
