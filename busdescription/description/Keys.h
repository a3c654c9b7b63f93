// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

/// The keys that stand for one field of a record each. What other keys mean, "watchdog" say, is in
/// Description.h; docs/configuration.md has them all.
namespace BusDescription {

enum class KeyKind {
    NUMBER,
    DURATION, // a text such as "100 ms", or a number of units
    TEXT,     // characters of one byte
    BYTES,    // a text of hexadecimal digits
};

struct Key {
    std::string_view name;  // in the text
    std::string_view field; // in the record
    KeyKind kind;
    std::uint32_t most;         // that the record can hold; of a text and of bytes their number
    std::uint32_t least;        // that makes sense,
    std::uint32_t largest;      // from least to largest
    std::uint32_t microseconds; // of a duration's unit
    std::string_view unit;      // for people
};

/// Of the table [bus], for the master record.
std::span<const Key> BusKeys();
/// Of each table [[slave]], for its record.
std::span<const Key> SlaveKeys();

/// The key of a field, null where other keys bring it about.
const Key* KeyOf(std::span<const Key> keys, std::string_view field);

} // namespace BusDescription
