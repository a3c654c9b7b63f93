// SPDX-License-Identifier: MIT
#include "vesk/io/OutArea.h"

namespace Vesk::IO {

std::shared_ptr<OutArea> OutArea::Create(unsigned short offset, unsigned short size,
                                         std::shared_ptr<HostInterface::IHostInterface> hostInterface) {
    if (!hostInterface)
        System::_throw_argument_null_exception("hostInterface");
    return System::MakeShared<OutArea>(offset, size, std::move(hostInterface));
}

OutArea::OutArea(unsigned short offset, unsigned short size,
                 std::shared_ptr<HostInterface::IHostInterface> hostInterface)
    : _hostInterface(std::move(hostInterface)),
      _placement(offset, size),
      _image(System::Array<unsigned char>::Create(size)) {}

void OutArea::MapOutputData(unsigned short offset, std::shared_ptr<System::IArray<unsigned char>> dst,
                            int dstOffset, int count) {
    _placement.Check(offset, count);
    const unsigned short dpRamOffset = _placement.DpRamOffset(offset);
    _placement.Add(OutputSegment::Create(_hostInterface, dpRamOffset, dst, dstOffset, count));
    _runs.Add(dpRamOffset, offset, *dst, dstOffset, count);
}

void OutArea::Update() {
    const auto& segments = _placement.Segments();
    for (const Runs::Run& run : _runs) {
        if (run.segmentCount > 1 && _runs.Read(run, *_hostInterface, _image))
            continue;
        // A segment of its own, or all up to the one that has left its array and says so.
        for (std::size_t i = 0; i < run.segmentCount; ++i)
            segments[run.firstSegment + i]->Copy();
    }
}

} // namespace Vesk::IO
