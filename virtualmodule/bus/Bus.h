// SPDX-License-Identifier: MIT
#pragma once

#include "virtualmodule/bus/Station.h"
#include "virtualmodule/wires/Message.h"

namespace VirtualModule {

/// The operation modes of a DP master.
enum class OperationMode : std::uint8_t { OFFLINE = 0x00, STOP = 0x40, CLEAR = 0x80, OPERATE = 0xC0 };

/// One bit per station: station n is bit n % 8 of byte n / 8.
using StationList = std::array<std::uint8_t, 16>;

/// What the master reports about itself and its slaves.
struct BusStatus {
    bool online = false;
    OperationMode mode = OperationMode::STOP; // never OFFLINE: off the bus it stands in STOP
    StationList configured{};
    StationList dataTransfer{}; // exchanges data
    StationList diagnostic{};   // should exchange data and does not, or has a diagnosis of its own
    StationList connections{};  // has a Class 1 or Class 2 connection
};

/// The bus as the master works it: the slaves of its database and the devices that really hang there.
///
/// Data is exchanged in CLEAR and OPERATE. In CLEAR the slaves are given zeros. In STOP and OFFLINE nothing
/// is exchanged and the output data stays as it was. A slave that does not exchange data reads as zeros; so
/// does one that is another device than the database says, which refuses its parameters or its configuration.
class Bus {
public:
    /// Highest address on a DP bus; the last one that is no broadcast.
    static constexpr std::uint8_t HIGHEST_ADDRESS = 126;

    Bus(Stations& stations, OperationMode startMode);

    /// Goes onto the bus with the slaves of a complete database.
    void Start(const Database& database);

    bool Running() const { return _running; }

    bool Online() const { return _running && _mode != OperationMode::OFFLINE; }

    /// The master's own address.
    std::uint8_t MasterAddress() const { return _masterAddress; }

    /// Before Start() this is the mode that it will go into.
    void SetMode(OperationMode mode) { _mode = mode; }

    /// Takes a slave into the exchange, or out of it; other addresses are passed over.
    void SetStarted(std::uint8_t address, bool started);
    /// One bus cycle: gives the slaves their input bytes and collects what they give back.
    void Exchange(ByteView input, std::span<std::uint8_t> output);
    BusStatus Status() const;

    /// An error if nobody can be reached at `address`: ADDRESS if nobody should be, RESPONSE if a configured
    /// slave does not answer.
    ErrorCode Reach(std::uint8_t address) const;

    bool Configured(std::uint8_t address) const { return _slaves.contains(address); }

    bool InExchange(std::uint8_t address) const;

    /// What a slave that is there and should exchange data does not accept.
    enum class Refusal : std::uint8_t { NONE, PARAMETERS, CONFIGURATION };

    Refusal RefusalOf(std::uint8_t address) const;

    /// Opens a Class 2 connection; false if the reference is in use.
    bool Connect(std::uint16_t reference, std::uint8_t address);

    /// False if the reference is not in use.
    bool Disconnect(std::uint16_t reference) { return _connections.erase(reference) > 0; }

    /// The device at the other end of a connection, or null; a connection ends when its device leaves the
    /// bus.
    Station* Connected(std::uint16_t reference) const;

    Stations& Devices() { return _stations; }

private:
    struct Slave {
        SlaveRecord record;
        bool started = true;
    };

    const Slave* ShouldExchange(std::uint8_t address) const;
    bool HasDiagnosis(std::uint8_t address) const;
    void Exchange(std::uint8_t address, const Slave& slave, ByteView input, std::span<std::uint8_t> output);
    void DropLostConnections();

    Stations& _stations;
    OperationMode _mode;
    bool _running = false;
    std::uint8_t _masterAddress = 0;
    std::map<std::uint8_t, Slave> _slaves;
    std::map<std::uint16_t, std::uint8_t> _connections; // Class 2: reference to station address
};

} // namespace VirtualModule
