// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/core/TextOf.h"
#include "vesk/core/VeskException.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <vector>

namespace Vesk::IO {

/// The segments mapped onto one process-data area: they lie inside it and share no byte.
template <class Segment>
class Placement {
public:
    /// An area of `size` bytes from DPRAM `baseOffset` on, without segments.
    Placement(unsigned short baseOffset, unsigned short size) : _baseOffset(baseOffset), _size(size) {}

    /// Throws ConfigException unless `count` bytes from area offset `offset` on are inside and free.
    void Check(unsigned short offset, int count) const;

    /// Adds a segment that passed Check.
    void Add(std::shared_ptr<Segment> segment);

    /// Whether the byte at area offset `offset` belongs to a segment.
    bool Has(unsigned short offset) const {
        return std::ranges::any_of(_segments, [&](const auto& segment) {
            const Range range = RangeOf(*segment);
            return range.start <= offset && offset < range.end;
        });
    }

    /// DPRAM offset of the area offset `offset`.
    unsigned short DpRamOffset(unsigned short offset) const {
        return static_cast<unsigned short>(_baseOffset + offset);
    }

    const std::vector<std::shared_ptr<Segment>>& Segments() const { return _segments; }

    /// Bytes of all segments together.
    unsigned short TotalMapped() const { return _totalMapped; }

    /// The largest area offset behind the last byte of a segment.
    unsigned short HighestEnd() const { return _highestEnd; }

private:
    struct Range {
        std::int64_t start;
        std::int64_t end;
    };

    Range RangeOf(const Segment& segment) const {
        const auto start = static_cast<unsigned short>(segment.DpRamOffset() - _baseOffset);
        return {start, static_cast<std::int64_t>(start) + segment.Count()};
    }

    template <class... Pieces>
    [[noreturn]] static void Refuse(const Pieces&... why) {
        System::_env_throw(ConfigException::Create(TextOf(why...)));
    }

    unsigned short _baseOffset;
    unsigned short _size;
    std::vector<std::shared_ptr<Segment>> _segments; // in the order of their mapping
    unsigned short _totalMapped = 0;
    unsigned short _highestEnd = 0;
};

template <class Segment>
void Placement<Segment>::Check(unsigned short offset, int count) const {
    const std::int64_t end = static_cast<std::int64_t>(offset) + count;
    if (end > _size)
        Refuse("Segment mapped outside area\n", offset, " + ", count, " > ", _size);
    for (const auto& segment : _segments) {
        const Range other = RangeOf(*segment);
        if (other.start <= offset && offset < other.end)
            Refuse("Start of segment within existing segment\n", offset, " >= ", other.start, " && ", offset,
                   " < ", other.end);
        if (other.start < end && end <= other.end)
            Refuse("End of segment within existing segment\n", end, " > ", other.start, " && ", end,
                   " <= ", other.end);
        if (offset <= other.start && other.end <= end)
            Refuse("Segment wraps around existing segment\n", offset, " <= ", other.start, " && ", end,
                   " >= ", other.end);
    }
}

template <class Segment>
void Placement<Segment>::Add(std::shared_ptr<Segment> segment) {
    const Range range = RangeOf(*segment);
    const int count = segment->Count();
    _segments.push_back(std::move(segment));
    _totalMapped = static_cast<unsigned short>(_totalMapped + count);
    if (range.end > _highestEnd)
        _highestEnd = static_cast<unsigned short>(range.end);
}

} // namespace Vesk::IO
