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
    : _hostInterface(std::move(hostInterface)), _placement(offset, size) {}

void OutArea::MapOutputData(unsigned short offset, std::shared_ptr<System::IArray<unsigned char>> dst,
                            int dstOffset, int count) {
    _placement.Check(offset, count);
    _placement.Add(OutputSegment::Create(_hostInterface, _placement.DpRamOffset(offset), std::move(dst),
                                         dstOffset, count));
}

void OutArea::Update() {
    for (const auto& segment : _placement.Segments())
        segment->Copy();
}

} // namespace Vesk::IO
