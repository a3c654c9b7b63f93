// SPDX-License-Identifier: MIT
#include "virtualmodule/commands/AcyclicCommands.h"

#include <algorithm>

namespace VirtualModule {

namespace {

constexpr std::uint16_t MAX_RECORD_SIZE = 240;
// What a write may carry at all; a record of more than MAX_RECORD_SIZE is refused by the service.
constexpr std::uint16_t MAX_DATA = Vesk::HostInterface::MailboxDpRam::MAX_DATA_SIZE;

/// At most `length` bytes of the record (0 to 255, at most MAX_RECORD_SIZE allowed).
Answer ReadRecord(const Message& request, const Station& station, unsigned slotIndex, unsigned length) {
    if (length > MAX_RECORD_SIZE)
        return ErrorCode::DATA_SIZE;
    const Bytes* record = station.Record(High(slotIndex), Low(slotIndex));
    if (record == nullptr)
        return ErrorCode::ADDRESS;
    const ByteView read = ByteView(*record).first(std::min<std::size_t>(length, record->size()));
    return Answer(request, Bytes(read.begin(), read.end()));
}

Answer WriteRecord(const Message& request, Station& station, unsigned slotIndex, unsigned length) {
    if (length != request.data.size() || length > MAX_RECORD_SIZE)
        return ErrorCode::DATA_SIZE;
    station.WriteRecord(High(slotIndex), Low(slotIndex), request.data);
    return Answer(request);
}

/// Class 1 has the address in front of slot and index.
unsigned Class1Place(const Message& request) {
    return Word(Low(request.extended[0]), High(request.extended[1]));
}

} // namespace

const std::array<Command<AcyclicCommands>, 6> AcyclicCommands::COMMANDS{{
    {0x20, "Class1Read", 0, 0, &AcyclicCommands::Class1Read},
    {0x21, "Class1Write", 0, MAX_DATA, &AcyclicCommands::Class1Write},
    {0x25, "Class2InitiateNormal", 0, 0, &AcyclicCommands::Class2Initiate},
    {0x26, "Class2Abort", 0, 0, &AcyclicCommands::Class2Abort},
    {0x27, "Class2Read", 0, 0, &AcyclicCommands::Class2Read},
    {0x28, "Class2Write", 0, MAX_DATA, &AcyclicCommands::Class2Write},
}};

AcyclicCommands::AcyclicCommands(Bus& bus, Watch& watch) : _bus(bus), _watch(watch) {}

std::optional<Answer> AcyclicCommands::Handle(const Message& request) {
    return Dispatch(*this, COMMANDS, request, _watch);
}

ErrorCode AcyclicCommands::CheckClass1(std::uint8_t address) {
    if (!_bus.Online())
        return ErrorCode::INVALID_OTHER;
    if (!_bus.Configured(address))
        return ErrorCode::ADDRESS;
    const ErrorCode reach = _bus.Reach(address);
    return reach == ErrorCode::NO_ERROR && !_bus.InExchange(address) ? ErrorCode::INVALID_OTHER : reach;
}

Answer AcyclicCommands::Class1Read(const Message& request) {
    const std::uint8_t address = High(request.extended[0]);
    const ErrorCode error = CheckClass1(address);
    if (error != ErrorCode::NO_ERROR)
        return error;
    Answer answer =
        ReadRecord(request, *_bus.Devices().Find(address), Class1Place(request), Low(request.extended[1]));
    if (answer.error == ErrorCode::NO_ERROR)
        answer.extended[1] = Word(High(request.extended[1]), static_cast<unsigned>(answer.data.size()));
    return answer;
}

Answer AcyclicCommands::Class1Write(const Message& request) {
    const std::uint8_t address = High(request.extended[0]);
    const ErrorCode error = CheckClass1(address);
    return error == ErrorCode::NO_ERROR ? WriteRecord(request, *_bus.Devices().Find(address),
                                                      Class1Place(request), Low(request.extended[1]))
                                        : Answer(error);
}

Answer AcyclicCommands::Class2Initiate(const Message& request) {
    const std::uint8_t address = High(request.extended[1]);
    const ErrorCode reach = _bus.Online() ? _bus.Reach(address) : ErrorCode::INVALID_OTHER;
    if (reach != ErrorCode::NO_ERROR)
        return reach;
    return _bus.Connect(request.extended[0], address) ? Answer(request) : Answer(ErrorCode::INVALID_OTHER);
}

Answer AcyclicCommands::Class2Abort(const Message& request) {
    return _bus.Disconnect(request.extended[0]) ? Answer(request) : Answer(ErrorCode::ADDRESS);
}

Answer AcyclicCommands::Class2Read(const Message& request) {
    const Station* station = _bus.Connected(request.extended[0]);
    if (station == nullptr)
        return ErrorCode::ADDRESS;
    Answer answer = ReadRecord(request, *station, request.extended[1], High(request.extended[2]));
    if (answer.error == ErrorCode::NO_ERROR)
        answer.extended[2] = Word(static_cast<unsigned>(answer.data.size()), 0);
    return answer;
}

Answer AcyclicCommands::Class2Write(const Message& request) {
    Station* station = _bus.Connected(request.extended[0]);
    return station != nullptr ? WriteRecord(request, *station, request.extended[1], High(request.extended[2]))
                              : Answer(ErrorCode::ADDRESS);
}

} // namespace VirtualModule
