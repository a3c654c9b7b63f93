// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/modules/dpvm/IVt22FatalEventInfo.h"

#include <array>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace sdbus {
class Variant;
} // namespace sdbus

namespace Vesk::DBus {

using Variants = std::map<std::string, sdbus::Variant>;

/// Words of a message of the module that are no data.
inline constexpr int EXTENDED_SIZE = 8;

/// A slave as a plant lists it. Lengths are bytes.
struct PlantSlave {
    unsigned char address = 0;
    std::string name;
    unsigned short inputLength = 0;
    unsigned short outputLength = 0;
    bool configured = false;
    bool dataTransfer = false;
    bool diagnostic = false;
    bool dpv1Connection = false;
};

/// The last exception out of the Update of a plant's module.
struct PlantFailure {
    std::string type;
    std::string message;
    std::string dump; ///< path of the dump of a fatal event, empty for none
    std::shared_ptr<Modules::DPVM::IVt22FatalEventInfo>
        event; ///< null where the module has not stopped itself
};

/// A time that was measured again and again, in nanoseconds.
struct PlantTime {
    std::uint64_t count = 0;
    std::uint64_t least = 0;
    std::uint64_t mean = 0;
    std::uint64_t greatest = 0;
};

/// What a plant has counted and measured since the start of its module.
struct PlantStatistics {
    std::uint64_t updates = 0;
    std::uint64_t interrupts = 0;
    std::uint64_t messages = 0;
    std::uint64_t timeOuts = 0;
    PlantTime updateTime;
    PlantTime period; ///< from the beginning of an Update to that of the next

    static PlantStatistics From(const Variants& statistics);
};

/// The properties of org.libvesk.Master1, as the plant has told them last.
struct PlantProperties {
    /// Takes those that are there; what it does not know it leaves alone. sdbus::Error for one of another
    /// type.
    void Take(const Variants& properties);

    std::string state;
    unsigned short vendorId = 0;
    unsigned short fieldbusType = 0;
    unsigned short moduleType = 0;
    unsigned int serial = 0;
    std::array<unsigned char, 3> software{};
    std::array<unsigned char, 2> bootloader{};
    std::string configurationChecksum;
    std::vector<std::uint16_t> databaseWords; ///< empty where the database was not read yet
    std::string databaseDescription;
    bool online = false;
    std::string operationMode;
    std::vector<PlantSlave> slaves;
    std::optional<PlantFailure> failure;
};

} // namespace Vesk::DBus
