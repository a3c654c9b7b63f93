// SPDX-License-Identifier: MIT
#include "tests/support/ExpectFailure.h"

#include "vesk/core/ErrorStrings.h"
#include "vesk/core/FormatArray.h"

using namespace Vesk;

// Those that no record, file or message of the mailbox says.
TEST(Texts, AreWordedExactly) {
    const auto bytes = System::Array<unsigned char>::Create({0, 10, 255});
    const auto words = System::Array<unsigned short>::Create({1, 0xFFFF});
    const std::pair<System::String, const char*> cases[] = {
        {ErrorStrings::GreaterThan("count", 7, "limit", 5), "count (7) > limit (5)"},
        {ErrorStrings::LessThan("x", 4294967295u, 0), "x (4294967295) < 0"},
        {ErrorStrings::LessThan("x", 3, "least", 4), "x (3) < least (4)"},
        {FormatArray(bytes, 2, 1, "b", 10, 2), "[b0011111111]"},
        {FormatArray(bytes, 3, 0, "0x", 2, 16), "[]"},
        {FormatArray(words, 0, 2, "0x", 4, 16), "[0x0001, 0xffff]"},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(text.Value(), expected);
}
