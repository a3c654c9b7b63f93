// Made by vesk config header; the next one replaces it.
#pragma once

#include <vesk/system/Array.h>

#include <bit>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <span>

/// The slaves of a bus, and the signals in their data. What a slave's functions get as data are its bytes of
/// one direction; without data they work upon the arrays that Map has mapped.
namespace Plant {

/// Of the database that belongs to it.
inline constexpr unsigned int CHECKSUM = 0x2abbb419;

/// How signals are read and written; numbers have a byte order of their own.
namespace Access {

template <class Unsigned, std::size_t Size>
constexpr Unsigned Get(std::span<const unsigned char, Size> data, std::size_t offset, bool littleEndian) {
    Unsigned value = 0;
    for (std::size_t i = 0; i < sizeof(Unsigned); ++i) {
        const std::size_t place = littleEndian ? sizeof(Unsigned) - 1 - i : i;
        value = static_cast<Unsigned>(static_cast<std::uint64_t>(value) << 8 | data[offset + place]);
    }
    return value;
}

template <class Unsigned, std::size_t Size>
constexpr void Set(std::span<unsigned char, Size> data, std::size_t offset, bool littleEndian, Unsigned value) {
    for (std::size_t i = 0; i < sizeof(Unsigned); ++i) {
        const std::size_t place = littleEndian ? i : sizeof(Unsigned) - 1 - i;
        data[offset + place] = static_cast<unsigned char>(static_cast<std::uint64_t>(value) >> 8 * i & 0xFF);
    }
}

/// The nearest number to `value` that the type has; 0 for what is no number.
template <class Number>
constexpr Number Nearest(double value) {
    if (value <= static_cast<double>(std::numeric_limits<Number>::min()))
        return std::numeric_limits<Number>::min();
    if (value >= static_cast<double>(std::numeric_limits<Number>::max()))
        return std::numeric_limits<Number>::max();
    if (value < 0)
        return static_cast<Number>(value - 0.5);
    return value >= 0 ? static_cast<Number>(value + 0.5) : Number{0};
}

} // namespace Access

struct Conveyor1 {
    static constexpr unsigned char ADDRESS = 3;

    /// Bytes to the bus, and where the first one lies in the area.
    static constexpr int TO_BUS_LENGTH = 4;
    static constexpr int TO_BUS_OFFSET = 0;

    /// Bytes from the bus, and where the first one lies in the area.
    static constexpr int FROM_BUS_LENGTH = 4;
    static constexpr int FROM_BUS_OFFSET = 0;

    using ToBus = std::span<unsigned char, TO_BUS_LENGTH>;
    using FromBus = std::span<const unsigned char, FROM_BUS_LENGTH>;

    /// Its data, once it is mapped: what goes to the bus, and what has come from there.
    std::shared_ptr<System::Array<unsigned char>> toBus =
        System::Array<unsigned char>::Create(TO_BUS_LENGTH);
    std::shared_ptr<System::Array<unsigned char>> fromBus =
        System::Array<unsigned char>::Create(FROM_BUS_LENGTH);

    ToBus ToBusData() const { return ToBus(toBus->Data(), TO_BUS_LENGTH); }

    FromBus FromBusData() const { return FromBus(fromBus->Data(), FROM_BUS_LENGTH); }

    /// Maps its data; once, before the initialisation.
    template <class Module>
    void Map([[maybe_unused]] Module& module) const {
        module.MapInputData(0, toBus, 0, 4);
        module.MapOutputData(0, fromBus, 0, 4);
    }

    // setpoint: int16 to the bus, rpm
    static constexpr std::int16_t Setpoint(ToBus data) {
        return std::bit_cast<std::int16_t>(Access::Get<std::uint16_t>(std::span<const unsigned char, TO_BUS_LENGTH>(data), 0, false));
    }

    std::int16_t Setpoint() const { return Setpoint(ToBusData()); }

    static constexpr void SetSetpoint(ToBus data, std::int16_t value) {
        Access::Set<std::uint16_t>(data, 0, false, std::bit_cast<std::uint16_t>(value));
    }

