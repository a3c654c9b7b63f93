// SPDX-License-Identifier: MIT
#pragma once

#include "virtualmodule/Board.h"
#include "virtualmodule/commands/DownloadCommands.h"
#include "virtualmodule/commands/Mailbox.h"

namespace VirtualModule {

/// The module's bootloader. Each side has a register of toggle bits; the module interrupts when its own
/// changes, and sees the host's change by itself. It has no process data.
class Bootloader {
public:
    /// Boots at `now`.
    Bootloader(Board& board, std::int64_t now);
    Bootloader(const Bootloader&) = delete;
    Bootloader& operator=(const Bootloader&) = delete;

    /// Does what is due at `now`.
    void Step(std::int64_t now);

private:
    void WriteControlBlock();
    void Boot(std::int64_t now);
    void TakeHostRegister();
    void Indicate(Mailbox::Turn mail);
    void RaiseInterrupt();

    Board& _board;
    DownloadCommands _commands;
    Mailbox _mailbox;
    bool _booted = false;
    std::int64_t _bootAt = 0;
    std::uint8_t _host = 0;   // the host's register, as last seen
    std::uint8_t _module = 0; // the module's register
};

} // namespace VirtualModule
