// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/handshake/VelmoEvent.h"
#include "vesk/hostinterface/BootloaderDpRam.h"
#include "vesk/hostinterface/IHostInterface.h"

namespace Vesk::Handshake {

/// The host's view of the module's indication register in the generic handshake: reads it until it is stable
/// and turns each change into an event.
class VelmoIndication : public System::Object {
public:
    /// The register at DPRAM `offset`, taken to be 0 so far; touches no DPRAM. ArgumentNullException without
    /// a host interface.
    static std::shared_ptr<VelmoIndication>
    Create(unsigned short offset, std::shared_ptr<HostInterface::IHostInterface> hostInterface);

    /// Reads the register once, right after power-on. InvalidOperationException when it is not 0.
    void HandleBootEvent();

    /// Reads the register and returns what has changed since the last event; null when nothing has.
    /// InvalidOperationException when the module has dropped its initialised flag.
    std::shared_ptr<VelmoEvent> Update();

    /// Reads the register, pair by pair, until both reads of a pair agree: the module may change it while it
    /// is being read.
    void UpdateDpRam();

    /// "VelmoInd:" and the labels of the bits that are set.
    static System::String ToString(const VelmoIndication_t* indication);
    using System::Object::ToString;

protected:
    VelmoIndication(unsigned short offset, std::shared_ptr<HostInterface::IHostInterface> hostInterface);

private:
    unsigned short _offset;
    std::shared_ptr<HostInterface::IHostInterface> _hostInterface;
    VelmoIndication_t _previous; // what the last event was made of
    VelmoIndication_t _current;  // what was read last
};

} // namespace Vesk::Handshake
