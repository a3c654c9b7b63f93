// SPDX-License-Identifier: MIT
#pragma once

#include "virtualmodule/flash/Database.h"

#include <functional>
#include <set>
#include <utility>

namespace VirtualModule {

/// One slave device on the cable: it sends the bytes that it is given straight back, as far as both reach,
/// or those that it is told to send, and keeps the records that the acyclic services read and write. The
/// records 0 to 9 of slot 0 say what it is. It is what its record says, until it is made another device.
class Station {
public:
    static constexpr std::uint8_t IDENTIFICATION_RECORDS = 10;
    /// The most bytes of its own that a slave's diagnosis has behind the six standard ones.
    static constexpr std::size_t MAX_DIAGNOSIS = 238;
    static constexpr std::size_t MAX_IDENTIFIERS = 244;

    explicit Station(const SlaveRecord& record);

    std::uint16_t IdentNumber() const { return _identNumber; }

    void SetIdentNumber(std::uint16_t identNumber) { _identNumber = identNumber; }

    const Bytes& Identifiers() const { return _identifiers; }

    /// The modules that it is built of; std::invalid_argument unless 1 to MAX_IDENTIFIERS bytes.
    void SetIdentifiers(Bytes identifiers);

    /// What it says of itself, behind the standard bytes; empty for nothing.
    const Bytes& Diagnosis() const { return _diagnosis; }

    /// At most MAX_DIAGNOSIS bytes, std::invalid_argument otherwise.
    void SetDiagnosis(Bytes diagnosis);

    /// What the master last gave it; Echo() then gives it back.
    Bytes& Input() { return _input; }

    /// What it last gave the master.
    const Bytes& Output() const { return _output; }

    /// What it sends from now on, as many bytes as it has output; none: its input again.
    /// std::invalid_argument for another number.
    void SetOutput(Bytes output);

    void Echo();

    /// Null for a record that was never written.
    const Bytes* Record(std::uint8_t slot, std::uint8_t index) const;
    void WriteRecord(std::uint8_t slot, std::uint8_t index, Bytes data);

    /// It takes no other address any more.
    void LockAddress() { _addressLocked = true; }

    bool AddressLocked() const { return _addressLocked; }

    /// It came onto the cable for this record, whatever has become of it.
    bool CameFor(const SlaveRecord& record) const;
    /// It is the device that `record` was made for.
    bool Fits(const SlaveRecord& record) const;

private:
    SlaveRecord _cameFor;
    std::uint16_t _identNumber;
    Bytes _identifiers;
    Bytes _diagnosis;
    Bytes _input;
    Bytes _output;
    bool _echoes = true;
    std::map<std::pair<std::uint8_t, std::uint8_t>, Bytes> _records;
    bool _addressLocked = false;
};

/// What hangs on the cable. It outlives a reset of the master.
class Stations {
public:
    using InputListener = std::function<void(std::uint8_t address, ByteView input)>;

    /// Puts the slaves of the database on the cable. Devices that came for the same records stay as they are.
    void Populate(const Database& database);

    /// Every device, on the cable or taken off it, by its address.
    std::map<std::uint8_t, Station>& All() { return _stations; }

    const std::map<std::uint8_t, Station>& All() const { return _stations; }

    bool IsPresent(std::uint8_t address) const { return !_absent.contains(address); }

    /// The device that answers at `address`, or null.
    Station* Find(std::uint8_t address);
    /// Takes whatever has this address off the cable, or puts it back.
    void SetPresent(std::uint8_t address, bool present);
    /// Nothing has this address, on the cable or taken off it.
    bool Free(std::uint8_t address) const;
    /// The device at `from` answers at `to` from now on; `to` must be free.
    void Move(std::uint8_t from, std::uint8_t to);

    /// Who is told when a master has given a slave other bytes than before; may be empty.
    void SetInputListener(InputListener listener) { _inputListener = std::move(listener); }

    void InputChanged(std::uint8_t address, ByteView input) const {
        if (_inputListener)
            _inputListener(address, input);
    }

private:
    std::map<std::uint8_t, Station> _stations;
    std::set<std::uint8_t> _absent;
    InputListener _inputListener;
};

} // namespace VirtualModule
