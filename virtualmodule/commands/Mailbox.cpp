// SPDX-License-Identifier: MIT
#include "virtualmodule/commands/Mailbox.h"

namespace MailboxMap = Vesk::HostInterface::MailboxDpRam;

namespace VirtualModule {

Mailbox::Mailbox(Board& board, std::size_t offset, Handler handler)
    : _dpRam(board.dpRam),
      _watch(board.watch),
      _inOffset(offset),
      _outOffset(offset + MailboxMap::AREA_SIZE),
      _handler(std::move(handler)) {}

void Mailbox::Open() {
    _dpRam.GiveToHost(_inOffset, MailboxMap::AREA_SIZE);
}

void Mailbox::Notified() {
    if (_inFull) {
        _watch.Report(Violation::NOTIFIED_WHILE_FULL, "the request before it was not acknowledged yet");
        return;
    }
    _inFull = true;
    _dpRam.TakeBack(_inOffset, MailboxMap::AREA_SIZE);
}

void Mailbox::Acknowledged() {
    if (!_outFull)
        _watch.Report(Violation::MAILBOX_OUT_NOT_UPDATED, "no answer was waiting");
    _outFull = false;
}

Mailbox::Turn Mailbox::Step(std::int64_t now) {
    Turn turn;
    if (_inFull && !_answer && !_outFull) {
        Take(now);
        turn.taken = true;
    }
    if (_answer && now >= _due) {
        PutAnswer();
        turn.updated = true;
    }
    return turn;
}

void Mailbox::Take(std::int64_t now) {
    _request = Message::Decode(_dpRam.Read(_inOffset, MailboxMap::AREA_SIZE));
    _watch.Log([this] {
        return "request " + std::to_string(_request.id) + ": type " + std::to_string(_request.type) +
               ", command " + Hex(_request.command) + ", " + std::to_string(_request.dataSize) + " bytes";
    });
    _inFull = false;
    _answer = CarryOut(_request);
    _due = now + (_answer ? _answer->delay : 0);
    _dpRam.GiveToHost(_inOffset, MailboxMap::AREA_SIZE);
}

std::optional<Answer> Mailbox::CarryOut(const Message& request) {
    if (request.dataSize != request.data.size()) {
        _watch.Report(Violation::MALFORMED_REQUEST, "data size " + std::to_string(request.dataSize));
        return ErrorCode::DATA_SIZE;
    }
    if (!request.isRequest || request.error != 0) {
        _watch.Report(Violation::MALFORMED_REQUEST, "marked as an answer or with an error");
        return ErrorCode::INVALID_OTHER;
    }
    return _handler(request);
}

void Mailbox::PutAnswer() {
    if (_answer->finish)
        _answer->finish();
    Message message = _request;
    message.isRequest = false;
    message.error = static_cast<std::uint8_t>(_answer->error);
    message.extended = _answer->extended;
    message.data = std::move(_answer->data);
    message.dataSize = static_cast<std::uint16_t>(message.data.size());
    _answer.reset();
    _watch.Log([&] {
        return "answer " + std::to_string(message.id) + ": error " + Hex(message.error) + ", " +
               std::to_string(message.dataSize) + " bytes";
    });
    Put(Encode(message));
}

Bytes Mailbox::Encode(const Message& answer) {
    return answer.Encode();
}

void Mailbox::Put(ByteView answer) {
    _dpRam.Write(_outOffset, answer);
    _outFull = true;
}

} // namespace VirtualModule
