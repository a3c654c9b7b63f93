// SPDX-License-Identifier: MIT
#include "virtualmodule/faults/FaultyMailbox.h"

#include "vesk/hostinterface/BootloaderDpRam.h"
#include "virtualmodule/commands/DatabaseCommands.h"

#include <algorithm>

namespace VirtualModule {

namespace {

constexpr std::int64_t MILLISECOND = 1'000'000;
// After so long without a request the host waits for no answer.
constexpr std::int64_t QUIET = 5 * MILLISECOND;

bool Is(const Message& request, std::uint16_t command) {
    return request.type == static_cast<std::uint8_t>(MessageType::FIELDBUS) && request.command == command;
}

/// Another description that still is a hexadecimal number.
void ChangeFirstDigit(Bytes& description) {
    if (!description.empty())
        description[0] = description[0] == '0' ? '1' : '0';
}

} // namespace

FaultyMailbox::FaultyMailbox(Board& board, std::size_t offset, Handler handler, FaultInjector& faults)
    : Mailbox(board, offset, std::move(handler)),
      _faults(faults),
      _bootloader(offset == Vesk::HostInterface::BootloaderDpRam::MAILBOX_IN) {}

Mailbox::Turn FaultyMailbox::Step(std::int64_t now) {
    Turn turn = TakeTurnOfItsOwn(now);
    if (turn.taken || turn.updated)
        return turn;
    turn = Mailbox::Step(now);
    if (turn.taken) {
        if (_faults.Strike(FaultId::MAILBOX_DOUBLE_ACK))
            _acknowledgeAt = now + MILLISECOND;
        turn.taken = !_faults.Strike({FaultId::MAILBOX_NO_ACK, FaultId::ANSWER_BEFORE_ACK});
    }
    if (turn.updated) {
        _lastAnswer = now;
        if (_faults.Strike(FaultId::ANSWER_BEFORE_ACK))
            _acknowledgeAt = now + MILLISECOND;
        if (_faults.Strike(FaultId::ANSWER_TWICE))
            _again = _answer;
    }
    return turn;
}

/// What only a fault lets the module do.
Mailbox::Turn FaultyMailbox::TakeTurnOfItsOwn(std::int64_t now) {
    Turn turn;
    if (_acknowledgeAt && now >= *_acknowledgeAt) {
        _acknowledgeAt.reset();
        turn.taken = true;
    } else if (!_again.empty() && OutIsEmpty()) {
        Put(std::exchange(_again, {}));
        turn.updated = true;
    } else if (IsIdle() && now >= _lastAnswer + QUIET && _faults.Strike(FaultId::ANSWER_UNASKED)) {
        Message unasked;
        unasked.type = static_cast<std::uint8_t>(MessageType::APPLICATION);
        Put(unasked.Encode());
        turn.updated = true;
    }
    return turn;
}

std::optional<Answer> FaultyMailbox::CarryOut(const Message& request) {
    _faults.CountRequest(request, _bootloader);
    if (CutPower(false))
        return std::nullopt;
    Answer answer = AnswerTo(request);
    if (CutPower(true) || _faults.Strike({FaultId::MAILBOX_NO_ANSWER, FaultId::FIRMWARE_SILENT}))
        return std::nullopt;
    answer.delay += _faults.Falsify(FaultId::ANSWER_LATE, 0) * MILLISECOND;
    return answer;
}

Answer FaultyMailbox::AnswerTo(const Message& request) {
    if (const Fault* refused =
            _faults.Strike({FaultId::ANSWER_ERROR, FaultId::DATABASE_ERROR, FaultId::FIRMWARE_ERROR}))
        return static_cast<ErrorCode>(refused->value);
    Answer answer = Mailbox::CarryOut(FalsifyRequest(request)).value();
    if (Is(request, DatabaseCommands::GET_DATABASE_INFO))
        FalsifyDatabaseInfo(answer);
    return answer;
}

/// True if the module loses its power here: before or after the request is carried out.
bool FaultyMailbox::CutPower(bool carriedOut) {
    const Fault* cut = _faults.Strike({FaultId::DATABASE_POWER_CUT, FaultId::FIRMWARE_POWER_CUT});
    const bool here = cut != nullptr && (cut->value != 0) == carriedOut;
    if (here)
        _faults.Fail(FaultInjector::Outage::DEAD);
    return here;
}

Message FaultyMailbox::FalsifyRequest(Message request) {
    if (!request.data.empty() && _faults.Strike(FaultId::FIRMWARE_CRC))
        request.data.back() ^= 1;
    if (Is(request, DatabaseCommands::END_DATABASE_DOWNLOAD) && _faults.Strike(FaultId::DATABASE_READ_BACK))
        ChangeFirstDigit(request.data);
    return request;
}

void FaultyMailbox::FalsifyDatabaseInfo(Answer& answer) {
    _faults.Count(Counts::DATABASE_INFOS);
    if (_faults.Strike(FaultId::DATABASE_NONE))
        answer = DatabaseCommands::NoDatabase();
    if (answer.error != ErrorCode::NO_ERROR)
        return;
    Bytes& text = answer.data;
    text.erase(std::find(text.begin(), text.end(), DatabaseCommands::ERASED), text.end());
    if (_faults.Strike(FaultId::DATABASE_CHECKSUM))
        ChangeFirstDigit(text);
    if (_faults.Strike(FaultId::DATABASE_NOT_HEX))
        std::fill(text.begin(), text.end(), std::uint8_t{'z'});
    text.resize(_faults.Falsify(FaultId::DATABASE_LENGTH, static_cast<unsigned>(text.size())), '0');
    text.resize(std::max(text.size(), DatabaseCommands::DESCRIPTION_SIZE), DatabaseCommands::ERASED);
}

Bytes FaultyMailbox::Encode(const Message& answer) {
    Message message = answer;
    if (_faults.Strike(FaultId::ANSWER_WRONG_ID))
        ++message.id;
    if (_faults.Strike(FaultId::ANSWER_WRONG_TYPE))
        message.type = static_cast<std::uint8_t>(MessageType::MEMORY);
    if (_faults.Strike(FaultId::ANSWER_WRONG_COMMAND))
        ++message.command;
    message.type = Low(_faults.Falsify(FaultId::ANSWER_UNDEFINED_TYPE, message.type));
    message.dataSize = Word(0, _faults.Falsify(FaultId::ANSWER_DATA_SIZE, message.dataSize));
    _answer = message.Encode();
    if (const Fault* fault = _faults.Strike(FaultId::HEADER_BIT))
        _answer[fault->value / 8] ^= static_cast<std::uint8_t>(1u << fault->value % 8);
    return _answer;
}

} // namespace VirtualModule
