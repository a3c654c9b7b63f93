// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/io/OutputSegment.h"
#include "vesk/io/Placement.h"
#include "vesk/io/Runs.h"

namespace Vesk::IO {

/// The part of the DPRAM in which the module leaves the process data that came from the bus.
class OutArea : public System::Object {
public:
    /// `size` bytes from DPRAM `offset` on. ArgumentNullException without a host interface.
    static std::shared_ptr<OutArea> Create(unsigned short offset, unsigned short size,
                                           std::shared_ptr<HostInterface::IHostInterface> hostInterface);

    /// Maps `count` bytes from `offset`, counted from the start of the area, to `dst` from `dstOffset` on.
    /// ConfigException for a place outside the area or one that is taken, ArgumentNullException without an
    /// array, ArgumentOutOfRangeException for a negative count; nothing is mapped then.
    void MapOutputData(unsigned short offset, std::shared_ptr<System::IArray<unsigned char>> dst,
                       int dstOffset, int count);

    /// Reads every segment, in the order of their mapping, into its array. ArgumentOutOfRangeException for a
    /// segment that leaves its array.
    void Update();

    /// Copies what the arrays have, HighestEnd() bytes from the start of the area on; bytes where nothing is
    /// mapped stay as they are.
    void CopyRead(unsigned char* to) { _runs.Collect(to); }

    /// Bytes of all segments together.
    unsigned short TotalMapped() const { return _placement.TotalMapped(); }

    /// The largest offset, counted from the start of the area, behind the last byte of a segment.
    unsigned short HighestEnd() const { return _placement.HighestEnd(); }

protected:
    OutArea(unsigned short offset, unsigned short size,
            std::shared_ptr<HostInterface::IHostInterface> hostInterface);

private:
    std::shared_ptr<HostInterface::IHostInterface> _hostInterface;
    Placement<OutputSegment> _placement;
    Runs _runs;
    std::shared_ptr<System::IArray<unsigned char>> _image; // of the whole area, for runs of several pieces
};

} // namespace Vesk::IO
