// SPDX-License-Identifier: MIT
#include "vesk/io/InArea.h"

#include <algorithm>

namespace Vesk::IO {

std::shared_ptr<InArea> InArea::Create(unsigned short offset, unsigned short size,
                                       std::shared_ptr<HostInterface::IHostInterface> hostInterface) {
    if (!hostInterface)
        System::_throw_argument_null_exception("hostInterface");
    return System::MakeShared<InArea>(offset, size, std::move(hostInterface));
}

InArea::InArea(unsigned short offset, unsigned short size,
               std::shared_ptr<HostInterface::IHostInterface> hostInterface)
    : _hostInterface(std::move(hostInterface)),
      _placement(offset, size),
      _shadow(System::Array<unsigned char>::Create(size)),
      _shadowBytes(_shadow->Data()) {}

void InArea::MapInputData(unsigned short offset, std::shared_ptr<System::IArray<unsigned char>> src,
                          int srcOffset, int count) {
    _placement.Check(offset, count);
    const unsigned short dpRamOffset = _placement.DpRamOffset(offset);
    auto segment = InputSegment::Create(_hostInterface, dpRamOffset, src, srcOffset, count);
    segment->KeepShadowIn(_shadow, offset);
    _placement.Add(std::move(segment));
    _runs.Add(dpRamOffset, offset, *src, srcOffset, count);
    _mapped = _special = true;
}

bool InArea::Update() {
    if (!_acquired)
        return false;
    const Runs::Found found = _runs.Locate(_shadowBytes);
    if (_special || found == Runs::Found::OUTSIDE) {
        if (!WriteSpecially(found))
            return false;
    } else if (found == Runs::Found::CHANGED)
        WriteRuns();
    else
        return false;
    _acquired = false;
    return true;
}

void InArea::WriteRuns() {
    _runs.Write(*_hostInterface, _shadow);
}

/// Whether it has written: all segments after a mapping, and those with held bytes where they differ.
bool InArea::WriteSpecially(Runs::Found found) {
    if (found == Runs::Found::OUTSIDE)
        WriteSegments(); // which fails
    else if (_held.empty())
        WriteRuns();
    else if (TakeHeld() || _mapped)
        _runs.WriteImage(*_hostInterface, _shadow);
    else
        return false;
    if (_mapped)
        for (const auto& segment : _placement.Segments())
            segment->Written();
    _mapped = false;
    _special = !_held.empty();
    return true;
}

/// The arrays' bytes and the held ones into the shadow; whether one of them is new there.
bool InArea::TakeHeld() {
    _runs.Collect(_next.data());
    for (const HeldByte& held : _held)
        _next[held.offset] = static_cast<unsigned char>((_next[held.offset] & ~held.mask) | held.value);
    if (std::equal(_next.begin(), _next.end(), _shadowBytes))
        return false;
    std::copy(_next.begin(), _next.end(), _shadowBytes);
    return true;
}

void InArea::Hold(unsigned short offset, unsigned char value, unsigned char mask) {
    if (!_placement.Has(offset))
        System::_env_throw(System::ArgumentOutOfRangeException::Create(
            TextOf("offset ", offset, " of the input area is not mapped")));
    _next.resize(static_cast<std::size_t>(_shadow->Count()));
    _heldPlace.resize(_next.size());
    if (_heldPlace[offset] == 0) {
        _held.push_back({offset, 0, 0});
        _heldPlace[offset] = static_cast<unsigned short>(_held.size());
    }
    HeldByte& held = _held[_heldPlace[offset] - 1U];
    held.value = static_cast<unsigned char>((held.value & ~mask) | (value & mask));
    held.mask |= mask;
    _special = true;
}

void InArea::Release(unsigned short offset) {
    if (offset >= _heldPlace.size() || _heldPlace[offset] == 0)
        return;
    const HeldByte last = _held.back(); // comes to its place
    _heldPlace[last.offset] = _heldPlace[offset];
    _held[_heldPlace[offset] - 1U] = last;
    _heldPlace[offset] = 0;
    _held.pop_back();
}

void InArea::CopyWritten(unsigned char* to) const {
    std::copy_n(_shadowBytes, HighestEnd(), to);
}

/// One after the other where the first byte has changed, up to the segment that has left its array and says
/// so.
void InArea::WriteSegments() {
    const auto& segments = _placement.Segments();
    static_cast<void>(std::ranges::any_of(segments, [](const auto& segment) { return segment->Updated(); }));
    for (const auto& segment : segments)
        segment->Copy();
}

} // namespace Vesk::IO
