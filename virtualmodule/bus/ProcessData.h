// SPDX-License-Identifier: MIT
#pragma once

#include "virtualmodule/bus/Bus.h"
#include "virtualmodule/wires/Board.h"

namespace VirtualModule {

/// The two process-data areas of the master and the status section in front of the output area. Each area
/// belongs to one side at a time: the module hands it over with an interrupt, the host releases it with its
/// answer. Nothing is handed over before the module is initialised; then the input area whenever the module
/// has it, the output area whenever something in it has changed.
class ProcessData {
public:
    ProcessData(Board& board, Bus& bus);
    virtual ~ProcessData() = default;
    ProcessData(const ProcessData&) = delete;
    ProcessData& operator=(const ProcessData&) = delete;

    /// One bus cycle with what the host last released.
    void Exchange();
    /// Hands the input area over if it is due; true when it did.
    bool HandOverInput();
    /// Hands the output area over if something changed; true when it did.
    bool HandOverOutput();
    /// The host gave the input area back.
    void InputReleased();
    /// The host gave the output area back.
    void OutputReleased();

protected:
    /// Writes what has changed since the last time; what it is, for the out-area indication register.
    virtual unsigned WriteChanges();

private:
    std::uint16_t WriteModuleStatus(const BusStatus& status);
    std::uint16_t WriteFieldbusStatus(const BusStatus& status);
    std::uint16_t WriteOutputData();

    DpRam& _dpRam;
    Bus& _bus;
    Watch& _watch;
    bool _inputHandedOver = false;
    bool _outputHandedOver = false;
    Bytes _input;         // what the host last wrote
    Bytes _output;        // what the slaves give
    Bytes _writtenOutput; // what the area holds; empty before the first hand-over
    std::optional<BusStatus> _reported;
};

} // namespace VirtualModule
