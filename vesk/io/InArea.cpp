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
    _mapped = true;
}

bool InArea::Update() {
    if (!_acquired)
        return false;
    const Runs::Found found = _runs.Locate(_shadowBytes);
    if (found == Runs::Found::OUTSIDE)
        WriteSegments(); // which fails
    else if (found == Runs::Found::CHANGED || _mapped)
        WriteRuns();
    else
        return false;
    _acquired = false;
    return true;
}

void InArea::WriteRuns() {
    _runs.Write(*_hostInterface, _shadow);
    if (_mapped)
        for (const auto& segment : _placement.Segments())
            segment->Written();
    _mapped = false;
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
