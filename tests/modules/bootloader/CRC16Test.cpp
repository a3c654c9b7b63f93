// SPDX-License-Identifier: MIT
#include "tests/support/ExpectFailure.h"

#include "vesk/modules/bootloader/CRC16.h"

using System::Array;
using Vesk::Modules::Bootloader::CRC16;

static const auto DIGITS =
    Array<unsigned char>::Create({'x', '1', '2', '3', '4', '5', '6', '7', '8', '9', 'y'});

TEST(CRC16Test, ComputesTheModbusChecksum) {
    const auto crc = CRC16::Create();
    EXPECT_EQ(crc->Value(), 0xFFFF);
    crc->Digest(Array<unsigned char>::Create(0));
    crc->Digest(DIGITS, 11, 0);
    crc->Digest(DIGITS, 3, -1);
    EXPECT_EQ(crc->Value(), 0xFFFF);
    crc->Digest(DIGITS, 1, 9);
    EXPECT_EQ(crc->Value(), 0x4B37);
}

TEST(CRC16Test, TakesBytesOneByOneAsWell) {
    const auto crc = CRC16::Create();
    for (const int b : {0x31, 0x132, 0x33 - 0x100}) // the low eight bits count
        crc->Digest(b);
    crc->Digest(Array<unsigned char>::Create({'4', '5', '6', '7', '8'}));
    crc->Digest('9');
    EXPECT_EQ(crc->Value(), 0x4B37);
}

TEST(CRC16Test, RefusesARangeOutsideTheArray) {
    const auto crc = CRC16::Create();
    ExpectFailure<System::ArgumentOutOfRangeException>(
        "offset (10) + count (2) must not be greater than the length of array (11)",
        [&] { crc->Digest(DIGITS, 10, 2); });
    ExpectFailure<System::ArgumentNullException>("array must not be null", [&] { crc->Digest(nullptr); });
    EXPECT_EQ(crc->Value(), 0xFFFF);
}
