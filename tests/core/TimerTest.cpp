// SPDX-License-Identifier: MIT
#include "tests/support/ExpectFailure.h"
#include "tests/support/TestClock.h"

#include "vesk/core/Timer.h"

// When it expires is seen with each of its users.
TEST(Timer, NeedsAStartAndALength) {
    TestClock clock;
    const auto timer = Vesk::Timer::Create();
    timer->Start();
    ExpectFailure<System::ArgumentOutOfRangeException>("_nanoseconds (-1) must not be less than zero (0)",
                                                       [&] { timer->Expired(); });
    timer->_nanoseconds = 0;
    EXPECT_TRUE(timer->Expired());
    clock.Advance(62'000'000'700);
    EXPECT_EQ(timer->ToString().Value(), "00:01:02.0000007");
    timer->Stop();
    ExpectFailure<System::ArgumentNullException>("_start must not be null", [&] { timer->Expired(); });
    ExpectFailure<System::ArgumentNullException>("_start must not be null", [&] { timer->ToString(); });
}
