// SPDX-License-Identifier: MIT
#pragma once

#include "virtualmodule/bus/Bus.h"
#include "virtualmodule/commands/Answer.h"

namespace VirtualModule {

/// The master's commands about the bus and its stations. Except for the operation mode, which may be chosen
/// before, they need an initialised module and answer INVALID_OTHER without one. An address where nobody
/// should be answers ADDRESS, a configured slave that is not there RESPONSE.
class BusCommands {
public:
    BusCommands(Bus& bus, Watch& watch);

    /// Nothing if the command is none of these.
    std::optional<Answer> Handle(const Message& request);

private:
    static const std::array<Command<BusCommands>, 9> COMMANDS;

    Answer SetOperationMode(const Message& request);
    Answer GetSlaveDiag(const Message& request);
    Answer GetSlaveConfig(const Message& request);
    Answer SetSlaveAddress(const Message& request);
    Answer ReadSlaveInput(const Message& request);
    Answer ReadSlaveOutput(const Message& request);
    Answer StartSlave(const Message& request);
    Answer StopSlave(const Message& request);
    Answer GetLiveList(const Message& request);

    ErrorCode Reach(std::uint8_t address);
    Answer SetStarted(const Message& request, bool started);

    Bus& _bus;
    Watch& _watch;
};

} // namespace VirtualModule
