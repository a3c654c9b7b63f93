// SPDX-License-Identifier: MIT
#include "tests/support/ExpectFailure.h"

#include "vesk/core/FormatArray.h"

using namespace System;

TEST(FormatArray, WritesEachElementWithPrefixWidthAndBase) {
    const auto bytes = Array<unsigned char>::Create({0, 10, 255});
    const auto words = Array<unsigned short>::Create({1, 0xFFFF});
    const std::pair<String, const char*> cases[] = {
        {Vesk::FormatArray(bytes, 0, 3, nullptr, 2, 16), "[00, 0a, ff]"},
        {Vesk::FormatArray(bytes, 1, 2, "0x", 2, 16), "[0x0a, 0xff]"},
        {Vesk::FormatArray(bytes, 0, 3, nullptr, 0, 10), "[0, 10, 255]"},
        {Vesk::FormatArray(bytes, 2, 1, "b", 10, 2), "[b0011111111]"},
        {Vesk::FormatArray(bytes, 3, 0, "0x", 2, 16), "[]"},
        {Vesk::FormatArray(words, 0, 2, "0x", 4, 16), "[0x0001, 0xffff]"},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(text.Value(), expected);
    ExpectFailure<ArgumentOutOfRangeException>("index (3) must not be greater than count - 1 (2)", [&] {
        return Vesk::FormatArray(bytes, 2, 2, nullptr, 2, 16);
    });
}
