// SPDX-License-Identifier: MIT
#pragma once

#include "virtualmodule/wires/Bytes.h"

#include <optional>

namespace VirtualModule {

/// Whether `record` is one master record: 96 bytes that end in a user data block of 64.
bool IsMasterRecord(ByteView record);

/// The station address that a master record gives to the master itself.
std::uint8_t MasterAddress(ByteView record);

/// What the master needs of one slave record. Its data bytes lie in the process-data areas where the record's
/// address table says: entry i is the place of byte i, and bytes beyond the table's last entry follow the
/// last one without a gap. A table without entries gives its bytes no place: they are not exchanged.
struct SlaveRecord {
    std::uint16_t identNumber = 0;
    Bytes identifiers;                       // the configuration identifier bytes
    std::uint8_t inputLength = 0;            // bytes towards the slave
    std::uint8_t outputLength = 0;           // bytes from the slave
    std::vector<std::uint16_t> inputPlaces;  // of the bytes that have one, in the input area
    std::vector<std::uint16_t> outputPlaces; // of the bytes that have one, in the output area

    /// Reads one slave record; nothing if a length is out of its limits, the blocks do not fill `record`
    /// exactly, or a data byte would lie outside its area.
    static std::optional<SlaveRecord> Decode(ByteView record);
};

} // namespace VirtualModule
