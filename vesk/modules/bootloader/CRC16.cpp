// SPDX-License-Identifier: MIT
#include "vesk/modules/bootloader/CRC16.h"

namespace Vesk::Modules::Bootloader {

using System::IArray;

std::shared_ptr<CRC16> CRC16::Create() {
    return System::MakeShared<CRC16>();
}

void CRC16::Digest(const std::shared_ptr<IArray<unsigned char>>& array, int offset, int count) {
    if (count <= 0)
        return;
    const auto bytes = System::ArraySegment<unsigned char>::Create(array, offset, count);
    Value = Register::Shift(Value, bytes->Data(), static_cast<std::size_t>(count));
}

void CRC16::Digest(const std::shared_ptr<IArray<unsigned char>>& array) {
    if (!array)
        System::_throw_argument_null_exception("array");
    Digest(array, 0, array->Count());
}

} // namespace Vesk::Modules::Bootloader
