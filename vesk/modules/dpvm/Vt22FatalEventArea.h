// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/hostinterface/IHostInterface.h"
#include "vesk/modules/dpvm/IVt22FatalEventInfo.h"

namespace Vesk::Modules::DPVM {

/// The master module's fatal-event block.
class Vt22FatalEventArea : public System::Object {
public:
    /// The block at DPRAM `offset`. ArgumentNullException without a host interface. Touches no DPRAM.
    static std::shared_ptr<Vt22FatalEventArea>
    Create(unsigned short offset, std::shared_ptr<HostInterface::IHostInterface> hostInterface);

    /// Reads the block.
    std::shared_ptr<IVt22FatalEventInfo> GetFatalEventInfo();

protected:
    Vt22FatalEventArea(unsigned short offset, std::shared_ptr<HostInterface::IHostInterface> hostInterface);

private:
    std::shared_ptr<System::IArray<unsigned char>> ReadBytes(int field, int count);

    unsigned short _offset;
    std::shared_ptr<HostInterface::IHostInterface> _hostInterface;
};

} // namespace Vesk::Modules::DPVM
