// SPDX-License-Identifier: MIT
#include "tools/vesk/jobs/ProcessImage.h"

#include "tools/vesk/text/Elements.h"

#include <functional>

namespace VeskTool {

using System::Array;
using System::IArray;

/// Calls `map` for each run of consecutive places, with the first place, the index of its byte and the
/// length.
static void ForEachRun(IArray<unsigned short>& places,
                       const std::function<void(unsigned short place, int index, int count)>& map) {
    int start = 0;
    for (int i = 1; i <= places.Count(); ++i) {
        if (i < places.Count() && places.Get(i) == places.Get(i - 1) + 1)
            continue;
        map(places.Get(start), start, i - start);
        start = i;
    }
}

/// A byte that differs from slave to slave, from place to place and from cycle to cycle.
static unsigned char Pattern(unsigned char address, int index, unsigned int cycle) {
    const unsigned int mixed = (cycle + 1) * 37u + address * 11u + static_cast<unsigned int>(index) * 5u;
    return static_cast<unsigned char>(mixed & 0xFF);
}

ProcessImage::ProcessImage(const Vesk::Modules::DPVM::Config::IBusConfig& config,
                           Vesk::Modules::Slave::ISlaveModule& module) {
    for (const unsigned char address : Elements(*config.SlaveAddresses())) {
        const auto table = config.Slave(address)->AddressTable();
        const Slave slave{address, Array<unsigned char>::Create(table->InputOffsetTable()->Count()),
                          Array<unsigned char>::Create(table->OutputOffsetTable()->Count())};
        ForEachRun(*table->InputOffsetTable(), [&](unsigned short place, int index, int count) {
            module.MapInputData(place, slave.input, index, count);
        });
        ForEachRun(*table->OutputOffsetTable(), [&](unsigned short place, int index, int count) {
            module.MapOutputData(place, slave.output, index, count);
        });
        _inputLength += slave.input->Count();
        _outputLength += slave.output->Count();
        _slaves.push_back(slave);
    }
}

void ProcessImage::Write(unsigned int cycle) {
    for (const Slave& slave : _slaves)
        for (int i = 0; i < slave.input->Count(); ++i)
            slave.input->Set(i, Pattern(slave.address, i, cycle));
}

bool ProcessImage::Holds(unsigned int cycle) const {
    return FirstDifference(cycle).empty();
}

int ProcessImage::Expected(const Slave& slave, int index, unsigned int cycle) {
    return index < slave.input->Count() ? Pattern(slave.address, index, cycle) : 0;
}

std::string ProcessImage::FirstDifference(unsigned int cycle) const {
    for (const Slave& slave : _slaves)
        for (int i = 0; i < slave.output->Count(); ++i)
            if (const int expected = Expected(slave, i, cycle); slave.output->Get(i) != expected)
                return "slave " + std::to_string(slave.address) + ", output byte " + std::to_string(i) +
                       ": " + std::to_string(slave.output->Get(i)) + " instead of " +
                       std::to_string(expected);
    return "";
}

} // namespace VeskTool
