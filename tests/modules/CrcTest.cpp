// SPDX-License-Identifier: MIT
#include "tests/support/ExpectFailure.h"

#include "vesk/modules/bootloader/CRC16.h"
#include "vesk/modules/dpvm/config/CRC32.h"

using Vesk::Modules::Bootloader::CRC16;
using Vesk::Modules::DPVM::Config::CRC32;

/// Expects `check` of "123456789", which is digested as an array and byte by byte.
template <class Crc>
static void ExpectCheck(unsigned int check) {
    const auto array =
        System::Array<unsigned char>::Create({'x', '1', '2', '3', '4', '5', '6', '7', '8', '9', 'y'});
    const auto crc = Crc::Create();
    const auto start = crc->Value;
    crc->Digest(array, 12, 0);
    crc->Digest(array, 3, -1);
    ExpectFailure<System::ArgumentOutOfRangeException>(
        "offset (10) + count (2) must not be greater than the length of array (11)",
        [&] { crc->Digest(array, 10, 2); });
    EXPECT_EQ(crc->Value, start);
    crc->Digest(array, 1, 9);
    EXPECT_EQ(crc->Value, check);

    const auto another = Crc::Create();
    for (const char digit : {'1', '2', '3', '4', '5', '6', '7', '8', '9'})
        another->Digest(static_cast<unsigned char>(digit));
    EXPECT_EQ(another->Value, check);
}

TEST(CrcTest, LeavesTheKnownRegisters) {
    ExpectCheck<CRC16>(0x4B37);
    ExpectCheck<CRC32>(0x0376E6E7);
    const auto crc = CRC16::Create();
    crc->Digest(0x131 - 0x200); // the low eight bits count
    crc->Digest(System::Array<unsigned char>::Create({'2', '3', '4', '5', '6', '7', '8', '9'}));
    EXPECT_EQ(crc->Value, 0x4B37);
}
