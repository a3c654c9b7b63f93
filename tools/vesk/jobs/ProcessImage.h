// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/modules/ISlaveModule.h"
#include "vesk/modules/dpvm/config/IBusConfig.h"

#include <memory>
#include <string>
#include <vector>

namespace VeskTool {

/// The process data of every slave of a configuration, mapped onto a module, with a pattern that changes from
/// cycle to cycle and is checked when it comes back. It expects what the slaves of the virtual module do:
/// they send their input bytes back as output bytes, as far as both reach, and 0 beyond.
class ProcessImage {
public:
    /// Maps each slave's bytes at the places that its address table gives them.
    ProcessImage(const Vesk::Modules::DPVM::Config::IBusConfig& config,
                 Vesk::Modules::Slave::ISlaveModule& module);

    /// Bytes mapped in each direction.
    int InputLength() const { return _inputLength; }

    int OutputLength() const { return _outputLength; }

    /// Puts the pattern of cycle `cycle` into the input data.
    void Write(unsigned int cycle);

    /// Whether the output data are those of cycle `cycle`, each byte of them.
    bool Holds(unsigned int cycle) const;

    /// The first byte that is not that of cycle `cycle`, for people; empty when every byte is.
    std::string FirstDifference(unsigned int cycle) const;

private:
    struct Slave {
        unsigned char address;
        std::shared_ptr<System::IArray<unsigned char>> input;
        std::shared_ptr<System::IArray<unsigned char>> output;
    };

    static int Expected(const Slave& slave, int index, unsigned int cycle);

    std::vector<Slave> _slaves;
    int _inputLength = 0;
    int _outputLength = 0;
};

} // namespace VeskTool
