// SPDX-License-Identifier: MIT
#include "virtualmodule/bus/Station.h"

#include <algorithm>
#include <stdexcept>

namespace VirtualModule {

Station::Station(const SlaveRecord& record)
    : _cameFor(record),
      _identNumber(record.identNumber),
      _identifiers(record.identifiers),
      _input(record.inputLength),
      _output(record.outputLength) {
    for (std::uint8_t index = 0; index < IDENTIFICATION_RECORDS; ++index) {
        const std::string text =
            "Virtual slave, ident " + Hex(_identNumber) + ", record " + std::to_string(index);
        WriteRecord(0, index, Bytes(text.begin(), text.end()));
    }
}

void Station::SetIdentifiers(Bytes identifiers) {
    if (identifiers.empty() || identifiers.size() > MAX_IDENTIFIERS)
        throw std::invalid_argument("a configuration has 1 to " + std::to_string(MAX_IDENTIFIERS) +
                                    " identifier bytes, not " + std::to_string(identifiers.size()));
    _identifiers = std::move(identifiers);
}

void Station::SetDiagnosis(Bytes diagnosis) {
    if (diagnosis.size() > MAX_DIAGNOSIS)
        throw std::invalid_argument("a diagnosis has at most " + std::to_string(MAX_DIAGNOSIS) +
                                    " bytes behind the standard ones, not " +
                                    std::to_string(diagnosis.size()));
    _diagnosis = std::move(diagnosis);
}

void Station::SetOutput(Bytes output) {
    if (!output.empty() && output.size() != _output.size())
        throw std::invalid_argument("it sends " + std::to_string(_output.size()) + " bytes, not " +
                                    std::to_string(output.size()));
    _echoes = output.empty();
    if (!_echoes)
        _output = std::move(output);
}

void Station::Echo() {
    if (!_echoes)
        return;
    std::copy_n(_input.begin(), std::min(_input.size(), _output.size()), _output.begin());
}

const Bytes* Station::Record(std::uint8_t slot, std::uint8_t index) const {
    const auto found = _records.find({slot, index});
    return found == _records.end() ? nullptr : &found->second;
}

void Station::WriteRecord(std::uint8_t slot, std::uint8_t index, Bytes data) {
    _records[{slot, index}] = std::move(data);
}

bool Station::CameFor(const SlaveRecord& record) const {
    return _cameFor.identNumber == record.identNumber && _cameFor.identifiers == record.identifiers &&
           _input.size() == record.inputLength && _output.size() == record.outputLength;
}

bool Station::Fits(const SlaveRecord& record) const {
    return _identNumber == record.identNumber && _identifiers == record.identifiers &&
           _input.size() == record.inputLength && _output.size() == record.outputLength;
}

void Stations::Populate(const Database& database) {
    std::erase_if(_stations, [&](const auto& station) { return !database.slaves.contains(station.first); });
    for (const auto& [address, bytes] : database.slaves) {
        const SlaveRecord record = SlaveRecord::Decode(bytes).value();
        const auto there = _stations.find(address);
        if (there == _stations.end() || !there->second.CameFor(record))
            _stations.insert_or_assign(address, Station(record));
    }
}

Station* Stations::Find(std::uint8_t address) {
    const auto found = _stations.find(address);
    return found == _stations.end() || _absent.contains(address) ? nullptr : &found->second;
}

void Stations::SetPresent(std::uint8_t address, bool present) {
    if (present)
        _absent.erase(address);
    else
        _absent.insert(address);
}

bool Stations::Free(std::uint8_t address) const {
    return !_stations.contains(address) && !_absent.contains(address);
}

void Stations::Move(std::uint8_t from, std::uint8_t to) {
    auto node = _stations.extract(from);
    node.key() = to;
    _stations.insert(std::move(node));
}

} // namespace VirtualModule
