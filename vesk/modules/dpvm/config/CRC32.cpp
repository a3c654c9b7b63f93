// SPDX-License-Identifier: MIT
#include "vesk/modules/dpvm/config/CRC32.h"

#include "vesk/core/CrcRegister.h"

namespace Vesk::Modules::DPVM::Config {

using Register = CrcRegister<unsigned int, 0x04C11DB7, false>;

std::shared_ptr<CRC32> CRC32::Create() {
    return System::MakeShared<CRC32>();
}

void CRC32::Digest(unsigned char b) {
    Value = Register::Shift(Value, b);
}

void CRC32::Digest(const std::shared_ptr<System::IArray<unsigned char>>& array, int offset, int count) {
    if (count <= 0)
        return;
    System::CheckRange(array.get(), offset, count);
    Value = Register::Shift(Value, array->Data() + offset, static_cast<std::size_t>(count));
}

} // namespace Vesk::Modules::DPVM::Config
