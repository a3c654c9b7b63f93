// SPDX-License-Identifier: MIT
#pragma once

#include "virtualmodule/Options.h"
#include "virtualmodule/commands/DownloadCommands.h"
#include "virtualmodule/commands/Kit.h"

namespace VirtualModule {

/// The module's bootloader. Each side has a register of toggle bits; the module interrupts when its own
/// changes, and sees the host's change by itself. It has no process data.
class Bootloader {
public:
    /// Boots on a board with such a flash.
    Bootloader(Board& board, Flash& flash, const Options& options, const Kit& kit);
    Bootloader(const Bootloader&) = delete;
    Bootloader& operator=(const Bootloader&) = delete;

    /// Does what is due at `now`.
    void Step(std::int64_t now);

private:
    void WriteControlBlock(const Flash& flash, const Options& options);
    void Boot(std::int64_t now);
    void TakeHostRegister();
    void Indicate(Mailbox::Turn mail, std::int64_t now);
    void Indicate();

    Board& _board;
    DownloadCommands _commands;
    std::unique_ptr<Mailbox> _mailbox;
    bool _booted = false;
    std::uint8_t _host = 0;   // the host's register, as last seen
    std::uint8_t _module = 0; // the module's register
};

} // namespace VirtualModule
