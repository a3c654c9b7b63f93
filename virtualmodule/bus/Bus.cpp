// SPDX-License-Identifier: MIT
#include "virtualmodule/bus/Bus.h"

#include <algorithm>

namespace VirtualModule {

namespace {

void Mark(StationList& list, std::uint8_t address) {
    list[address / 8u] = static_cast<std::uint8_t>(list[address / 8u] | 1u << address % 8u);
}

bool Exchanges(OperationMode mode) {
    return mode == OperationMode::CLEAR || mode == OperationMode::OPERATE;
}

} // namespace

Bus::Bus(Stations& stations, OperationMode startMode) : _stations(stations), _mode(startMode) {}

void Bus::Start(const Database& database) {
    _stations.Populate(database);
    _masterAddress = VirtualModule::MasterAddress(database.master);
    for (const auto& [address, record] : database.slaves)
        _slaves.insert({address, Slave{SlaveRecord::Decode(record).value()}});
    _running = true;
}

void Bus::SetStarted(std::uint8_t address, bool started) {
    const auto found = _slaves.find(address);
    if (found != _slaves.end())
        found->second.started = started;
}

void Bus::Exchange(ByteView input, std::span<std::uint8_t> output) {
    DropLostConnections();
    if (!Exchanges(_mode))
        return;
    for (const auto& [address, slave] : _slaves)
        Exchange(address, slave, input, output);
}

void Bus::Exchange(std::uint8_t address, const Slave& slave, ByteView input, std::span<std::uint8_t> output) {
    Station* const station = InExchange(address) ? _stations.Find(address) : nullptr;
    if (station != nullptr) {
        bool changed = false;
        for (std::size_t i = 0; i < slave.record.inputPlaces.size(); ++i) {
            const bool operate = _mode == OperationMode::OPERATE;
            const std::uint8_t byte = operate ? input[slave.record.inputPlaces[i]] : std::uint8_t{0};
            changed |= std::exchange(station->Input()[i], byte) != byte;
        }
        station->Echo();
        if (changed)
            _stations.InputChanged(address, station->Input());
    }
    for (std::size_t i = 0; i < slave.record.outputPlaces.size(); ++i)
        output[slave.record.outputPlaces[i]] = station != nullptr ? station->Output()[i] : std::uint8_t{0};
}

BusStatus Bus::Status() const {
    BusStatus status;
    status.online = _mode != OperationMode::OFFLINE;
    status.mode = status.online ? _mode : OperationMode::STOP;
    for (const auto& [address, slave] : _slaves) {
        Mark(status.configured, address);
        if (InExchange(address)) {
            Mark(status.dataTransfer, address);
            Mark(status.connections, address);
        }
        if (HasDiagnosis(address))
            Mark(status.diagnostic, address);
    }
    for (const auto& [reference, address] : _connections)
        Mark(status.connections, address);
    return status;
}

ErrorCode Bus::Reach(std::uint8_t address) const {
    if (address > HIGHEST_ADDRESS)
        return ErrorCode::ADDRESS;
    if (_stations.Find(address) != nullptr)
        return ErrorCode::NO_ERROR;
    return Configured(address) ? ErrorCode::RESPONSE : ErrorCode::ADDRESS;
}

const Bus::Slave* Bus::ShouldExchange(std::uint8_t address) const {
    const auto slave = _slaves.find(address);
    return slave != _slaves.end() && slave->second.started && Exchanges(_mode) ? &slave->second : nullptr;
}

bool Bus::InExchange(std::uint8_t address) const {
    const Slave* slave = ShouldExchange(address);
    const Station* station = _stations.Find(address);
    return slave != nullptr && station != nullptr && station->Fits(slave->record);
}

bool Bus::HasDiagnosis(std::uint8_t address) const {
    return InExchange(address) ? !_stations.Find(address)->Diagnosis().empty()
                               : ShouldExchange(address) != nullptr;
}

Bus::Refusal Bus::RefusalOf(std::uint8_t address) const {
    const Slave* slave = ShouldExchange(address);
    const Station* station = _stations.Find(address);
    if (slave == nullptr || station == nullptr || station->Fits(slave->record))
        return Refusal::NONE;
    return station->IdentNumber() != slave->record.identNumber ? Refusal::PARAMETERS : Refusal::CONFIGURATION;
}

bool Bus::Connect(std::uint16_t reference, std::uint8_t address) {
    return _connections.insert({reference, address}).second;
}

Station* Bus::Connected(std::uint16_t reference) const {
    const auto found = _connections.find(reference);
    return found == _connections.end() ? nullptr : _stations.Find(found->second);
}

void Bus::DropLostConnections() {
    std::erase_if(_connections, [this](const auto& connection) {
        return _mode == OperationMode::OFFLINE || _stations.Find(connection.second) == nullptr;
    });
}

} // namespace VirtualModule
