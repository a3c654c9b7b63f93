// SPDX-License-Identifier: MIT
#pragma once

#include "virtualmodule/Board.h"
#include "virtualmodule/bus/ProcessData.h"
#include "virtualmodule/commands/AcyclicCommands.h"
#include "virtualmodule/commands/BusCommands.h"
#include "virtualmodule/commands/DatabaseCommands.h"
#include "virtualmodule/commands/InitCommands.h"
#include "virtualmodule/commands/Mailbox.h"

namespace VirtualModule {

/// Why the module stops, as the fatal-event block shows it.
struct FatalEvent {
    std::uint16_t errorCode = 0;
    std::uint16_t errorCause = 0;
    std::uint16_t taskId = 0;
    std::uint64_t timeStamp = 0; // milliseconds
    Bytes additionalInfo;        // the first 24 bytes count
    std::uint16_t sourceLine = 0;
    std::string sourceFile; // the first 26 characters count
};

/// The module's firmware: the DP-V1 master. It speaks through its interrupt: an indication, then the host's
/// one answer to it, and only then the next indication, empty when there is nothing to say.
class Master {
public:
    /// Boots at `now`.
    Master(Board& board, std::int64_t now);
    Master(const Master&) = delete;
    Master& operator=(const Master&) = delete;

    /// Does what is due at `now`.
    void Step(std::int64_t now);

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

    void WriteIdentity();
    void Indicate(std::int64_t now);
    bool Reboots();
    std::uint8_t BootIndication();
    std::uint8_t NextIndication(std::int64_t now);
    void RaiseInterrupt(std::uint8_t indication, std::int64_t now);

    bool HostHasWritten() const;
    std::uint8_t TakeHostRegister();
    void CheckUnasked();
    void HandleHostIndication(std::uint8_t value);

    Answer Handle(const Message& request);

    Board& _board;
    Bus _bus;
    InitCommands _initCommands;
    DatabaseCommands _databaseCommands;
    BusCommands _busCommands;
    AcyclicCommands _acyclicCommands;
    Mailbox _mailbox;
    ProcessData _processData;
    State _state = State::BOOTING;
    std::int64_t _due = 0; // when the next interrupt may be raised
    bool _booted = false;  // power-on was indicated
    bool _fatal = false;
    bool _log = false;
    bool _logHandedOver = false;
};

} // namespace VirtualModule
