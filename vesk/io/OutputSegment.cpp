// SPDX-License-Identifier: MIT
#include "vesk/io/OutputSegment.h"

#include "vesk/core/TextOf.h"

namespace Vesk::IO {

std::shared_ptr<OutputSegment>
OutputSegment::Create(std::shared_ptr<HostInterface::IHostInterface> hostInterface,
                      unsigned short dpRamOffset, std::shared_ptr<System::IArray<unsigned char>> dst,
                      int dstOffset, int count) {
    if (!hostInterface)
        System::_throw_argument_null_exception("hostInterface");
    if (!dst)
        System::_throw_argument_null_exception("dst");
    if (count < 0)
        System::_throw_not_less_exception(count, 0, "size", "zero");
    return System::MakeShared<OutputSegment>(std::move(hostInterface), dpRamOffset, std::move(dst), dstOffset,
                                             count);
}

OutputSegment::OutputSegment(std::shared_ptr<HostInterface::IHostInterface> hostInterface,
                             unsigned short dpRamOffset, std::shared_ptr<System::IArray<unsigned char>> dst,
                             int dstOffset, int count)
    : _dpRamOffset(dpRamOffset),
      _dstOffset(dstOffset),
      _count(count),
      _hostInterface(std::move(hostInterface)),
      _dst(std::move(dst)) {}

void OutputSegment::Copy() {
    _hostInterface->Read(_dpRamOffset, _dst, _dstOffset, _count);
}

System::String OutputSegment::ToString() const {
    return TextOf("OutputSegment dpRamOffset: ", _dpRamOffset, ", dst: ", _dstOffset, ", count: ", _count);
}

} // namespace Vesk::IO
