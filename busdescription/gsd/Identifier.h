// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace BusDescription::Gsd {

/// The data of an identifier in one direction.
struct IdentifierData {
    unsigned int bytes;   // 1 to 128
    bool words;           // counted in words, else in bytes
    bool wholeConsistent; // consistent over the whole length, else over a unit
};

/// One entry of a slave's configuration: a place that exchanges data in one direction, in both or in none.
/// What goes to the bus is an "output" to device description files and an "input" to the master module.
struct Identifier {
    std::span<const std::uint8_t> bytes; // all of the entry, from where it was decoded
    std::optional<IdentifierData> toBus;
    std::optional<IdentifierData> fromBus;
    bool special = false;                       // in the special format
    bool comparable = true;                     // false: the slave is not to compare it
    std::span<const std::uint8_t> manufacturer; // the bytes that only the manufacturer knows
    bool cutShort = false;                      // runs past the end; only `bytes` is valid
};

/// The entries that `bytes`, which have to outlive them, stand for. One that is cut short is the last.
std::vector<Identifier> DecodeIdentifiers(std::span<const std::uint8_t> bytes);

/// Lengths of process data, in bytes.
struct DataLengths {
    unsigned int toBus = 0;
    unsigned int fromBus = 0;
};

/// What all entries of `bytes` exchange together; what is cut short does not count.
DataLengths LengthsOf(std::span<const std::uint8_t> bytes);

} // namespace BusDescription::Gsd
