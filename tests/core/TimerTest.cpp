// SPDX-License-Identifier: MIT
#include "tests/support/ExpectFailure.h"
#include "tests/support/TestClock.h"

#include "vesk/core/Timer.h"

TEST(Timer, ExpiresAtItsNanosecondCountedFromTheLastStart) {
    TestClock clock;
    const auto timer = Vesk::Timer::Create();
    const auto expectStopped = [&] {
        ExpectFailure<System::ArgumentNullException>("_start must not be null", [&] { timer->Expired(); });
        ExpectFailure<System::ArgumentNullException>("_start must not be null", [&] { timer->ToString(); });
    };
    expectStopped();
    timer->_nanoseconds = -5'000'000'000;
    timer->Start();
    ExpectFailure<System::ArgumentOutOfRangeException>(
        "_nanoseconds (-5000000000) must not be less than zero (0)", [&] { timer->Expired(); });
    for (const std::int64_t length : {std::int64_t{1}, std::int64_t{62'000'000'700}}) {
        timer->_nanoseconds = length;
        clock.Advance(1);
        timer->Start();
        clock.Advance(length - 1);
        EXPECT_FALSE(timer->Expired());
        clock.Advance(1);
        EXPECT_TRUE(timer->Expired());
    }
    EXPECT_EQ(timer->ToString().Value(), "00:01:02.0000007");
    timer->Stop();
    expectStopped();
    timer->_nanoseconds = 0;
    timer->Start();
    EXPECT_TRUE(timer->Expired());
}
