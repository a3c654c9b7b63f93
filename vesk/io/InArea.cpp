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
    : _hostInterface(std::move(hostInterface)), _placement(offset, size) {}

void InArea::MapInputData(unsigned short offset, std::shared_ptr<System::IArray<unsigned char>> src,
                          int srcOffset, int count) {
    _placement.Check(offset, count);
    _placement.Add(InputSegment::Create(_hostInterface, _placement.DpRamOffset(offset), std::move(src),
                                        srcOffset, count));
}

bool InArea::Update() {
    if (!_acquired)
        return false;
    const auto& segments = _placement.Segments();
    if (std::ranges::none_of(segments, [](const auto& segment) { return segment->Updated(); }))
        return false;
    for (const auto& segment : segments)
        segment->Copy();
    _acquired = false;
    return true;
}

} // namespace Vesk::IO
