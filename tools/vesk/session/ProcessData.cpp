// SPDX-License-Identifier: MIT
#include "tools/vesk/session/ProcessData.h"

#include "tools/vesk/text/ByteText.h"
#include "tools/vesk/text/Elements.h"
#include "tools/vesk/text/Failure.h"
#include "tools/vesk/text/Text.h"

#include <algorithm>
#include <functional>

namespace VeskTool {

using System::IArray;
using Bytes = std::shared_ptr<IArray<unsigned char>>;
using Vesk::Modules::DPVM::Config::ISlaveRecord;
using Vesk::Modules::Slave::ISlaveModule;

/// New bytes for the places. Calls `map` for each run of consecutive ones, with the first place, the index of
/// its byte and the length.
static Bytes
MapRuns(IArray<unsigned short>& places,
        const std::function<void(unsigned short place, const Bytes& bytes, int index, int count)>& map) {
    const Bytes bytes = System::Array<unsigned char>::Create(places.Count());
    int start = 0;
    for (int i = 1; i <= places.Count(); ++i) {
        if (i < places.Count() && places.Get(i) == places.Get(i - 1) + 1)
            continue;
        map(places.Get(start), bytes, start, i - start);
        start = i;
    }
    return bytes;
}

Bytes MapInput(const ISlaveRecord& slave, ISlaveModule& module) {
    return MapRuns(*slave.AddressTable()->InputOffsetTable(),
                   [&](unsigned short place, const Bytes& bytes, int index, int count) {
                       module.MapInputData(place, bytes, index, count);
                   });
}

Bytes MapOutput(const ISlaveRecord& slave, ISlaveModule& module) {
    return MapRuns(*slave.AddressTable()->OutputOffsetTable(),
                   [&](unsigned short place, const Bytes& bytes, int index, int count) {
                       module.MapOutputData(place, bytes, index, count);
                   });
}

void InputData::Map(ISlaveModule& module, const std::string& description) {
    _slaves.clear();
    _held = description;
    if (_config && _held == ChecksumText(_config->Checksum()))
        for (const unsigned char address : Elements(*_config->SlaveAddresses()))
            _slaves[address] = MapInput(*_config->Slave(address), module);
}

void InputData::Set(unsigned int address, std::size_t offset, std::span<const unsigned char> bytes,
                    std::span<const unsigned char> mask) {
    Places(address, offset, bytes.size());
    unsigned char* const to = _slaves.at(address)->Data() + offset;
    for (std::size_t i = 0; i < bytes.size(); ++i)
        to[i] = static_cast<unsigned char>((to[i] & ~mask[i]) | (bytes[i] & mask[i]));
}

std::vector<unsigned short> InputData::Places(unsigned int address, std::size_t offset,
                                              std::size_t count) const {
    if (!_config)
        throw Failure(
            "Only a configuration says which bytes of the module a slave has; name it with --config");
    if (const std::string wanted = ChecksumText(_config->Checksum()); _held != wanted)
        throw Failure("The module holds the database " + Printable(_held) + " instead of " + wanted +
                      ", so nobody knows where its slaves have their bytes");
    const std::string slave = "Slave " + std::to_string(address);
    const auto addresses = Elements(*_config->SlaveAddresses());
    if (std::find(addresses.begin(), addresses.end(), address) == addresses.end())
        throw Failure(slave + " is not in the configuration, so it has no input data");
    const auto places =
        Elements(*_config->Slave(static_cast<unsigned char>(address))->AddressTable()->InputOffsetTable());
    if (count > places.size() || offset > places.size() - count)
        throw Failure(slave + " has " + std::to_string(places.size()) + " bytes of input data, so " +
                      std::to_string(count) + " from byte " + std::to_string(offset) + " on do not fit");
    const auto first = places.begin() + static_cast<std::ptrdiff_t>(offset);
    return {first, first + static_cast<std::ptrdiff_t>(count)};
}

} // namespace VeskTool
