// SPDX-License-Identifier: MIT
#pragma once

#include "virtualmodule/commands/Answer.h"
#include "virtualmodule/faults/FaultInjector.h"
#include "virtualmodule/wires/DpRam.h"

namespace VirtualModule {

/// The module's end of the mailbox: takes one request at a time, has it carried out and puts the answer into
/// mailbox-out once the host has taken the one before. The owner carries the notifications through its
/// indication registers.
class Mailbox {
public:
    using Handler = std::function<Answer(const Message&)>;

    /// What a step did, for the owner's indication register.
    struct Turn {
        bool taken = false;   // the request was taken out of mailbox-in
        bool updated = false; // mailbox-out holds a new answer
    };

    /// Mailbox-in at `offset`, mailbox-out behind it; `handler` carries out the requests.
    Mailbox(DpRam& dpRam, Watch& watch, FaultInjector& faults, std::size_t offset, Handler handler);

    /// Mailbox-in becomes the host's, at the module's first interrupt.
    void Open();
    /// The host says that mailbox-in holds a request.
    void Notified();
    /// The host says that it took the answer out of mailbox-out.
    void Acknowledged();
    /// Does what is due at `now`.
    Turn Step(std::int64_t now);

private:
    bool Take(std::int64_t now);
    bool CutPower(bool carriedOut);
    Answer Process(const Message& request);
    void PutAnswer(std::int64_t now);
    void Put(ByteView area);
    Turn FaultyTurn(std::int64_t now);
    Bytes Falsify(Message message);

    DpRam& _dpRam;
    Watch& _watch;
    FaultInjector& _faults;
    std::size_t _inOffset;
    std::size_t _outOffset;
    Handler _handler;
    bool _inFull = false;
    bool _outFull = false;
    std::optional<Answer> _answer; // the request was taken, its answer is still to come
    Message _request;              // the request that _answer belongs to
    std::int64_t _due = 0;         // when _answer may go out
    // For faults.
    std::optional<std::int64_t> _acknowledgeAt; // a turn of its own for an acknowledgement
    std::int64_t _lastAnswer = 0;
    Bytes _again; // an answer to be put once more
};

} // namespace VirtualModule
