// SPDX-License-Identifier: MIT
#pragma once

#include "virtualmodule/commands/Mailbox.h"
#include "virtualmodule/faults/FaultInjector.h"

namespace VirtualModule {

/// A mailbox whose acknowledgements and answers go wrong, whose commands are refused or lie, or at which the
/// power fails.
class FaultyMailbox : public Mailbox {
public:
    FaultyMailbox(Board& board, std::size_t offset, Handler handler, FaultInjector& faults);

    Turn Step(std::int64_t now) override;

private:
    std::optional<Answer> CarryOut(const Message& request) override;
    Bytes Encode(const Message& answer) override;

    Turn TakeTurnOfItsOwn(std::int64_t now);
    Answer AnswerTo(const Message& request);
    Message FalsifyRequest(Message request);
    void FalsifyDatabaseInfo(Answer& answer);
    bool CutPower(bool carriedOut);

    FaultInjector& _faults;
    bool _bootloader;
    std::optional<std::int64_t> _acknowledgeAt; // a turn of its own for an acknowledgement
    std::int64_t _lastAnswer = 0;               // when it was put
    Bytes _answer;                              // the last one, as it was put
    Bytes _again;                               // an answer to be put once more
};

} // namespace VirtualModule
