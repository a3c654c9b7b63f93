// SPDX-License-Identifier: MIT
#include "tests/support/ExpectFailure.h"

#include "vesk/system/Lazy.h"
#include "vesk/system/collections/Dictionary.h"
#include "vesk/system/collections/List.h"
#include "vesk/system/collections/Queue.h"

#include <vector>

using namespace System;
using namespace System::Collections::Generic;

TEST(List, GrowsAndChecksEveryIndex) {
    const auto list = List<std::string>::Create();
    const auto shown = ReadOnlyCollection<std::string>::Create(list);
    list->Add("a");
    list->Add("b");
    EXPECT_EQ((std::vector<std::string>{list->begin(), list->end()}), (std::vector<std::string>{"a", "b"}));
    for (const std::shared_ptr<IList<std::string>>& each :
         {std::shared_ptr<IList<std::string>>(list), std::shared_ptr<IList<std::string>>(shown)}) {
        EXPECT_EQ(each->Count(), 2);
        EXPECT_EQ(each->Get(1), "b");
        ExpectFailure<ArgumentOutOfRangeException>("index (-1) must not be less than zero (0)",
                                                   [&] { return each->Get(-1); });
        ExpectFailure<ArgumentOutOfRangeException>("index (2) must not be greater than count - 1 (1)",
                                                   [&] { return each->Get(2); });
    }
    ExpectFailure<ArgumentNullException>("list must not be null",
                                         [] { return ReadOnlyCollection<int>::Create(nullptr); });
}

TEST(Queue, IsFirstInFirstOut) {
    const auto queue = Queue<std::unique_ptr<int>>::Create();
    queue->Enqueue(std::make_unique<int>(1));
    queue->Enqueue(std::make_unique<int>(2));
    EXPECT_EQ(*queue->Dequeue(), 1);
    queue->Enqueue(std::make_unique<int>(3));
    EXPECT_EQ(queue->Count(), 2);
    EXPECT_EQ(*queue->Dequeue(), 2);
    EXPECT_EQ(*queue->Dequeue(), 3);
    ExpectFailure<InvalidOperationException>("Queue empty", [&] { return queue->Dequeue(); });
}

TEST(Dictionary, KeepsTheOrderAndRefusesASecondKey) {
    const auto stations = Dictionary<int, std::string>::Create();
    for (const auto& [key, value] : {std::pair(9, "nine"), {-3, "minus three"}, {5, "five"}})
        stations->Add(key, value);
    ExpectFailure<ArgumentException>("Key already exists", [&] { stations->Add(9, "other"); });
    EXPECT_EQ((std::vector<int>{stations->Keys()->begin(), stations->Keys()->end()}),
              (std::vector<int>{9, -3, 5}));
    EXPECT_EQ(stations->Get(9), "nine");
    EXPECT_EQ(stations->Get(5), "five");
    ExpectFailure<KeyNotFoundException>("7", [&] { return stations->Get(7); });
}

TEST(Lazy, BuildsOnceWhenAskedForAndAgainAfterAFailure) {
    static int asked;
    asked = 0;
    Lazy<int> lazy([] {
        if (++asked == 1)
            _env_throw(InvalidOperationException::Create("broken"));
        return std::make_shared<int>(asked);
    });
    EXPECT_EQ(asked, 0);
    ExpectFailure<InvalidOperationException>("broken", [&] { lazy.Value(); });
    EXPECT_EQ(*lazy.Value(), 2);
    EXPECT_EQ(*lazy.Value(), 2);
}
