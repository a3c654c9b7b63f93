// SPDX-License-Identifier: MIT
#pragma once

#include "virtualmodule/bus/Bus.h"
#include "virtualmodule/commands/Answer.h"

namespace VirtualModule {

/// The DP-V1 services that read and write a slave's records. Class 1 needs the slave in data exchange, Class
/// 2 a connection under the communication reference that the request names. A record that was never written
/// answers ADDRESS, and so does a reference without a connection.
class AcyclicCommands {
public:
    AcyclicCommands(Bus& bus, Watch& watch);

    /// Nothing if the command is none of these.
    std::optional<Answer> Handle(const Message& request);

private:
    static const std::array<Command<AcyclicCommands>, 6> COMMANDS;

    Answer Class1Read(const Message& request);
    Answer Class1Write(const Message& request);
    Answer Class2Initiate(const Message& request);
    Answer Class2Abort(const Message& request);
    Answer Class2Read(const Message& request);
    Answer Class2Write(const Message& request);

    ErrorCode CheckClass1(std::uint8_t address);

    Bus& _bus;
    Watch& _watch;
};

} // namespace VirtualModule
