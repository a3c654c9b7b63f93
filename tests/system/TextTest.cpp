// SPDX-License-Identifier: MIT
#include "tests/support/ExpectFailure.h"
#include "tests/support/TestClock.h"
#include "tests/support/Values.h"

#include "vesk/system/Convert.h"
#include "vesk/system/TimeSpan.h"
#include "vesk/system/diagnostics/Trace.h"
#include "vesk/system/text/Encoding.h"
#include "vesk/system/text/StringBuilder.h"

#include <cstdint>
#include <limits>

using namespace System;
namespace ASCII = System::Text::Encoding::ASCII;

TEST(String, NullIsNotEmpty) {
    const String null = nullptr;
    const String empty = "";
    EXPECT_TRUE(null.IsNull());
    EXPECT_TRUE(String().IsNull());
    EXPECT_TRUE(String(static_cast<const char*>(nullptr)).IsNull());
    EXPECT_FALSE(empty.IsNull());
    EXPECT_EQ(empty.Value(), "");
    EXPECT_TRUE(null == String());
    EXPECT_FALSE(null == empty);
    EXPECT_FALSE(empty == null);
    EXPECT_TRUE(String("a") == String(std::string("a")));
    EXPECT_FALSE(String("a") == String(std::string("a\0", 2)));
    ExpectFailure<NullReferenceException>("string is null", [&] { return null.Value(); });
    ExpectFailure<NullReferenceException>("string is null", [&] { return null.PadLeft(1, ' '); });
}

TEST(String, PadsOnTheLeftOnly) {
    for (const auto& [width, padded] : {std::pair(-1, "ab"), {0, "ab"}, {2, "ab"}, {3, "0ab"}, {5, "000ab"}})
        EXPECT_EQ(String("ab").PadLeft(width, '0').Value(), padded) << width;
}

TEST(Convert, WritesAnyBaseInLowerCase) {
    constexpr auto MOST = std::numeric_limits<std::uint64_t>::max();
    EXPECT_EQ(Convert::ToString(0, 16).Value(), "0");
    EXPECT_EQ(Convert::ToString(0xDEAD, 16).Value(), "dead");
    EXPECT_EQ(Convert::ToString(MOST, 10).Value(), "18446744073709551615");
    EXPECT_EQ(Convert::ToString(MOST, 2).Value(), std::string(64, '1'));
}

TEST(Convert, ReadsDigitsAndNothingElse) {
    const std::pair<const char*, std::uint64_t> good[] = {
        {"0", 0}, {"dEaD", 0xDEAD}, {"0000000000000000000f", 15}, {"ffffffffffffffff", 0xFFFFFFFFFFFFFFFFu}};
    for (const auto& [text, value] : good)
        EXPECT_EQ(Convert::ToUInt64(text, 16), value) << text;
    for (const std::string_view text :
         {std::string_view("1\0", 2), std::string_view(""), std::string_view(" 1"), std::string_view("1 "),
          std::string_view("-1"), std::string_view("+1"), std::string_view("0x1"), std::string_view("1g"),
          std::string_view("1\n"), std::string_view("10000000000000000")})
        ExpectFailure<FormatException>("\"" + std::string(text) + "\" is not a number in base 16",
                                       [&] { Convert::ToUInt64(std::string(text), 16); });
    ExpectFailure<FormatException>("\"9\" is not a number in base 8", [] { Convert::ToUInt64("9", 8); });
    ExpectFailure<NullReferenceException>("string is null", [] { Convert::ToUInt64(nullptr, 16); });
}

TEST(TimeSpan, WritesDaysAndFractionOnlyWhenThereAreAny) {
    constexpr std::int64_t SECOND = 1'000'000'000, DAY = 86'400 * SECOND;
    const std::pair<std::int64_t, const char*> cases[] = {
        {0, "00:00:00"},
        {99, "00:00:00"},
        {100, "00:00:00.0000001"},
        {500'000, "00:00:00.0005000"},
        {59 * SECOND, "00:00:59"},
        {3'599 * SECOND + 999'999'999, "00:59:59.9999999"},
        {DAY - SECOND, "23:59:59"},
        {DAY, "1.00:00:00"},
        {-SECOND, "-00:00:01"},
        {-(12 * DAY + 3'723 * SECOND + 400), "-12.01:02:03.0000004"},
        {std::numeric_limits<std::int64_t>::min(), "-106751.23:47:16.8547758"},
    };
    for (const auto& [nanoseconds, text] : cases)
        EXPECT_EQ(TimeSpan(nanoseconds).ToString().Value(), text);
}

TEST(DateTime, AsksItsSourceAndElseTheMonotonicClock) {
    {
        TestClock clock;
        const DateTime start = DateTime::Now();
        EXPECT_EQ((DateTime::Now() - start).Nanoseconds(), 0);
        clock.Advance(10'000'000'001);
        EXPECT_EQ((DateTime::Now() - start).Nanoseconds(), 10'000'000'001);
        EXPECT_EQ((start - DateTime::Now()).Nanoseconds(), -10'000'000'001);
    }
    const DateTime start = DateTime::Now();
    while ((DateTime::Now() - start).Nanoseconds() == 0) {
    }
    EXPECT_GT((DateTime::Now() - start).Nanoseconds(), 0);
}

TEST(Encoding, KeepsEveryByte) {
    const auto bytes = Array<unsigned char>::Create(256);
    for (int value = 0; value < 256; ++value)
        bytes->Set(value, static_cast<unsigned char>(value));
    const String text = ASCII::GetString(bytes, 0, 256);
    EXPECT_EQ(text.Value().size(), 256u);
    EXPECT_EQ(Values(ASCII::GetBytes(text)), Values(bytes));
    EXPECT_EQ(ASCII::GetString(bytes, 0x41, 3).Value(), "ABC");
    EXPECT_EQ(ASCII::GetString(bytes, 256, 0).Value(), "");
    ExpectFailure<ArgumentOutOfRangeException>(
        "offset (1) + count (256) must not be greater than the length of array (256)",
        [&] { return ASCII::GetString(bytes, 1, 256); });
}

TEST(StringBuilder, AppendsNumbersAndLines) {
    Text::StringBuilder text;
    text.Append("n ").Append(4294967295u).Append(" ").Append(-5).Append(" ").Append(std::uint8_t{65});
    text.AppendLine().AppendHex(0x1FFC).AppendLine("!").Append("end");
    EXPECT_EQ(text.ToString().Value(), "n 4294967295 -5 65\n1ffc!\nend");
    ExpectFailure<NullReferenceException>("string is null", [&] { text.Append(String()); });
}

TEST(Trace, GoesToTheListenerAndElseToStandardError) {
    std::string heard;
    Diagnostics::Trace::SetListener([&](const std::string& line) { heard += line + "|"; });
    Diagnostics::Trace::TraceDebug("one");
    Diagnostics::Trace::TraceDebug("two");
    Diagnostics::Trace::SetListener({});
    testing::internal::CaptureStderr();
    Diagnostics::Trace::TraceDebug("three");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "three\n");
    EXPECT_EQ(heard, "one|two|");
}
