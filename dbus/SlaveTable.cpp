// SPDX-License-Identifier: MIT
#include "dbus/SlaveTable.h"

#include "vesk/hostinterface/MasterDpRam.h"
#include "vesk/system/Convert.h"

#include <bit>
#include <type_traits>

namespace Vesk::DBus {

using Type = Signal::Type;

static SlaveTable::Offsets OffsetsIn(const std::shared_ptr<System::IArray<unsigned short>>& table) {
    return {table->begin(), table->end()};
}

SlaveTable::SlaveTable(const std::shared_ptr<Modules::DPVM::Config::IBusConfig>& config,
                       const std::map<unsigned char, std::string>& names) {
    for (const auto& [address, name] : names)
        _slaves[address].name = name;
    if (!config)
        return;
    _checksum = System::Convert::ToString(config->Checksum(), 16).PadLeft(8, '0').Value();
    const auto addresses = config->SlaveAddresses();
    for (const unsigned char address : *addresses) {
        const auto table = config->Slave(address)->AddressTable();
        Slave& slave = _slaves[address];
        slave.input = OffsetsIn(table->InputOffsetTable());
        slave.output = OffsetsIn(table->OutputOffsetTable());
    }
}

static std::size_t LengthOf(const Signal& signal) {
    switch (signal.type) {
    case Type::BIT:
    case Type::UINT8:
    case Type::INT8:
        return 1;
    case Type::UINT16:
    case Type::INT16:
        return 2;
    case Type::UINT32:
    case Type::INT32:
    case Type::FLOAT32:
        return 4;
    case Type::UINT64:
    case Type::INT64:
    case Type::FLOAT64:
        return 8;
    case Type::BYTES:
        break;
    }
    return signal.length > 0 ? static_cast<std::size_t>(signal.length) : 0;
}

[[noreturn]] static void Refuse(const Signal& signal, const std::string& why) {
    System::_env_throw(System::ArgumentException::Create("signal \"" + signal.name + "\": " + why));
}

/// Where the bytes of the signal lie in its area.
static SlaveTable::Offsets OffsetsOf(const Signal& signal, const SlaveTable& slaves) {
    const std::size_t length = LengthOf(signal);
    SlaveTable::Offsets data(HostInterface::MasterDpRam::INPUT_AREA_SIZE);
    for (std::size_t i = 0; i < data.size(); ++i)
        data[i] = static_cast<unsigned short>(i);
    if (signal.slave != Signal::AREA) {
        const auto slave = slaves.Slaves().find(static_cast<unsigned char>(signal.slave));
        if (signal.slave < 0 || signal.slave > 255 || slave == slaves.Slaves().end())
            Refuse(signal, "slave " + std::to_string(signal.slave) + " is not in the configuration");
        data = signal.direction == Signal::Direction::TO_BUS ? slave->second.input : slave->second.output;
    }
    if (length == 0 || signal.offset < 0 || static_cast<std::size_t>(signal.offset) + length > data.size())
        Refuse(signal, std::to_string(length) + " bytes at offset " + std::to_string(signal.offset) +
                           " are not in the " + std::to_string(data.size()) + " bytes of data");
    const auto first = data.begin() + signal.offset;
    return {first, first + static_cast<std::ptrdiff_t>(length)};
}

SignalTable::SignalTable(const std::vector<Signal>& signals, const SlaveTable& slaves) {
    for (const Signal& signal : signals) {
        if (signal.name.empty())
            Refuse(signal, "it has no name");
        if (signal.bit < 0 || signal.bit > 7)
            Refuse(signal, "bit " + std::to_string(signal.bit) + " is none of 0 to 7");
        if (!_signals.emplace(signal.name, Entry{signal, OffsetsOf(signal, slaves)}).second)
            Refuse(signal, "another one has that name");
    }
}

std::vector<unsigned char> BytesAt(const SlaveTable::Offsets& offsets, std::span<const unsigned char> area) {
    std::vector<unsigned char> bytes;
    bytes.reserve(offsets.size());
    for (const unsigned short offset : offsets)
        bytes.push_back(offset < area.size() ? area[offset] : 0);
    return bytes;
}

static std::uint64_t Number(const std::vector<unsigned char>& bytes, bool littleEndian) {
    std::uint64_t number = 0;
    for (std::size_t i = 0; i < bytes.size(); ++i)
        number = number << 8 | bytes[littleEndian ? bytes.size() - 1 - i : i];
    return number;
}

/// The number as its type has it; a double once it is scaled.
template <class T>
static SignalTable::Value Scaled(T number, double scale) {
    if constexpr (!std::is_floating_point_v<T>)
        if (scale == 1) {
            if constexpr (std::is_signed_v<T>)
                return std::int64_t{number};
            else
                return std::uint64_t{number};
        }
    return static_cast<double>(number) * scale;
}

std::optional<SignalTable::Value> SignalTable::ValueOf(const Entry& entry,
                                                       std::span<const unsigned char> input,
                                                       std::span<const unsigned char> output) {
    const Signal& signal = entry.signal;
    const auto area = signal.direction == Signal::Direction::TO_BUS ? input : output;
    for (const unsigned short offset : entry.offsets)
        if (offset >= area.size())
            return std::nullopt;
    auto bytes = BytesAt(entry.offsets, area);
    if (signal.type == Type::BYTES)
        return bytes;
    const std::uint64_t number = Number(bytes, signal.littleEndian);
    switch (signal.type) {
    case Type::BIT:
        return (number >> signal.bit & 1) != 0;
    case Type::UINT8:
    case Type::UINT16:
    case Type::UINT32:
    case Type::UINT64:
        return Scaled(number, signal.scale);
    case Type::INT8:
        return Scaled(static_cast<std::int8_t>(number), signal.scale);
    case Type::INT16:
        return Scaled(static_cast<std::int16_t>(number), signal.scale);
    case Type::INT32:
        return Scaled(static_cast<std::int32_t>(number), signal.scale);
    case Type::INT64:
        return Scaled(static_cast<std::int64_t>(number), signal.scale);
    case Type::FLOAT32:
        return Scaled(std::bit_cast<float>(static_cast<std::uint32_t>(number)), signal.scale);
    case Type::FLOAT64:
        return Scaled(std::bit_cast<double>(number), signal.scale);
    case Type::BYTES:
        break;
    }
    return bytes;
}

} // namespace Vesk::DBus
