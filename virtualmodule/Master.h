// SPDX-License-Identifier: MIT
#pragma once

#include "virtualmodule/Options.h"
#include "virtualmodule/commands/AcyclicCommands.h"
#include "virtualmodule/commands/BusCommands.h"
#include "virtualmodule/commands/DatabaseCommands.h"
#include "virtualmodule/commands/InitCommands.h"
#include "virtualmodule/commands/Kit.h"
#include "virtualmodule/wires/FatalEvent.h"

namespace VirtualModule {

/// The module's firmware: the DP-V1 master. It speaks through its interrupt: an indication, then the host's
/// one answer to it, and only then the next indication, empty when there is nothing to say.
class Master {
public:
    /// Boots on a board with such a flash and such devices on its cable.
    Master(Board& board, Flash& flash, Stations& stations, const Options& options, const Kit& kit);
    Master(const Master&) = delete;
    Master& operator=(const Master&) = delete;

    /// Does what is due at `now`.
    void Step(std::int64_t now);

    /// A slave of the database exchanges data with it.
    bool Exchanges(std::uint8_t address) const { return _bus.InExchange(address); }

    /// The host is still to answer the last interrupt.
    bool AwaitsHost() const { return _state == State::INDICATING && !HostHasWritten(); }

    /// The next indication is the fatal one, and the last.
    void RaiseFatal(const FatalEvent& event);

    /// The next indication says that there is log data.
    void RaiseLog() { _log = true; }

private:
    enum class State : std::uint8_t {
        BOOTING,    // until the boot delay is over
        INDICATING, // an interrupt is raised, the host's answer is to come
        IDLE,       // the host has answered, the next interrupt is to come
        STOPPED,    // a fatal event was reported; only a reset helps
    };

    void WriteIdentity(const Flash& flash);
    void Indicate(std::int64_t now);
    std::uint8_t NextIndication(std::int64_t now);

    bool HostHasWritten() const;
    std::uint8_t TakeHostRegister();
    void CheckUnasked();
    void HandleHostIndication(std::uint8_t value);

    Answer Handle(const Message& request);

    Board& _board;
    const Options& _options;
    Bus _bus;
    InitCommands _initCommands;
    DatabaseCommands _databaseCommands;
    BusCommands _busCommands;
    AcyclicCommands _acyclicCommands;
    std::unique_ptr<Mailbox> _mailbox;
    std::unique_ptr<ProcessData> _processData;
    State _state = State::BOOTING;
    bool _booted = false; // power-on was indicated
    bool _fatal = false;
    bool _log = false;
    bool _logHandedOver = false;
};

} // namespace VirtualModule
