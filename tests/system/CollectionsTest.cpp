// SPDX-License-Identifier: MIT
#include "tests/support/ExpectFailure.h"

#include "vesk/system/Lazy.h"
#include "vesk/system/collections/Dictionary.h"
#include "vesk/system/collections/List.h"
#include "vesk/system/collections/Queue.h"

#include <algorithm>
#include <vector>

using namespace System;
using namespace System::Collections::Generic;

TEST(List, GrowsAndChecksEveryIndexThoughItIsOnlyShown) {
    const auto list = List<int>::Create();
    const auto shown = ReadOnlyCollection<int>::Create(list);
    list->Add(5);
    list->Add(6);
    EXPECT_EQ((std::vector<int>{shown->begin(), shown->end()}), (std::vector<int>{5, 6}));
    EXPECT_EQ(std::ranges::count(*shown, 6), 1);
    for (const auto& [index, message] : {std::pair(-1, "index (-1) must not be less than zero (0)"),
                                         {2, "index (2) must not be greater than count - 1 (1)"}})
        ExpectFailure<ArgumentOutOfRangeException>(message, [&, i = index] { return shown->Get(i); });
    ExpectFailure<ArgumentNullException>("list must not be null",
                                         [] { return ReadOnlyCollection<int>::Create(nullptr); });
}

TEST(Queue, IsFirstInFirstOut) {
    const auto queue = Queue<std::unique_ptr<int>>::Create();
    for (const int value : {1, 2})
        queue->Enqueue(std::make_unique<int>(value));
    EXPECT_EQ(queue->Count(), 2);
    for (const int value : {1, 2})
        EXPECT_EQ(*queue->Dequeue(), value);
    ExpectFailure<InvalidOperationException>("Queue empty", [&] { return queue->Dequeue(); });
}

TEST(Dictionary, KeepsTheOrderAndRefusesASecondKey) {
    const auto stations = Dictionary<int, std::string>::Create();
    for (const auto& [key, value] : {std::pair(9, "nine"), {-3, "minus three"}, {5, "five"}})
        stations->Add(key, value);
    ExpectFailure<ArgumentException>("Key already exists", [&] { stations->Add(9, "other"); });
    EXPECT_EQ((std::vector<int>{stations->Keys()->begin(), stations->Keys()->end()}),
              (std::vector<int>{9, -3, 5}));
    EXPECT_EQ(stations->Get(9) + stations->Get(5), "ninefive");
    ExpectFailure<KeyNotFoundException>("7", [&] { return stations->Get(7); });
}

TEST(Lazy, BuildsOnceAndAgainAfterAFailure) {
    static int asked = 0;
    Lazy<int> lazy([] { return ++asked == 1 ? throw asked : std::make_shared<int>(asked); });
    EXPECT_ANY_THROW(lazy.Value());

    EXPECT_EQ(*lazy.Value() + *lazy.Value(), 2 + 2);
}
