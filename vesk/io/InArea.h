// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/io/InputSegment.h"
#include "vesk/io/Placement.h"
#include "vesk/io/Runs.h"

#include <vector>

namespace Vesk::IO {

/// The part of the DPRAM into which the host writes the process data that go to the bus. It is written, all
/// segments together, when the module has handed it over and a mapped byte has changed.
class InArea : public System::Object {
public:
    /// `size` bytes from DPRAM `offset` on. ArgumentNullException without a host interface.
    static std::shared_ptr<InArea> Create(unsigned short offset, unsigned short size,
                                          std::shared_ptr<HostInterface::IHostInterface> hostInterface);

    /// Maps `count` bytes of `src` from `srcOffset` on to `offset`, counted from the start of the area.
    /// ConfigException for a place outside the area or one that is taken, ArgumentNullException without an
    /// array, ArgumentOutOfRangeException for a negative count; nothing is mapped then.
    void MapInputData(unsigned short offset, std::shared_ptr<System::IArray<unsigned char>> src,
                      int srcOffset, int count);

    /// The module has handed the area to the host.
    void Acquired() { _acquired = true; }

    /// Writes the area if it is the host's and a mapped byte has changed; true when it has been written and
    /// is to be released. ArgumentOutOfRangeException for a segment that leaves its array.
    bool Update();

    /// From the next write on the bits of `mask` in the byte at `offset`, counted from the start of the area,
    /// are those of `value`, whatever is in its array, until the byte is released. They come beside those
    /// that are held of it already. ArgumentOutOfRangeException for a byte that is not mapped.
    void Hold(unsigned short offset, unsigned char value, unsigned char mask = 0xFF);

    /// The byte is the array's again; does nothing for one that is not held.
    void Release(unsigned short offset);

    /// Copies the bytes last written, HighestEnd() from the start of the area on; 0 where nothing is mapped.
    void CopyWritten(unsigned char* to) const;

    /// Bytes of all segments together.
    unsigned short TotalMapped() const { return _placement.TotalMapped(); }

    /// The largest offset, counted from the start of the area, behind the last byte of a segment.
    unsigned short HighestEnd() const { return _placement.HighestEnd(); }

protected:
    InArea(unsigned short offset, unsigned short size,
           std::shared_ptr<HostInterface::IHostInterface> hostInterface);

private:
    struct HeldByte {
        unsigned short offset;
        unsigned char value; // 0 outside of the mask
        unsigned char mask;
    };

    void WriteRuns();
    bool WriteSpecially(Runs::Found found);
    void WriteSegments();
    bool TakeHeld();

    bool _acquired = false;
    std::shared_ptr<HostInterface::IHostInterface> _hostInterface;
    Placement<InputSegment> _placement;
    Runs _runs;
    bool _mapped = false;                                   // since the last write
    std::shared_ptr<System::IArray<unsigned char>> _shadow; // the bytes last written, of the whole area
    unsigned char* _shadowBytes;                            // the first of them
    bool _special = false;                                  // there is more to look at than the arrays
    std::vector<HeldByte> _held;                            // in no order
    std::vector<unsigned short>
        _heldPlace;                   // of each offset: 1 for the first of _held, 0 where nothing is held
    std::vector<unsigned char> _next; // what is to be written while bytes are held
};

} // namespace Vesk::IO
