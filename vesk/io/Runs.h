// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/hostinterface/IHostInterface.h"

#include <cstdint>
#include <span>
#include <vector>

namespace Vesk::IO {

/// The segments of a process-data area as a cycle goes through them: neighbours in the area are a run, which
/// is moved in one call, and neighbours in the application's array as well are a piece, which is compared and
/// copied at once. The bytes on the bus and their order are those of the segments.
class Runs {
public:
    struct Run {
        unsigned short dpRamOffset;
        unsigned short offset; // from the start of the area
        int count;
        std::size_t firstPiece, pieceCount;
        std::size_t firstSegment, segmentCount; // in the order of their mapping
    };

    /// Appends a segment: `count` bytes of `array`, which the segment keeps, from `arrayOffset` on, at
    /// `dpRamOffset`, which is `offset` from the start of the area.
    void Add(unsigned short dpRamOffset, unsigned short offset, System::IArray<unsigned char>& array,
             int arrayOffset, int count);

    enum class Found : std::uint8_t { SAME, CHANGED, OUTSIDE };

    /// Asks each array once for its length and its place: OUTSIDE if a segment has left its array, otherwise
    /// CHANGED if a byte differs from `image`, that of the whole area. Nothing is compared after the first.
    Found Locate(const unsigned char* image);

    /// Writes the located bytes by way of the image of the whole area.
    void Write(HostInterface::IHostInterface& dpRam,
               const std::shared_ptr<System::IArray<unsigned char>>& image);

    /// Copies the bytes of the arrays, which the last exchange has left there, into the image of the whole
    /// area. A piece that has left its array is left out.
    void Collect(unsigned char* image);

    /// Writes the image of the whole area as it is.
    void WriteImage(HostInterface::IHostInterface& dpRam,
                    const std::shared_ptr<System::IArray<unsigned char>>& image) const;

    /// Reads one run likewise; false, with nothing read, if one of its segments has left its array.
    bool Read(const Run& run, HostInterface::IHostInterface& dpRam,
              const std::shared_ptr<System::IArray<unsigned char>>& image);

    std::vector<Run>::const_iterator begin() const { return _runs.begin(); }

    std::vector<Run>::const_iterator end() const { return _runs.end(); }

private:
    struct Piece { // small, for a cycle goes through all of them
        System::IArray<unsigned char>* array;
        unsigned char* bytes;     // the first in the array, once it is located
        unsigned int arrayOffset; // a negative one is behind any array's end
        unsigned int count;
        unsigned int offset; // from the start of the area

        bool Locate() {
            if (std::uint64_t{arrayOffset} + count > static_cast<unsigned int>(array->Count()))
                return false;
            bytes = array->Data() + arrayOffset;
            return true;
        }
    };

    std::span<Piece> PiecesOf(const Run& run) { return {_pieces.data() + run.firstPiece, run.pieceCount}; }

    std::vector<Run> _runs;
    std::vector<Piece> _pieces;
    std::size_t _segments = 0;
};

} // namespace Vesk::IO
