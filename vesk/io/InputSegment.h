// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/hostinterface/IHostInterface.h"

namespace Vesk::IO {

/// One piece of an application's array that is written into the input area.
class InputSegment : public System::Object {
public:
    /// Maps `count` bytes of `src` from `srcOffset` on to DPRAM `dpRamOffset`. ArgumentNullException without
    /// a host interface or an array, ArgumentOutOfRangeException for a negative count.
    static std::shared_ptr<InputSegment> Create(std::shared_ptr<HostInterface::IHostInterface> hostInterface,
                                                unsigned short dpRamOffset,
                                                std::shared_ptr<System::IArray<unsigned char>> src,
                                                int srcOffset, int count);

    /// Keeps the bytes last written, none yet, in `shadow` from `shadowOffset` on: an area holds those of all
    /// its segments in one piece.
    void KeepShadowIn(std::shared_ptr<System::IArray<unsigned char>> shadow, int shadowOffset);

    /// Whether a mapped byte differs from what was last written; a new segment always does.
    /// ArgumentOutOfRangeException for a range that leaves the array.
    bool Updated();

    /// Writes the mapped bytes into the DPRAM. ArgumentOutOfRangeException for a range that leaves the array.
    void Copy();

    /// The area has written the mapped bytes, and its shadow has them.
    void Written() { _updated = false; }

    unsigned short DpRamOffset() const { return _dpRamOffset; }

    int Count() const { return _count; }

    System::String ToString() const override;

protected:
    InputSegment(std::shared_ptr<HostInterface::IHostInterface> hostInterface, unsigned short dpRamOffset,
                 std::shared_ptr<System::IArray<unsigned char>> src, int srcOffset, int count);

private:
    const unsigned char* Source() const;

    std::shared_ptr<HostInterface::IHostInterface> _hostInterface;
    unsigned short _dpRamOffset;
    std::shared_ptr<System::IArray<unsigned char>> _src;
    std::shared_ptr<System::IArray<unsigned char>> _shadow; // the bytes last written, from _shadowOffset on
    int _shadowOffset = 0;
    unsigned char* _shadowBytes; // the first of them
    int _srcOffset;
    int _count;
    bool _updated = true;
};

} // namespace Vesk::IO
