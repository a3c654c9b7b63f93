// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/hostinterface/IHostInterface.h"
#include "vesk/hostinterface/MasterDpRam.h"
#include "vesk/modules/dpvm/Vt22VelmoEvent.h"

namespace Vesk::Modules::DPVM {

/// Reads the master module's indication register. Its bits are plain: every non-zero read is an event.
class Vt22VelmoIndication : public System::Object {
public:
    /// The register at `offset` and the byte at `companionOffset` that is read after it each time.
    /// ArgumentNullException without a host interface. Touches no DPRAM.
    static std::shared_ptr<Vt22VelmoIndication>
    Create(unsigned short offset, unsigned short companionOffset,
           std::shared_ptr<HostInterface::IHostInterface> hostInterface);

    /// Reads the register, then its companion, whose value means nothing.
    void UpdateDpRam();

    /// Reads the register; its event, or null when it reads 0. Events of equal content are one shared
    /// instance, so that a cycle allocates nothing.
    const std::shared_ptr<Vt22VelmoEvent>& Update();

    /// "VelmoInd:" and the names of the bits that are set.
    static System::String ToString(const Vt22VelmoIndication_t* indication);
    using System::Object::ToString;

protected:
    Vt22VelmoIndication(unsigned short offset, unsigned short companionOffset,
                        std::shared_ptr<HostInterface::IHostInterface> hostInterface);

private:
    unsigned short _offset;
    unsigned short _companionOffset;
    std::shared_ptr<HostInterface::IHostInterface> _hostInterface;
    Vt22VelmoIndication_t _indication; // the last value read
};

} // namespace Vesk::Modules::DPVM
