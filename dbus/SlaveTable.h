// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/dbus/Plant.h"

#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <variant>
#include <vector>

namespace Vesk::DBus {

/// What a configuration says of its slaves, read once, so that the service needs the configuration no more.
class SlaveTable {
public:
    /// Offsets in an area, one for each byte.
    using Offsets = std::vector<unsigned short>;

    struct Slave {
        std::string name;
        Offsets input;
        Offsets output;
    };

    /// `config` may be null: then there are only the slaves that have a name.
    SlaveTable(const std::shared_ptr<Modules::DPVM::Config::IBusConfig>& config,
               const std::map<unsigned char, std::string>& names);

    /// By address. Not to be had of those without a configuration: their offsets.
    const std::map<unsigned char, Slave>& Slaves() const { return _slaves; }

    /// Eight hexadecimal digits; empty without a configuration.
    const std::string& Checksum() const { return _checksum; }

private:
    std::map<unsigned char, Slave> _slaves;
    std::string _checksum;
};

/// The signals that the application has named, and their values out of the areas.
class SignalTable {
public:
    using Value = std::variant<bool, std::int64_t, std::uint64_t, double, std::vector<unsigned char>>;

    /// ArgumentException for a signal that lies outside of the data, or has a name that is empty or taken.
    SignalTable(const std::vector<Signal>& signals, const SlaveTable& slaves);

    /// By name.
    struct Entry {
        Signal signal;
        SlaveTable::Offsets offsets; // of its bytes in the area
    };

    const std::map<std::string, Entry>& All() const { return _signals; }

    /// The value in the areas as far as they are mapped; nothing where it lies beyond.
    static std::optional<Value> ValueOf(const Entry& entry, std::span<const unsigned char> input,
                                        std::span<const unsigned char> output);

private:
    std::map<std::string, Entry> _signals;
};

/// The bytes at the offsets; 0 for one that lies beyond the area.
std::vector<unsigned char> BytesAt(const SlaveTable::Offsets& offsets, std::span<const unsigned char> area);

} // namespace Vesk::DBus
