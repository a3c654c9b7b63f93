// SPDX-License-Identifier: MIT
#include "vesk/io/InputSegment.h"

#include "vesk/core/TextOf.h"

#include <cstring>

namespace Vesk::IO {

std::shared_ptr<InputSegment>
InputSegment::Create(std::shared_ptr<HostInterface::IHostInterface> hostInterface, unsigned short dpRamOffset,
                     std::shared_ptr<System::IArray<unsigned char>> src, int srcOffset, int count) {
    if (!hostInterface)
        System::_throw_argument_null_exception("hostInterface");
    if (!src)
        System::_throw_argument_null_exception("src");
    return System::MakeShared<InputSegment>(std::move(hostInterface), dpRamOffset, std::move(src), srcOffset,
                                            count);
}

InputSegment::InputSegment(std::shared_ptr<HostInterface::IHostInterface> hostInterface,
                           unsigned short dpRamOffset, std::shared_ptr<System::IArray<unsigned char>> src,
                           int srcOffset, int count)
    : _hostInterface(std::move(hostInterface)),
      _dpRamOffset(dpRamOffset),
      _src(std::move(src)),
      _shadow(System::Array<unsigned char>::Create(count)),
      _shadowBytes(_shadow->Data()),
      _srcOffset(srcOffset),
      _count(count) {}

void InputSegment::KeepShadowIn(std::shared_ptr<System::IArray<unsigned char>> shadow, int shadowOffset) {
    System::CheckRange(shadow.get(), shadowOffset, _count);
    _shadow = std::move(shadow);
    _shadowOffset = shadowOffset;
    _shadowBytes = _shadow->Data() + shadowOffset;
}

bool InputSegment::Updated() {
    if (!_updated && _count > 0)
        _updated = std::memcmp(_shadowBytes, Source(), static_cast<std::size_t>(_count)) != 0;
    return _updated;
}

void InputSegment::Copy() {
    if (_count > 0)
        std::memcpy(_shadowBytes, Source(), static_cast<std::size_t>(_count));
    _hostInterface->Write(_dpRamOffset, _shadow, _shadowOffset, _count);
    _updated = false;
}

const unsigned char* InputSegment::Source() const {
    if (_srcOffset < 0)
        System::_throw_not_less_exception(_srcOffset, 0, "srcOffset", "zero");
    if (static_cast<std::int64_t>(_srcOffset) + _count > _src->Count())
        System::_throw_range_exception(_srcOffset, _count, _src->Count(), "srcOffset", "count", "src");
    return _src->Data() + _srcOffset;
}

System::String InputSegment::ToString() const {
    return TextOf("InputSegment dpRamOffset: ", _dpRamOffset, ", src: ", _srcOffset, ", count: ", _count);
}

} // namespace Vesk::IO
