// SPDX-License-Identifier: MIT
#include "tools/vesk/session/ProcessData.h"

#include "tools/vesk/text/ByteText.h"
#include "tools/vesk/text/Elements.h"
#include "tools/vesk/text/Failure.h"
#include "tools/vesk/text/Text.h"

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

void InputData::Set(unsigned int address, std::size_t offset, std::span<const unsigned char> bytes) {
    if (!_config)
        throw Failure(
            "Only a configuration says which bytes of the module a slave has; name it with --config");
    if (const std::string wanted = ChecksumText(_config->Checksum()); _held != wanted)
        throw Failure("The module holds the database " + Printable(_held) + " instead of " + wanted +
                      ", so nobody knows where its slaves have their bytes");
    const std::string slave = "Slave " + std::to_string(address);
    const auto found = _slaves.find(address);
    if (found == _slaves.end())
        throw Failure(slave + " is not in the configuration, so it has no input data");
    const auto length = static_cast<std::size_t>(found->second->Count());
    if (bytes.size() > length || offset > length - bytes.size())
        throw Failure(slave + " has " + std::to_string(length) + " bytes of input data, so " +
                      std::to_string(bytes.size()) + " from byte " + std::to_string(offset) +
                      " on do not fit");
    std::copy(bytes.begin(), bytes.end(), found->second->Data() + offset);
}

} // namespace VeskTool
