// SPDX-License-Identifier: MIT
#include "vesk/system/Delegates.h"

#include <gtest/gtest.h>

using namespace System;

class Counter : public Object {
public:
    int Add(int step) { return _total += step; }

    void Reset(int total) { _total = total; }

    int _total = 0;
};

TEST(Delegates, WeakOnesDoNothingOnceTheObjectIsGone) {
    auto counter = std::make_shared<Counter>();
    const auto add = WeakMethodArgFunc<Counter, int, int>::Create(counter, &Counter::Add);
    const auto reset = WeakMethodArgFunc<Counter, int, void>::Create(counter, &Counter::Reset);
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
    EXPECT_EQ(one->ToString().Value(), "Counter");
    EXPECT_EQ(MakeShared<Counter>()->ToString().Value(), "Counter");
    EXPECT_EQ(Func<std::shared_ptr<Counter>>::Create([] { return nullptr; })->ToString().Value(),
              "System::Func<std::shared_ptr<Counter> >");
}
