// SPDX-License-Identifier: MIT
#include "virtualmodule/flash/SlaveRecord.h"

#include "vesk/hostinterface/MasterDpRam.h"

#include <array>

namespace MasterMap = Vesk::HostInterface::MasterDpRam;

namespace VirtualModule {

namespace {

constexpr std::size_t MASTER_SIZE = 96;
constexpr std::size_t MASTER_ADDRESS = 2;
constexpr std::size_t MASTER_USER_DATA = 32;
constexpr std::size_t MASTER_USER_DATA_SIZE = 64;

constexpr std::size_t SLAVE_HEADER_SIZE = 16;
constexpr std::size_t MIN_SLAVE_LENGTH = 44;
constexpr std::size_t MAX_SLAVE_LENGTH = 1740;
constexpr std::size_t MAX_TABLE_ENTRIES = 244;

static_assert(MasterMap::INPUT_AREA_SIZE == MasterMap::OUTPUT_AREA_SIZE);
constexpr std::size_t AREA_SIZE = MasterMap::INPUT_AREA_SIZE;

/// The five blocks of a slave record in their order, with the limits of their length fields.
enum Block : std::size_t { PARAMETERS, CONFIGURATION, ADDRESS_TABLE, USER_DATA, EXTENDED_PARAMETERS, BLOCKS };

struct Limits {
    std::size_t least;
    std::size_t most;
};

constexpr std::array<Limits, BLOCKS> BLOCK_LIMITS{{{9, 246}, {3, 246}, {6, 980}, {6, 6}, {2, 246}}};

using BlockViews = std::array<ByteView, BLOCKS>;

/// Cuts a record into its blocks. A pad byte follows every odd block but the last; the record's own length
/// does not count it.
std::optional<BlockViews> Split(ByteView record) {
    if (record.size() < SLAVE_HEADER_SIZE)
        return std::nullopt;
    BlockViews blocks;
    std::size_t at = SLAVE_HEADER_SIZE;
    std::size_t pads = 0;
    for (std::size_t i = 0; i < BLOCKS; ++i) {
        if (at + 2 > record.size())
            return std::nullopt;
        const std::size_t length = Get16(record, at);
        if (length < BLOCK_LIMITS[i].least || length > BLOCK_LIMITS[i].most || at + length > record.size())
            return std::nullopt;
        blocks[i] = record.subspan(at, length);
        at += length;
        if (length % 2 != 0 && i + 1 < BLOCKS) {
            ++at;
            ++pads;
        }
    }
    const std::size_t length = Get16(record, 0);
    if (at != record.size() || length + pads != at || length < MIN_SLAVE_LENGTH || length > MAX_SLAVE_LENGTH)
        return std::nullopt;
    return blocks;
}

/// Where `length` data bytes lie, given the `count` table entries at the start of `entries`.
std::optional<std::vector<std::uint16_t>> Places(ByteView entries, std::size_t count, std::size_t length) {
    std::vector<std::uint16_t> places;
    for (std::size_t i = 0; count > 0 && i < length; ++i) {
        const std::size_t place = i < count ? Get16(entries, 2 * i) : std::size_t{places.back()} + 1;
        if (place >= AREA_SIZE)
            return std::nullopt;
        places.push_back(static_cast<std::uint16_t>(place));
    }
    return places;
}

} // namespace

bool IsMasterRecord(ByteView record) {
    return record.size() == MASTER_SIZE && Get16(record, 0) == MASTER_SIZE &&
           Get16(record, MASTER_USER_DATA) == MASTER_USER_DATA_SIZE;
}

std::uint8_t MasterAddress(ByteView record) {
    return record[MASTER_ADDRESS];
}

std::optional<SlaveRecord> SlaveRecord::Decode(ByteView record) {
    const auto blocks = Split(record);
    if (!blocks)
        return std::nullopt;
    SlaveRecord slave;
    slave.identNumber = Get16((*blocks)[PARAMETERS], 6);
    const ByteView identifiers = (*blocks)[CONFIGURATION].subspan(2);
    slave.identifiers.assign(identifiers.begin(), identifiers.end());
    slave.outputLength = (*blocks)[USER_DATA][2];
    slave.inputLength = (*blocks)[USER_DATA][3];

    const ByteView table = (*blocks)[ADDRESS_TABLE];
    const std::size_t inputs = table[2];
    const std::size_t outputs = table[3];
    if (inputs > MAX_TABLE_ENTRIES || outputs > MAX_TABLE_ENTRIES ||
        4 + 2 * (inputs + outputs) != table.size())
        return std::nullopt;
    auto inputPlaces = Places(table.subspan(4), inputs, slave.inputLength);
    auto outputPlaces = Places(table.subspan(4 + 2 * inputs), outputs, slave.outputLength);
    if (!inputPlaces || !outputPlaces)
        return std::nullopt;
    slave.inputPlaces = std::move(*inputPlaces);
    slave.outputPlaces = std::move(*outputPlaces);
    return slave;
}

} // namespace VirtualModule