    void SetSetpoint(std::int16_t value) const { SetSetpoint(ToBusData(), value); }

    // speed: int16 from the bus, rpm
    static constexpr std::int16_t Speed(FromBus data) {
        return std::bit_cast<std::int16_t>(Access::Get<std::uint16_t>(data, 0, false));
    }

    std::int16_t Speed() const { return Speed(FromBusData()); }
};

struct Conveyor2 {
    static constexpr unsigned char ADDRESS = 4;

    /// Bytes to the bus, and where the first one lies in the area.
    static constexpr int TO_BUS_LENGTH = 4;
    static constexpr int TO_BUS_OFFSET = 4;

    /// Bytes from the bus, and where the first one lies in the area.
    static constexpr int FROM_BUS_LENGTH = 4;
    static constexpr int FROM_BUS_OFFSET = 4;

    using ToBus = std::span<unsigned char, TO_BUS_LENGTH>;
    using FromBus = std::span<const unsigned char, FROM_BUS_LENGTH>;

    /// Its data, once it is mapped: what goes to the bus, and what has come from there.
    std::shared_ptr<System::Array<unsigned char>> toBus =
        System::Array<unsigned char>::Create(TO_BUS_LENGTH);
    std::shared_ptr<System::Array<unsigned char>> fromBus =
        System::Array<unsigned char>::Create(FROM_BUS_LENGTH);

    ToBus ToBusData() const { return ToBus(toBus->Data(), TO_BUS_LENGTH); }

    FromBus FromBusData() const { return FromBus(fromBus->Data(), FROM_BUS_LENGTH); }

    /// Maps its data; once, before the initialisation.
    template <class Module>
    void Map([[maybe_unused]] Module& module) const {
        module.MapInputData(4, toBus, 0, 4);
        module.MapOutputData(4, fromBus, 0, 4);
    }

    // setpoint: int16 to the bus, rpm
    static constexpr std::int16_t Setpoint(ToBus data) {
        return std::bit_cast<std::int16_t>(Access::Get<std::uint16_t>(std::span<const unsigned char, TO_BUS_LENGTH>(data), 0, false));
    }

    std::int16_t Setpoint() const { return Setpoint(ToBusData()); }

    static constexpr void SetSetpoint(ToBus data, std::int16_t value) {
        Access::Set<std::uint16_t>(data, 0, false, std::bit_cast<std::uint16_t>(value));
    }

    void SetSetpoint(std::int16_t value) const { SetSetpoint(ToBusData(), value); }

    // speed: int16 from the bus, rpm
    static constexpr std::int16_t Speed(FromBus data) {
        return std::bit_cast<std::int16_t>(Access::Get<std::uint16_t>(data, 0, false));
    }

    std::int16_t Speed() const { return Speed(FromBusData()); }
};

struct Pump {
    static constexpr unsigned char ADDRESS = 5;

    /// Bytes to the bus, and where the first one lies in the area.
    static constexpr int TO_BUS_LENGTH = 12;
    static constexpr int TO_BUS_OFFSET = 8;

    /// Bytes from the bus, and where the first one lies in the area.
    static constexpr int FROM_BUS_LENGTH = 12;
    static constexpr int FROM_BUS_OFFSET = 8;

    using ToBus = std::span<unsigned char, TO_BUS_LENGTH>;
    using FromBus = std::span<const unsigned char, FROM_BUS_LENGTH>;

    /// Its data, once it is mapped: what goes to the bus, and what has come from there.
    std::shared_ptr<System::Array<unsigned char>> toBus =
        System::Array<unsigned char>::Create(TO_BUS_LENGTH);
    std::shared_ptr<System::Array<unsigned char>> fromBus =
        System::Array<unsigned char>::Create(FROM_BUS_LENGTH);

    ToBus ToBusData() const { return ToBus(toBus->Data(), TO_BUS_LENGTH); }

    FromBus FromBusData() const { return FromBus(fromBus->Data(), FROM_BUS_LENGTH); }

