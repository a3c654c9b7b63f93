// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/modules/ISlaveModule.h"
#include "vesk/modules/dpvm/config/IBusConfig.h"

#include <map>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace VeskTool {

/// Maps all input bytes of the slave, which go to the bus, at the places that its address table gives them;
/// the bytes.
std::shared_ptr<System::IArray<unsigned char>>
MapInput(const Vesk::Modules::DPVM::Config::ISlaveRecord& slave, Vesk::Modules::Slave::ISlaveModule& module);
/// The same for its output bytes, which come from the bus.
std::shared_ptr<System::IArray<unsigned char>>
MapOutput(const Vesk::Modules::DPVM::Config::ISlaveRecord& slave, Vesk::Modules::Slave::ISlaveModule& module);

/// The input data of the slaves of a configuration, which the module sends for as long as it is initialised;
/// all 0 at first.
class InputData {
public:
    /// Takes the places of the bytes from `config`; from the next mapping on.
    void TakePlaces(std::shared_ptr<Vesk::Modules::DPVM::Config::IBusConfig> config) {
        _config = std::move(config);
    }

    /// Maps them onto a module that is about to be initialised and holds the database of that description.
    /// Where that is not the one of the places, or there are no places, nothing is mapped.
    void Map(Vesk::Modules::Slave::ISlaveModule& module, const std::string& description);

    /// Maps nothing, but says where the bytes have their places in a module that holds the database of that
    /// description.
    void Describe(const std::string& description) { _held = description; }

    /// Sets the bits of `mask`, which has as many bytes, in those of the slave at `address`, from its byte
    /// `offset` on. Failure where they have no place.
    void Set(unsigned int address, std::size_t offset, std::span<const unsigned char> bytes,
             std::span<const unsigned char> mask);

    /// The places in the input area of so many bytes of the slave at `address`, from its byte `offset` on.
    /// Failure where they have none.
    std::vector<unsigned short> Places(unsigned int address, std::size_t offset, std::size_t count) const;

private:
    std::shared_ptr<Vesk::Modules::DPVM::Config::IBusConfig> _config;
    std::string _held; // description of the database in the module
    std::map<unsigned int, std::shared_ptr<System::IArray<unsigned char>>> _slaves;
};

} // namespace VeskTool
