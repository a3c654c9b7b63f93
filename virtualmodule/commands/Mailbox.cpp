// SPDX-License-Identifier: MIT
#include "virtualmodule/commands/Mailbox.h"

#include "vesk/hostinterface/BootloaderDpRam.h"

namespace BootloaderMap = Vesk::HostInterface::BootloaderDpRam;
namespace MailboxMap = Vesk::HostInterface::MailboxDpRam;

namespace VirtualModule {

namespace {

constexpr std::int64_t MILLISECOND = 1'000'000;
// After so long without a request the host waits for no answer.
constexpr std::int64_t QUIET = 5 * MILLISECOND;

} // namespace

Mailbox::Mailbox(DpRam& dpRam, Watch& watch, FaultInjector& faults, std::size_t offset, Handler handler)
    : _dpRam(dpRam),
      _watch(watch),
      _faults(faults),
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
    Turn turn = FaultyTurn(now);
    if (turn.taken || turn.updated)
        return turn;
    if (_inFull && !_answer && !_outFull)
        turn.taken = Take(now);
    if (_answer && now >= _due) {
        PutAnswer(now);
        turn.updated = true;
    }
    return turn;
}

/// True if the request is acknowledged at once.
bool Mailbox::Take(std::int64_t now) {
    _request = Message::Decode(_dpRam.Read(_inOffset, MailboxMap::AREA_SIZE));
    _watch.Log([this] {
        return "request " + std::to_string(_request.id) + ": type " + std::to_string(_request.type) +
               ", command " + Hex(_request.command) + ", " + std::to_string(_request.dataSize) + " bytes";
    });
    _inFull = false;
    _faults.CountRequest(_request, _inOffset == BootloaderMap::MAILBOX_IN);
    if (CutPower(false))
        return false;
    if (!_request.data.empty() && _faults.Strikes(FaultId::FIRMWARE_CRC))
        _request.data.back() ^= 1;
    _answer = Process(_request);
    if (CutPower(true) || _faults.Strikes({FaultId::MAILBOX_NO_ANSWER, FaultId::FIRMWARE_SILENT}))
        _answer.reset();
    else
        _due = now + _answer->delay + _faults.Value(FaultId::ANSWER_LATE, 0) * MILLISECOND;
    _dpRam.GiveToHost(_inOffset, MailboxMap::AREA_SIZE);
    if (_faults.Strikes(FaultId::MAILBOX_DOUBLE_ACK))
        _acknowledgeAt = now + MILLISECOND;
    return !_faults.Failing() && !_faults.Strikes({FaultId::MAILBOX_NO_ACK, FaultId::ANSWER_BEFORE_ACK});
}

/// True if the module loses its power here: before or after the request is carried out.
bool Mailbox::CutPower(bool carriedOut) {
    const Fault* cut = _faults.Strikes({FaultId::DATABASE_POWER_CUT, FaultId::FIRMWARE_POWER_CUT});
    const bool here = cut != nullptr && (cut->value != 0) == carriedOut;
    if (here)
        _faults.Fail(FaultInjector::Outage::DEAD);
    return here;
}

Answer Mailbox::Process(const Message& request) {
    if (request.dataSize != request.data.size()) {
        _watch.Report(Violation::MALFORMED_REQUEST, "data size " + std::to_string(request.dataSize));
        return ErrorCode::DATA_SIZE;
    }
    if (!request.isRequest || request.error != 0) {
        _watch.Report(Violation::MALFORMED_REQUEST, "marked as an answer or with an error");
        return ErrorCode::INVALID_OTHER;
    }
    const Fault* error =
        _faults.Strikes({FaultId::ANSWER_ERROR, FaultId::DATABASE_ERROR, FaultId::FIRMWARE_ERROR});
    return error != nullptr ? Answer(static_cast<ErrorCode>(error->value)) : _handler(request);
}

void Mailbox::PutAnswer(std::int64_t now) {
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
    const Bytes area = Falsify(message);
    Put(area);
    _lastAnswer = now;
    if (_faults.Strikes(FaultId::ANSWER_BEFORE_ACK))
        _acknowledgeAt = now + MILLISECOND;
    if (_faults.Strikes(FaultId::ANSWER_TWICE))
        _again = area;
}

void Mailbox::Put(ByteView area) {
    _dpRam.Write(_outOffset, area);
    _outFull = true;
}

/// What only a fault lets the module do.
Mailbox::Turn Mailbox::FaultyTurn(std::int64_t now) {
    Turn turn;
    if (_acknowledgeAt && now >= *_acknowledgeAt) {
        _acknowledgeAt.reset();
        turn.taken = true;
    } else if (!_again.empty() && !_outFull) {
        Put(std::exchange(_again, {}));
        turn.updated = true;
    } else if (!_inFull && !_answer && !_outFull && now >= _lastAnswer + QUIET &&
               _faults.Strikes(FaultId::ANSWER_UNASKED)) {
        Message unasked;
        unasked.type = static_cast<std::uint8_t>(MessageType::APPLICATION);
        Put(unasked.Encode());
        turn.updated = true;
    }
    return turn;
}

/// The answer as it goes out.
Bytes Mailbox::Falsify(Message message) {
    if (_faults.Strikes(FaultId::ANSWER_WRONG_ID))
        ++message.id;
    if (_faults.Strikes(FaultId::ANSWER_WRONG_TYPE))
        message.type = static_cast<std::uint8_t>(MessageType::MEMORY);
    if (_faults.Strikes(FaultId::ANSWER_WRONG_COMMAND))
        ++message.command;
    message.type = Low(_faults.Value(FaultId::ANSWER_UNDEFINED_TYPE, message.type));
    message.dataSize = Word(0, _faults.Value(FaultId::ANSWER_DATA_SIZE, message.dataSize));
    Bytes area = message.Encode();
    if (const Fault* fault = _faults.Strikes(FaultId::HEADER_BIT))
        area[fault->value / 8] ^= static_cast<std::uint8_t>(1u << fault->value % 8);
    return area;
}

} // namespace VirtualModule