    /// Maps its data; once, before the initialisation.
    template <class Module>
    void Map([[maybe_unused]] Module& module) const {
        module.MapInputData(8, toBus, 0, 12);
        module.MapOutputData(8, fromBus, 0, 12);
    }

    // setpoint: int16 to the bus, rpm
    static constexpr double Setpoint(ToBus data) {
        return static_cast<double>(std::bit_cast<std::int16_t>(Access::Get<std::uint16_t>(std::span<const unsigned char, TO_BUS_LENGTH>(data), 0, false))) * (0.10000000000000001) + (0.0);
    }

    double Setpoint() const { return Setpoint(ToBusData()); }

    static constexpr void SetSetpoint(ToBus data, double value) {
        Access::Set<std::uint16_t>(data, 0, false, std::bit_cast<std::uint16_t>(Access::Nearest<std::int16_t>((value - (0.0)) / (0.10000000000000001))));
    }

    void SetSetpoint(double value) const { SetSetpoint(ToBusData(), value); }

    // speed: int16 from the bus, rpm
    static constexpr double Speed(FromBus data) {
        return static_cast<double>(std::bit_cast<std::int16_t>(Access::Get<std::uint16_t>(data, 0, false))) * (0.10000000000000001) + (0.0);
    }

    double Speed() const { return Speed(FromBusData()); }

    // current: float32 from the bus, A
    static constexpr float Current(FromBus data) {
        return std::bit_cast<float>(Access::Get<std::uint32_t>(data, 4, false));
    }

    float Current() const { return Current(FromBusData()); }
};

struct Lamps {
    static constexpr unsigned char ADDRESS = 8;

    /// Bytes to the bus, and where the first one lies in the area.
    static constexpr int TO_BUS_LENGTH = 2;
    static constexpr int TO_BUS_OFFSET = 20;

    /// Bytes from the bus.
    static constexpr int FROM_BUS_LENGTH = 0;

    using ToBus = std::span<unsigned char, TO_BUS_LENGTH>;
    using FromBus = std::span<const unsigned char, FROM_BUS_LENGTH>;

    /// Its data, once it is mapped: what goes to the bus, and what has come from there.
    std::shared_ptr<System::Array<unsigned char>> toBus =
        System::Array<unsigned char>::Create(TO_BUS_LENGTH);
    std::shared_ptr<System::Array<unsigned char>> fromBus =
        System::Array<unsigned char>::Create(FROM_BUS_LENGTH);

    ToBus ToBusData() const { return ToBus(toBus->Data(), TO_BUS_LENGTH); }

    FromBus FromBusData() const { return FromBus(fromBus->Data(), FROM_BUS_LENGTH); }

    /// Maps its data; once, before the initialisation.
    template <class Module>
    void Map([[maybe_unused]] Module& module) const {
        module.MapInputData(20, toBus, 0, 2);
    }

    // ready: bool to the bus
    static constexpr bool Ready(ToBus data) {
        return (data[0] & 0x01) != 0;
    }

    bool Ready() const { return Ready(ToBusData()); }

    static constexpr void SetReady(ToBus data, bool value) {
        data[0] = static_cast<unsigned char>((data[0] & ~0x01) | (value ? 0x01 : 0));
    }

    void SetReady(bool value) const { SetReady(ToBusData(), value); }

    // fault: bool to the bus
    static constexpr bool Fault(ToBus data) {
        return (data[0] & 0x02) != 0;
    }

    bool Fault() const { return Fault(ToBusData()); }

    static constexpr void SetFault(ToBus data, bool value) {
        data[0] = static_cast<unsigned char>((data[0] & ~0x02) | (value ? 0x02 : 0));
    }

    void SetFault(bool value) const { SetFault(ToBusData(), value); }
};

struct Barriers {
    static constexpr unsigned char ADDRESS = 9;

    /// Bytes to the bus.
    static constexpr int TO_BUS_LENGTH = 0;

    /// Bytes from the bus, and where the first one lies in the area.
    static constexpr int FROM_BUS_LENGTH = 8;
    static constexpr int FROM_BUS_OFFSET = 20;

