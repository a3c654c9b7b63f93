// SPDX-License-Identifier: MIT
#include "virtualmodule/commands/BusCommands.h"

namespace VirtualModule {

namespace {

constexpr std::uint16_t STATIONS = 126; // addresses 0 to 125, one byte each in StartSlave and StopSlave
constexpr std::uint16_t MAX_USER_DATA = 240;
constexpr unsigned REQUEST_TYPES = 2;

// One status byte of the live list.
constexpr std::uint8_t PASSIVE_STATION = 0x00;
constexpr std::uint8_t ACTIVE_STATION_IN_RING = 0x03;
constexpr std::uint8_t NO_STATION = 0x04;

// The six standard bytes of a slave's diagnosis: three of status, the master's address, the ident number.
constexpr std::uint8_t STATION_NON_EXISTENT = 0x01; // status 1
constexpr std::uint8_t STATION_NOT_READY = 0x02;    // status 1
constexpr std::uint8_t CONFIGURATION_FAULT = 0x04;  // status 1
constexpr std::uint8_t EXTENDED_DIAGNOSIS = 0x08;   // status 1: bytes of the slave's own follow
constexpr std::uint8_t PARAMETER_FAULT = 0x40;      // status 1
constexpr std::uint8_t PARAMETERS_REQUIRED = 0x01;  // status 2
constexpr std::uint8_t ALWAYS_SET = 0x04;           // status 2
constexpr std::uint8_t NO_MASTER = 0xFF;

/// A slave that refuses what the master tells it is not ready, and goes back to waiting for parameters.
Bytes Diagnosis(const Bus& bus, std::uint8_t address, const Station* station) {
    if (station == nullptr)
        return {STATION_NON_EXISTENT, 0, 0, NO_MASTER, 0, 0};
    const bool inExchange = bus.InExchange(address);
    const Bus::Refusal refusal = bus.RefusalOf(address);
    const unsigned status1 = (inExchange ? 0u : STATION_NOT_READY) |
                             (refusal == Bus::Refusal::PARAMETERS ? PARAMETER_FAULT : 0u) |
                             (refusal == Bus::Refusal::CONFIGURATION ? CONFIGURATION_FAULT : 0u) |
                             (station->Diagnosis().empty() ? 0u : EXTENDED_DIAGNOSIS);
    Bytes bytes{Low(status1),
                Low(ALWAYS_SET | (inExchange ? 0u : PARAMETERS_REQUIRED)),
                0,
                inExchange ? bus.MasterAddress() : NO_MASTER,
                High(station->IdentNumber()),
                Low(station->IdentNumber())};
    Append(bytes, station->Diagnosis());
    return bytes;
}

} // namespace

const std::array<Command<BusCommands>, 9> BusCommands::COMMANDS{{
    {0x02, "SetOperationMode", 0, 0, &BusCommands::SetOperationMode},
    {0x04, "GetSlaveDiag", 0, 0, &BusCommands::GetSlaveDiag},
    {0x05, "GetSlaveConfig", 0, 0, &BusCommands::GetSlaveConfig},
    {0x06, "SetSlaveAddress", 0, MAX_USER_DATA, &BusCommands::SetSlaveAddress},
    {0x09, "ReadSlaveInput", 0, 0, &BusCommands::ReadSlaveInput},
    {0x0A, "ReadSlaveOutput", 0, 0, &BusCommands::ReadSlaveOutput},
    {0x0B, "StartSlave", STATIONS, STATIONS, &BusCommands::StartSlave},
    {0x0C, "StopSlave", STATIONS, STATIONS, &BusCommands::StopSlave},
    {0x18, "GetLiveList", 0, 0, &BusCommands::GetLiveList},
}};

BusCommands::BusCommands(Bus& bus, Watch& watch) : _bus(bus), _watch(watch) {}

std::optional<Answer> BusCommands::Handle(const Message& request) {
    return Dispatch(*this, COMMANDS, request, _watch);
}

ErrorCode BusCommands::Reach(std::uint8_t address) {
    return _bus.Online() ? _bus.Reach(address) : ErrorCode::INVALID_OTHER;
}

Answer BusCommands::SetOperationMode(const Message& request) {
    const auto mode = static_cast<OperationMode>(High(request.extended[0]));
    switch (mode) {
    case OperationMode::OFFLINE:
    case OperationMode::STOP:
    case OperationMode::CLEAR:
    case OperationMode::OPERATE:
        _bus.SetMode(mode);
        return Answer(request);
    }
    return ErrorCode::INVALID_OTHER;
}

Answer BusCommands::GetSlaveDiag(const Message& request) {
    const std::uint8_t address = High(request.extended[0]);
    const ErrorCode reach = Reach(address);
    // A configured slave that is not there has a diagnosis too: the master's own.
    if (reach != ErrorCode::NO_ERROR && reach != ErrorCode::RESPONSE)
        return reach;
    if (Low(request.extended[0]) >= REQUEST_TYPES)
        return ErrorCode::INVALID_OTHER;
    return Answer(request, Diagnosis(_bus, address, _bus.Devices().Find(address)));
}

Answer BusCommands::GetSlaveConfig(const Message& request) {
    const std::uint8_t address = High(request.extended[0]);
    const ErrorCode reach = Reach(address);
    return reach == ErrorCode::NO_ERROR ? Answer(request, _bus.Devices().Find(address)->Identifiers())
                                        : Answer(reach);
}

/// A device takes a new address only outside the data exchange, only if it is the device that is meant, and
/// not after it was told to keep its address.
Answer BusCommands::SetSlaveAddress(const Message& request) {
    const std::uint8_t from = High(request.extended[0]);
    const std::uint8_t to = Low(request.extended[0]);
    const ErrorCode reach = Reach(from);
    if (reach != ErrorCode::NO_ERROR)
        return reach;
    if (to > Database::HIGHEST_SLAVE || to == _bus.MasterAddress() ||
        (to != from && !_bus.Devices().Free(to)))
        return ErrorCode::ADDRESS;
    Station* station = _bus.Devices().Find(from);
    if (_bus.InExchange(from) || station->AddressLocked() || station->IdentNumber() != request.extended[1])
        return ErrorCode::INVALID_OTHER;
    if (High(request.extended[2]) != 0)
        station->LockAddress();
    if (to != from)
        _bus.Devices().Move(from, to);
    return Answer(request);
}

Answer BusCommands::ReadSlaveInput(const Message& request) {
    const std::uint8_t address = High(request.extended[0]);
    const ErrorCode reach = Reach(address);
    return reach == ErrorCode::NO_ERROR ? Answer(request, _bus.Devices().Find(address)->Input())
                                        : Answer(reach);
}

Answer BusCommands::ReadSlaveOutput(const Message& request) {
    const std::uint8_t address = High(request.extended[0]);
    const ErrorCode reach = Reach(address);
    return reach == ErrorCode::NO_ERROR ? Answer(request, _bus.Devices().Find(address)->Output())
                                        : Answer(reach);
}

Answer BusCommands::StartSlave(const Message& request) {
    return SetStarted(request, true);
}

Answer BusCommands::StopSlave(const Message& request) {
    return SetStarted(request, false);
}

Answer BusCommands::SetStarted(const Message& request, bool started) {
    if (!_bus.Online())
        return ErrorCode::INVALID_OTHER;
    for (std::uint8_t address = 0; address < STATIONS; ++address)
        if (request.data[address] != 0)
            _bus.SetStarted(address, started);
    return Answer(request);
}

Answer BusCommands::GetLiveList(const Message& request) {
    if (!_bus.Online())
        return ErrorCode::INVALID_OTHER;
    Bytes list;
    for (std::uint8_t address = 0; address <= Bus::HIGHEST_ADDRESS; ++address) {
        const bool slave = _bus.Devices().Find(address) != nullptr;
        const bool master = address == _bus.MasterAddress();
        list.push_back(master ? ACTIVE_STATION_IN_RING : slave ? PASSIVE_STATION : NO_STATION);
    }
    return Answer(request, std::move(list));
}

} // namespace VirtualModule
