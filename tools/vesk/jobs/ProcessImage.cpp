// SPDX-License-Identifier: MIT
#include "tools/vesk/jobs/ProcessImage.h"

#include "tools/vesk/session/ProcessData.h"
#include "tools/vesk/text/Elements.h"

namespace VeskTool {

/// A byte that differs from slave to slave, from place to place and from cycle to cycle.
static unsigned char Pattern(unsigned char address, int index, unsigned int cycle) {
    const unsigned int mixed = (cycle + 1) * 37u + address * 11u + static_cast<unsigned int>(index) * 5u;
    return static_cast<unsigned char>(mixed & 0xFF);
}

ProcessImage::ProcessImage(const Vesk::Modules::DPVM::Config::IBusConfig& config,
                           Vesk::Modules::Slave::ISlaveModule& module) {
    for (const unsigned char address : Elements(*config.SlaveAddresses())) {
        const auto record = config.Slave(address);
        const Slave slave{address, MapInput(*record, module), MapOutput(*record, module)};
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