    using ToBus = std::span<unsigned char, TO_BUS_LENGTH>;
    using FromBus = std::span<const unsigned char, FROM_BUS_LENGTH>;

    /// Its data, once it is mapped: what goes to the bus, and what has come from there.
    std::shared_ptr<System::Array<unsigned char>> toBus =
        System::Array<unsigned char>::Create(TO_BUS_LENGTH);
    std::shared_ptr<System::Array<unsigned char>> fromBus =
        System::Array<unsigned char>::Create(FROM_BUS_LENGTH);

    ToBus ToBusData() const { return ToBus(toBus->Data(), TO_BUS_LENGTH); }

    FromBus FromBusData() const { return FromBus(fromBus->Data(), FROM_BUS_LENGTH); }

    /// Maps its data; once, before the initialisation.
    template <class Module>
    void Map([[maybe_unused]] Module& module) const {
        module.MapOutputData(20, fromBus, 0, 8);
    }

    // interrupted: uint64 from the bus
    static constexpr std::uint64_t Interrupted(FromBus data) {
        return std::bit_cast<std::uint64_t>(Access::Get<std::uint64_t>(data, 0, false));
    }

    std::uint64_t Interrupted() const { return Interrupted(FromBusData()); }
};

struct IoEast {
    static constexpr unsigned char ADDRESS = 10;

    /// Bytes to the bus, and where the first one lies in the area.
    static constexpr int TO_BUS_LENGTH = 8;
    static constexpr int TO_BUS_OFFSET = 22;

    /// Bytes from the bus, and where the first one lies in the area.
    static constexpr int FROM_BUS_LENGTH = 8;
    static constexpr int FROM_BUS_OFFSET = 28;

    using ToBus = std::span<unsigned char, TO_BUS_LENGTH>;
    using FromBus = std::span<const unsigned char, FROM_BUS_LENGTH>;

    /// Its data, once it is mapped: what goes to the bus, and what has come from there.
    std::shared_ptr<System::Array<unsigned char>> toBus =
        System::Array<unsigned char>::Create(TO_BUS_LENGTH);
    std::shared_ptr<System::Array<unsigned char>> fromBus =
        System::Array<unsigned char>::Create(FROM_BUS_LENGTH);

    ToBus ToBusData() const { return ToBus(toBus->Data(), TO_BUS_LENGTH); }

    FromBus FromBusData() const { return FromBus(fromBus->Data(), FROM_BUS_LENGTH); }

    /// Maps its data; once, before the initialisation.
    template <class Module>
    void Map([[maybe_unused]] Module& module) const {
        module.MapInputData(22, toBus, 0, 8);
        module.MapOutputData(28, fromBus, 0, 8);
    }
};

struct IoWest {
    static constexpr unsigned char ADDRESS = 11;

    /// Bytes to the bus, and where the first one lies in the area.
    static constexpr int TO_BUS_LENGTH = 16;
    static constexpr int TO_BUS_OFFSET = 30;

    /// Bytes from the bus, and where the first one lies in the area.
    static constexpr int FROM_BUS_LENGTH = 8;
    static constexpr int FROM_BUS_OFFSET = 36;

    using ToBus = std::span<unsigned char, TO_BUS_LENGTH>;
    using FromBus = std::span<const unsigned char, FROM_BUS_LENGTH>;

    /// Its data, once it is mapped: what goes to the bus, and what has come from there.
    std::shared_ptr<System::Array<unsigned char>> toBus =
        System::Array<unsigned char>::Create(TO_BUS_LENGTH);
    std::shared_ptr<System::Array<unsigned char>> fromBus =
        System::Array<unsigned char>::Create(FROM_BUS_LENGTH);

    ToBus ToBusData() const { return ToBus(toBus->Data(), TO_BUS_LENGTH); }

    FromBus FromBusData() const { return FromBus(fromBus->Data(), FROM_BUS_LENGTH); }

    /// Maps its data; once, before the initialisation.
    template <class Module>
    void Map([[maybe_unused]] Module& module) const {
        module.MapInputData(30, toBus, 0, 16);
        module.MapOutputData(36, fromBus, 0, 8);
    }
};

struct Valves {
    static constexpr unsigned char ADDRESS = 14;

