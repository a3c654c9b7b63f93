// SPDX-License-Identifier: MIT
#include "busdescription/gsd/Identifier.h"

namespace BusDescription::Gsd {

using Bytes = std::span<const std::uint8_t>;

static constexpr unsigned int TO_BUS = 2; // the two bits of a direction
static constexpr unsigned int FROM_BUS = 1;

static constexpr unsigned int NOT_COMPARED = 15; // instead of a number of manufacturer-specific bytes

static IdentifierData Data(unsigned int byte, unsigned int countMask) {
    const bool words = (byte & 0x40) != 0;
    return {((byte & countMask) + 1) * (words ? 2 : 1), words, (byte & 0x80) != 0};
}

/// The directions and the length stand in one byte.
static Identifier Simple(Bytes bytes, unsigned int directions) {
    Identifier entry;
    entry.bytes = bytes.first(1);
    if ((directions & TO_BUS) != 0)
        entry.toBus = Data(bytes[0], 0x0F);
    if ((directions & FROM_BUS) != 0)
        entry.fromBus = Data(bytes[0], 0x0F);
    return entry;
}

/// A byte for each direction follows, what goes to the bus first, and then the manufacturer's.
static Identifier Special(Bytes bytes) {
    const unsigned int directions = bytes[0] >> 6;
    const unsigned int last = bytes[0] & 0x0F;
    const std::size_t lengths = (directions >> 1) + (directions & 1);
    const std::size_t manufacturer = last == NOT_COMPARED ? 0 : last;
    Identifier entry;
    entry.special = true;
    entry.comparable = last != NOT_COMPARED;
    entry.cutShort = 1 + lengths + manufacturer > bytes.size();
    entry.bytes = bytes.first(entry.cutShort ? bytes.size() : 1 + lengths + manufacturer);
    if (entry.cutShort)
        return entry;
    if ((directions & TO_BUS) != 0)
        entry.toBus = Data(bytes[1], 0x3F);
    if ((directions & FROM_BUS) != 0)
        entry.fromBus = Data(bytes[lengths], 0x3F);
    entry.manufacturer = entry.bytes.last(manufacturer);
    return entry;
}

std::vector<Identifier> DecodeIdentifiers(Bytes bytes) {
    std::vector<Identifier> entries;
    while (!bytes.empty()) {
        const unsigned int directions = bytes[0] >> 4 & 3;
        entries.push_back(directions == 0 ? Special(bytes) : Simple(bytes, directions));
        bytes = bytes.subspan(entries.back().bytes.size());
    }
    return entries;
}

DataLengths LengthsOf(Bytes bytes) {
    DataLengths lengths;
    for (const Identifier& entry : DecodeIdentifiers(bytes)) {
        lengths.toBus += entry.toBus ? entry.toBus->bytes : 0;
        lengths.fromBus += entry.fromBus ? entry.fromBus->bytes : 0;
    }
    return lengths;
}

} // namespace BusDescription::Gsd
