// SPDX-License-Identifier: MIT
#include "tests/support/ExpectFailure.h"
#include "tests/support/Values.h"

#include "vesk/system/Array.h"

#include <span>
#include <tuple>

using namespace System;
using Bytes = Array<unsigned char>;
using View = ArraySegment<unsigned char>;
using OutOfRange = ArgumentOutOfRangeException;

TEST(Array, OwnsItsElementsZeroAtFirstAndChecksEveryIndex) {
    EXPECT_EQ(Values(Array<unsigned short>::Create({7, 65535})), (std::vector<int>{7, 65535}));
    EXPECT_EQ(Array<unsigned short>::Create(8)->ToString().Value(), "UInt16[8]");
    ExpectFailure<OutOfRange>("size (-1) must not be less than zero (0)", [] { Bytes::Create(-1); });
    const auto bytes = Bytes::Create(2);
    for (const auto& [index, message] : {std::pair(-1, "index (-1) must not be less than zero (0)"),
                                         {2, "index (2) must not be greater than count - 1 (1)"}}) {
        ExpectFailure<OutOfRange>(message, [&, i = index] { bytes->Get(i); });
        ExpectFailure<OutOfRange>(message, [&, i = index] { bytes->Set(i, 9); });
    }
    EXPECT_EQ(Values(bytes), (std::vector<int>{0, 0}));
}

TEST(ArraySegment, StaysInsideTheArrayAndKeepsItAlive) {
    auto whole = Bytes::Create({1, 2, 3, 4, 5, 6, 7, 8, 9, 10});
    const std::tuple<int, int, const char*> cases[] = {
        {-1, 1, "offset (-1) must not be less than zero (0)"},
        {0, -1, "count (-1) must not be less than zero (0)"},
        {11, 0, "offset (11) + count (0) must not be greater than the length of array (10)"},
        {2147483647, 2147483647,
         "offset (2147483647) + count (2147483647) must not be greater than the length of array (10)"},
    };
    for (const auto& [offset, count, message] : cases)
        ExpectFailure<OutOfRange>(message, [&, o = offset, c = count] { View::Create(whole, o, c); });
    ExpectFailure<ArgumentNullException>("array must not be null", [] { View::Create(nullptr, 0, 0); });

    EXPECT_EQ(View::Create(whole, 10, 0)->ToString().Value(), "Byte[0]");
    const auto inner = View::Create(View::Create(whole, 1, 9), 7, 2);
    inner->Set(1, 20);
    const std::weak_ptr<Bytes> watched = whole;
    whole.reset();
    EXPECT_FALSE(watched.expired());
    const std::span<unsigned char> span(*inner);
    EXPECT_EQ(std::vector<int>(span.begin(), span.end()), (std::vector<int>{9, 20}));
}
