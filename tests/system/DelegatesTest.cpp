// SPDX-License-Identifier: MIT
#include "vesk/system/Delegates.h"

#include <gtest/gtest.h>

#include <stdexcept>

using namespace System;

class Counter : public Object {
public:
    int Add(int step) { return _total += step; }

    void Reset(int total) { _total = total; }

    int _total = 0;
};

TEST(Delegates, CallWhatTheyWereMadeOf) {
    int calls = 0;
    const std::shared_ptr<IFunc<bool>> question = Func<bool>::Create([&] { return ++calls == 2; });
    EXPECT_FALSE(question->Invoke());
    EXPECT_TRUE(question->Invoke());

    const std::shared_ptr<IArgFunc<int, void>> order =
        ArgFunc<int, void>::Create([&](int value) { calls = value; });
    order->Invoke(40);
    EXPECT_EQ(calls, 40);

    const auto moveOnly = ArgFunc<std::unique_ptr<int>, int>::Create([](auto value) { return *value; });
    EXPECT_EQ(moveOnly->Invoke(std::make_unique<int>(5)), 5);
}

TEST(Delegates, LetAnExceptionPassUnchanged) {
    const auto throwing = Func<void>::Create([] { throw std::out_of_range("mine"); });
    EXPECT_THROW(throwing->Invoke(), std::out_of_range);
}

TEST(Delegates, WeakOnesDoNothingOnceTheObjectIsGone) {
    auto counter = std::make_shared<Counter>();
    const auto add = WeakMethodArgFunc<Counter, int, int>::Create(counter, &Counter::Add);
    const auto reset = WeakMethodArgFunc<Counter, int, void>::Create(counter, &Counter::Reset);
    EXPECT_EQ(counter.use_count(), 1);
    EXPECT_EQ(add->Invoke(3), 3);
    reset->Invoke(10);
    EXPECT_EQ(add->Invoke(1), 11);
    counter.reset();
    EXPECT_EQ(add->Invoke(1), 0);
    reset->Invoke(1);
}

TEST(Object, IsEqualToItselfOnlyAndSaysItsClass) {
    const auto one = std::make_shared<Counter>();
    const auto other = std::make_shared<Counter>();
    EXPECT_TRUE(one->Equals(one));
    EXPECT_FALSE(one->Equals(other));
    EXPECT_FALSE(one->Equals(nullptr));
    EXPECT_EQ(one->GetHashCode(), one->GetHashCode());
    EXPECT_NE(one->ToString().Value().find("Counter"), std::string::npos);
}
