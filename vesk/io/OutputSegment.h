// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/hostinterface/IHostInterface.h"

namespace Vesk::IO {

/// One piece of the output area that is read into an application's array.
class OutputSegment : public System::Object {
public:
    /// Maps `count` bytes from DPRAM `dpRamOffset` on to `dst` from `dstOffset` on. ArgumentNullException
    /// without a host interface or an array, ArgumentOutOfRangeException for a negative count.
    static std::shared_ptr<OutputSegment> Create(std::shared_ptr<HostInterface::IHostInterface> hostInterface,
                                                 unsigned short dpRamOffset,
                                                 std::shared_ptr<System::IArray<unsigned char>> dst,
                                                 int dstOffset, int count);

    /// Reads the mapped bytes. ArgumentOutOfRangeException for a range that leaves the array.
    void Copy();

    unsigned short DpRamOffset() const { return _dpRamOffset; }

    int Count() const { return _count; }

    System::String ToString() const override;

protected:
    OutputSegment(std::shared_ptr<HostInterface::IHostInterface> hostInterface, unsigned short dpRamOffset,
                  std::shared_ptr<System::IArray<unsigned char>> dst, int dstOffset, int count);

private:
    unsigned short _dpRamOffset;
    int _dstOffset;
    int _count;
    std::shared_ptr<HostInterface::IHostInterface> _hostInterface;
    std::shared_ptr<System::IArray<unsigned char>> _dst;
};

} // namespace Vesk::IO
