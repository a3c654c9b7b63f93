// SPDX-License-Identifier: MIT
#include "tests/support/ExpectFailure.h"
#include "tests/support/Values.h"

#include "vesk/system/Array.h"

#include <tuple>

using namespace System;
using Bytes = Array<unsigned char>;
using View = ArraySegment<unsigned char>;

TEST(Array, OwnsItsElementsZeroAtFirst) {
    EXPECT_EQ(Values(Bytes::Create(3)), (std::vector<int>{0, 0, 0}));
    EXPECT_EQ(Values(Bytes::Create({7, 8})), (std::vector<int>{7, 8}));
    EXPECT_EQ(Values(Array<unsigned short>::Create(std::vector<unsigned short>{65535})),
              (std::vector<int>{65535}));
    EXPECT_EQ(Bytes::Create(0)->Count(), 0);
    EXPECT_EQ(Bytes::Create(257)->ToString().Value(), "Byte[257]");
    EXPECT_EQ(Array<unsigned short>::Create(8)->ToString().Value(), "UInt16[8]");
    ExpectFailure<ArgumentOutOfRangeException>("size (-1) must not be less than zero (0)",
                                               [] { return Bytes::Create(-1); });
}

TEST(Array, ChecksEveryIndex) {
    const std::shared_ptr<IArray<unsigned char>> whole = Bytes::Create({1, 2, 3, 4, 5});
    const std::shared_ptr<IArray<unsigned char>> view = View::Create(whole, 1, 3);

    const std::tuple<std::shared_ptr<IArray<unsigned char>>, int, const char*> cases[] = {
        {whole, -1, "index (-1) must not be less than zero (0)"},
        {whole, 5, "index (5) must not be greater than count - 1 (4)"},
        {view, -1, "index (-1) must not be less than zero (0)"},
        {view, 3, "index (3) must not be greater than count - 1 (2)"},
        {Bytes::Create(0), 0, "index (0) must not be greater than count - 1 (-1)"},
    };
    for (const auto& [array, index, message] : cases) {
        ExpectFailure<ArgumentOutOfRangeException>(message, [&a = array, i = index] { a->Get(i); });
        ExpectFailure<ArgumentOutOfRangeException>(message, [&a = array, i = index] { a->Set(i, 9); });
    }
    EXPECT_EQ(Values(whole), (std::vector<int>{1, 2, 3, 4, 5}));
    view->Set(2, 9);
    EXPECT_EQ(whole->Get(3), 9);
    EXPECT_EQ(view->Get(0), 2);
}

TEST(ArraySegment, SeesItsPartAndKeepsTheArrayAlive) {
    auto whole = Bytes::Create({1, 2, 3, 4, 5});
    const auto view = View::Create(whole, 1, 4);
    const auto inner = View::Create(view, 1, 2);
    EXPECT_EQ(view->ToString().Value(), "Byte[4]");
    whole->Set(3, 40);
    const std::weak_ptr<Bytes> watched = whole;
    whole.reset();
    EXPECT_FALSE(watched.expired());
    EXPECT_EQ(Values(inner), (std::vector<int>{3, 40}));
}

TEST(ArraySegment, MayNotLeaveTheArray) {
    const auto whole = Bytes::Create(10);
    for (const auto& [offset, count] : {std::pair(0, 10), {10, 0}, {0, 0}, {9, 1}})
        EXPECT_EQ(View::Create(whole, offset, count)->Count(), count);
    const std::tuple<int, int, const char*> cases[] = {
        {-1, 1, "offset (-1) must not be less than zero (0)"},
        {0, -1, "count (-1) must not be less than zero (0)"},
        {2, 9, "offset (2) + count (9) must not be greater than the length of array (10)"},
        {11, 0, "offset (11) + count (0) must not be greater than the length of array (10)"},
        {2147483647, 2147483647,
         "offset (2147483647) + count (2147483647) must not be greater than the length of array (10)"},
    };
    for (const auto& [offset, count, message] : cases)
        ExpectFailure<ArgumentOutOfRangeException>(
            message, [&, first = offset, size = count] { View::Create(whole, first, size); });
    ExpectFailure<ArgumentNullException>("array must not be null",
                                         [] { return View::Create(nullptr, 0, 0); });
}