    /// Bytes to the bus, and where the first one lies in the area.
    static constexpr int TO_BUS_LENGTH = 4;
    static constexpr int TO_BUS_OFFSET = 46;

    /// Bytes from the bus.
    static constexpr int FROM_BUS_LENGTH = 0;

    using ToBus = std::span<unsigned char, TO_BUS_LENGTH>;
    using FromBus = std::span<const unsigned char, FROM_BUS_LENGTH>;

    /// Its data, once it is mapped: what goes to the bus, and what has come from there.
    std::shared_ptr<System::Array<unsigned char>> toBus =
        System::Array<unsigned char>::Create(TO_BUS_LENGTH);
    std::shared_ptr<System::Array<unsigned char>> fromBus =
        System::Array<unsigned char>::Create(FROM_BUS_LENGTH);

    ToBus ToBusData() const { return ToBus(toBus->Data(), TO_BUS_LENGTH); }

    FromBus FromBusData() const { return FromBus(fromBus->Data(), FROM_BUS_LENGTH); }

    /// Maps its data; once, before the initialisation.
    template <class Module>
    void Map([[maybe_unused]] Module& module) const {
        module.MapInputData(46, toBus, 0, 4);
    }
};

struct FlowMeter {
    static constexpr unsigned char ADDRESS = 20;

    /// Bytes to the bus.
    static constexpr int TO_BUS_LENGTH = 0;

    /// Bytes from the bus, and where the first one lies in the area.
    static constexpr int FROM_BUS_LENGTH = 10;
    static constexpr int FROM_BUS_OFFSET = 44;

    using ToBus = std::span<unsigned char, TO_BUS_LENGTH>;
    using FromBus = std::span<const unsigned char, FROM_BUS_LENGTH>;

    /// Its data, once it is mapped: what goes to the bus, and what has come from there.
    std::shared_ptr<System::Array<unsigned char>> toBus =
        System::Array<unsigned char>::Create(TO_BUS_LENGTH);
    std::shared_ptr<System::Array<unsigned char>> fromBus =
        System::Array<unsigned char>::Create(FROM_BUS_LENGTH);

    ToBus ToBusData() const { return ToBus(toBus->Data(), TO_BUS_LENGTH); }

    FromBus FromBusData() const { return FromBus(fromBus->Data(), FROM_BUS_LENGTH); }

    /// Maps its data; once, before the initialisation.
    template <class Module>
    void Map([[maybe_unused]] Module& module) const {
        module.MapOutputData(44, fromBus, 0, 10);
    }

    // flow: float32 from the bus, l/min
    static constexpr float Flow(FromBus data) {
        return std::bit_cast<float>(Access::Get<std::uint32_t>(data, 0, false));
    }

    float Flow() const { return Flow(FromBusData()); }

    // status: uint8 from the bus
    static constexpr std::uint8_t Status(FromBus data) {
        return std::bit_cast<std::uint8_t>(Access::Get<std::uint8_t>(data, 4, false));
    }

    std::uint8_t Status() const { return Status(FromBusData()); }
};

struct LevelMeter {
    static constexpr unsigned char ADDRESS = 21;

    /// Bytes to the bus.
    static constexpr int TO_BUS_LENGTH = 0;

    /// Bytes from the bus, and where the first one lies in the area.
    static constexpr int FROM_BUS_LENGTH = 5;
    static constexpr int FROM_BUS_OFFSET = 54;

    using ToBus = std::span<unsigned char, TO_BUS_LENGTH>;
    using FromBus = std::span<const unsigned char, FROM_BUS_LENGTH>;

    /// Its data, once it is mapped: what goes to the bus, and what has come from there.
    std::shared_ptr<System::Array<unsigned char>> toBus =
        System::Array<unsigned char>::Create(TO_BUS_LENGTH);
    std::shared_ptr<System::Array<unsigned char>> fromBus =
        System::Array<unsigned char>::Create(FROM_BUS_LENGTH);

