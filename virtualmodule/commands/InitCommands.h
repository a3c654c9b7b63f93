// SPDX-License-Identifier: MIT
#pragma once

#include "virtualmodule/bus/Bus.h"
#include "virtualmodule/commands/Answer.h"
#include "virtualmodule/flash/Flash.h"

namespace VirtualModule {

/// The commands that initialise the master, in this order: StartInit, VelmoInit (the lengths of the process
/// data, which must be the database's), EndInit, which puts it onto the bus. A command out of its order
/// answers COMMAND.
class InitCommands {
public:
    InitCommands(const Flash& flash, Bus& bus, Watch& watch);

    /// Nothing if the command is none of these.
    std::optional<Answer> Handle(const Message& request);

private:
    enum class Step : std::uint8_t { IDLE, STARTED, LENGTHS_KNOWN };

    static const std::array<Command<InitCommands>, 3> COMMANDS;

    Answer StartInit(const Message& request);
    Answer VelmoInit(const Message& request);
    Answer EndInit(const Message& request);

    const Flash& _flash;
    Bus& _bus;
    Watch& _watch;
    Step _step = Step::IDLE;
};

} // namespace VirtualModule
