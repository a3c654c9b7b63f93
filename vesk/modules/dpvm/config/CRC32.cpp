// SPDX-License-Identifier: MIT
#include "vesk/modules/dpvm/config/CRC32.h"

namespace Vesk::Modules::DPVM::Config {

static constexpr unsigned int POLYNOMIAL = 0x04C11DB7;

static unsigned int Shifted(unsigned int value, unsigned char b) {
    for (int round = 0; round < 8; ++round) {
        const bool differ = ((value >> 24 ^ b) & 0x80) != 0;
        value = value << 1 ^ (differ ? POLYNOMIAL : 0);
        b = static_cast<unsigned char>(b << 1);
    }
    return value;
}

std::shared_ptr<CRC32> CRC32::Create() {
    return System::MakeShared<CRC32>();
}

void CRC32::Digest(unsigned char b) {
    Value = Shifted(Value, b);
}

void CRC32::Digest(const std::shared_ptr<System::IArray<unsigned char>>& array, int offset, int count) {
    if (count <= 0)
        return;
    const auto bytes = System::ArraySegment<unsigned char>::Create(array, offset, count);
    const unsigned char* const first = bytes->Data();
    for (int i = 0; i < count; ++i)
        Value = Shifted(Value, first[i]);
}

} // namespace Vesk::Modules::DPVM::Config