    ToBus ToBusData() const { return ToBus(toBus->Data(), TO_BUS_LENGTH); }

    FromBus FromBusData() const { return FromBus(fromBus->Data(), FROM_BUS_LENGTH); }

    /// Maps its data; once, before the initialisation.
    template <class Module>
    void Map([[maybe_unused]] Module& module) const {
        module.MapOutputData(54, fromBus, 0, 5);
    }

    // level: float32 from the bus, mm
    static constexpr float Level(FromBus data) {
        return std::bit_cast<float>(Access::Get<std::uint32_t>(data, 0, false));
    }

    float Level() const { return Level(FromBusData()); }

    // status: uint8 from the bus
    static constexpr std::uint8_t Status(FromBus data) {
        return std::bit_cast<std::uint8_t>(Access::Get<std::uint8_t>(data, 4, false));
    }

    std::uint8_t Status() const { return Status(FromBusData()); }
};

struct Scales {
    static constexpr unsigned char ADDRESS = 33;

    /// Bytes to the bus, and where the first one lies in the area.
    static constexpr int TO_BUS_LENGTH = 16;
    static constexpr int TO_BUS_OFFSET = 50;

    /// Bytes from the bus, and where the first one lies in the area.
    static constexpr int FROM_BUS_LENGTH = 16;
    static constexpr int FROM_BUS_OFFSET = 59;

    using ToBus = std::span<unsigned char, TO_BUS_LENGTH>;
    using FromBus = std::span<const unsigned char, FROM_BUS_LENGTH>;

    /// Its data, once it is mapped: what goes to the bus, and what has come from there.
    std::shared_ptr<System::Array<unsigned char>> toBus =
        System::Array<unsigned char>::Create(TO_BUS_LENGTH);
    std::shared_ptr<System::Array<unsigned char>> fromBus =
        System::Array<unsigned char>::Create(FROM_BUS_LENGTH);

    ToBus ToBusData() const { return ToBus(toBus->Data(), TO_BUS_LENGTH); }

    FromBus FromBusData() const { return FromBus(fromBus->Data(), FROM_BUS_LENGTH); }

    /// Maps its data; once, before the initialisation.
    template <class Module>
    void Map([[maybe_unused]] Module& module) const {
        module.MapInputData(50, toBus, 0, 16);
        module.MapOutputData(59, fromBus, 0, 16);
    }
};

struct Panel {
    static constexpr unsigned char ADDRESS = 40;

    /// Bytes to the bus, and where the first one lies in the area.
    static constexpr int TO_BUS_LENGTH = 122;
    static constexpr int TO_BUS_OFFSET = 66;

    /// Bytes from the bus, and where the first one lies in the area.
    static constexpr int FROM_BUS_LENGTH = 122;
    static constexpr int FROM_BUS_OFFSET = 75;

    using ToBus = std::span<unsigned char, TO_BUS_LENGTH>;
    using FromBus = std::span<const unsigned char, FROM_BUS_LENGTH>;

    /// Its data, once it is mapped: what goes to the bus, and what has come from there.
    std::shared_ptr<System::Array<unsigned char>> toBus =
        System::Array<unsigned char>::Create(TO_BUS_LENGTH);
    std::shared_ptr<System::Array<unsigned char>> fromBus =
        System::Array<unsigned char>::Create(FROM_BUS_LENGTH);

    ToBus ToBusData() const { return ToBus(toBus->Data(), TO_BUS_LENGTH); }

    FromBus FromBusData() const { return FromBus(fromBus->Data(), FROM_BUS_LENGTH); }

    /// Maps its data; once, before the initialisation.
    template <class Module>
    void Map([[maybe_unused]] Module& module) const {
        module.MapInputData(66, toBus, 0, 122);
        module.MapOutputData(75, fromBus, 0, 122);
    }

    // text: bytes to the bus
    static constexpr auto Text(ToBus data) {
        return data.subspan<0, 80>();
    }

    auto Text() const { return Text(ToBusData()); }
};

} // namespace Plant
