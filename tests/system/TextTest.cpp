// SPDX-License-Identifier: MIT
#include "tests/support/ExpectFailure.h"

#include "vesk/system/Convert.h"
#include "vesk/system/TimeSpan.h"

#include <cstdint>
#include <limits>

using namespace System;

static constexpr auto MOST = std::numeric_limits<std::uint64_t>::max();

TEST(String, NullIsNotEmpty) {
    const String null = nullptr;
    const String empty = "";
    EXPECT_TRUE(null.IsNull() && String().IsNull() && String(static_cast<const char*>(nullptr)).IsNull());
    EXPECT_TRUE(null == String() && empty == "" && !empty.IsNull());
    EXPECT_FALSE(null == empty || empty == null || String("a") == String(std::string("a\0", 2)));
    ExpectFailure<NullReferenceException>("string is null", [&] { return null.Value(); });
    for (const auto& [width, padded] : {std::pair(-1, "ab"), {2, "ab"}, {3, "0ab"}, {5, "000ab"}})
        EXPECT_EQ(String("ab").PadLeft(width, '0').Value(), padded) << width;
}

TEST(Convert, WritesAnyBaseAndReadsDigitsAndNothingElse) {
    EXPECT_EQ(Convert::ToString(0xDEAD, 16).Value(), "dead");
    EXPECT_EQ(Convert::ToString(MOST, 2).Value(), std::string(64, '1'));
    EXPECT_EQ(Convert::ToUInt64("0000000000000000dEaD", 16), 0xDEADu);
    EXPECT_EQ(Convert::ToUInt64("ffffffffffffffff", 16), MOST);
    using namespace std::literals;
    for (const auto& text : {"1\0"s, ""s, " 1"s, "1 "s, "-1"s, "+1"s, "0x1"s, "1g"s, "10000000000000000"s})
        ExpectFailure<FormatException>("\"" + text + "\" is not a number in base 16",
                                       [&] { Convert::ToUInt64(text, 16); });
    ExpectFailure<FormatException>("\"9\" is not a number in base 8", [] { Convert::ToUInt64("9", 8); });
}

TEST(TimeSpan, WritesDaysAndFractionOnlyWhenThereAreAny) {
    constexpr std::int64_t SECOND = 1'000'000'000, DAY = 86'400 * SECOND;
    const std::pair<std::int64_t, const char*> cases[] = {
        {99, "00:00:00"},
        {0, "00:00:00"},
        {3'599 * SECOND + 999'999'999, "00:59:59.9999999"},
        {DAY - SECOND, "23:59:59"},
        {DAY, "1.00:00:00"},
        {-(12 * DAY + 3'723 * SECOND + 400), "-12.01:02:03.0000004"},
        {std::numeric_limits<std::int64_t>::min(), "-106751.23:47:16.8547758"},
    };
    for (const auto& [nanoseconds, text] : cases)
        EXPECT_EQ(TimeSpan(nanoseconds).ToString().Value(), text);
}
