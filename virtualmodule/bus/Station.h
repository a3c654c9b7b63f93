// SPDX-License-Identifier: MIT
#pragma once

#include "virtualmodule/flash/Database.h"

#include <set>
#include <utility>

namespace VirtualModule {

/// One slave device on the cable: it sends the bytes that it is given straight back, as far as both reach,
/// and keeps the records that the acyclic services read and write. The records 0 to 9 of slot 0 say what it
/// is.
class Station {
public:
    static constexpr std::uint8_t IDENTIFICATION_RECORDS = 10;

    explicit Station(const SlaveRecord& record);

    std::uint16_t IdentNumber() const { return _identNumber; }

    const Bytes& Identifiers() const { return _identifiers; }

    /// What the master last gave it; Echo() then gives it back.
    Bytes& Input() { return _input; }

    /// What it last gave the master.
    const Bytes& Output() const { return _output; }

    void Echo();

    /// Null for a record that was never written.
    const Bytes* Record(std::uint8_t slot, std::uint8_t index) const;
    void WriteRecord(std::uint8_t slot, std::uint8_t index, Bytes data);

    /// It takes no other address any more.
    void LockAddress() { _addressLocked = true; }

    bool AddressLocked() const { return _addressLocked; }

    /// It is the device that `record` was made for.
    bool Fits(const SlaveRecord& record) const;

private:
    std::uint16_t _identNumber;
    Bytes _identifiers;
    Bytes _input;
    Bytes _output;
    std::map<std::pair<std::uint8_t, std::uint8_t>, Bytes> _records;
    bool _addressLocked = false;
};

/// What hangs on the cable. It outlives a reset of the master.
class Stations {
public:
    /// Puts the slaves of the database on the cable. Devices that are there already and fit stay as they are.
    void Populate(const Database& database);
    /// The device that answers at `address`, or null.
    Station* Find(std::uint8_t address);
    /// Takes whatever has this address off the cable, or puts it back.
    void SetPresent(std::uint8_t address, bool present);
    /// Nothing has this address, on the cable or taken off it.
    bool Free(std::uint8_t address) const;
    /// The device at `from` answers at `to` from now on; `to` must be free.
    void Move(std::uint8_t from, std::uint8_t to);

private:
    std::map<std::uint8_t, Station> _stations;
    std::set<std::uint8_t> _absent;
};

} // namespace VirtualModule
