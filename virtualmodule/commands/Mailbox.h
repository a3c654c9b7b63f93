// SPDX-License-Identifier: MIT
#pragma once

#include "virtualmodule/commands/Answer.h"
#include "virtualmodule/wires/Board.h"

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
    Mailbox(Board& board, std::size_t offset, Handler handler);
    virtual ~Mailbox() = default;
    Mailbox(const Mailbox&) = delete;
    Mailbox& operator=(const Mailbox&) = delete;

    /// Mailbox-in becomes the host's, at the module's first interrupt.
    void Open();
    /// The host says that mailbox-in holds a request.
    void Notified();
    /// The host says that it took the answer out of mailbox-out.
    void Acknowledged();
    /// Does what is due at `now`.
    virtual Turn Step(std::int64_t now);

protected:
    /// The answer to the request, if there is to be one.
    virtual std::optional<Answer> CarryOut(const Message& request);
    /// The answer as it goes into mailbox-out.
    virtual Bytes Encode(const Message& answer);

    /// Puts it into mailbox-out, which is the host's then.
    void Put(ByteView answer);

    /// The host has taken the last answer.
    bool OutIsEmpty() const { return !_outFull; }

    /// No request and no answer is under way.
    bool IsIdle() const { return !_inFull && !_answer && !_outFull; }

private:
    void Take(std::int64_t now);
    void PutAnswer();

    DpRam& _dpRam;
    Watch& _watch;
    std::size_t _inOffset;
    std::size_t _outOffset;
    Handler _handler;
    bool _inFull = false;
    bool _outFull = false;
    std::optional<Answer> _answer; // the request was taken, its answer is still to come
    Message _request;              // the request that _answer belongs to
    std::int64_t _due = 0;         // when _answer may go out
};

} // namespace VirtualModule
