// SPDX-License-Identifier: MIT
#include "tests/support/ExpectFailure.h"
#include "tests/support/TestClock.h"

#include "vesk/core/Timer.h"

using Vesk::Timer;

class TimerTest : public testing::Test {
protected:
    TestClock _clock;
    std::shared_ptr<Timer> _timer = Timer::Create();
};

TEST_F(TimerTest, ExpiresAtItsNanosecondAndStaysExpired) {
    for (const std::int64_t length : {std::int64_t{1}, std::int64_t{500'000}, std::int64_t{10'000'000'000}}) {
        _timer->_nanoseconds = length;
        _timer->Start();
        _clock.Advance(length - 1);
        EXPECT_FALSE(_timer->Expired());
        for (const std::int64_t more : {std::int64_t{1}, length}) {
            _clock.Advance(more);
            EXPECT_TRUE(_timer->Expired());
        }
    }
    _timer->_nanoseconds = 0;
    _timer->Start();
    EXPECT_TRUE(_timer->Expired());
}

TEST_F(TimerTest, StartsAnewWhileItRuns) {
    _timer->_nanoseconds = 10;
    _timer->Start();
    _clock.Advance(9);
    _timer->Start();
    _clock.Advance(9);
    EXPECT_FALSE(_timer->Expired());
    _clock.Advance(1);
    EXPECT_TRUE(_timer->Expired());
}

TEST_F(TimerTest, CannotBeAskedBeforeItsStartOrWithoutALength) {
    const auto expectStopped = [this] {
        ExpectFailure<System::ArgumentNullException>("_start must not be null", [&] { _timer->Expired(); });
        ExpectFailure<System::ArgumentNullException>("_start must not be null", [&] { _timer->ToString(); });
    };
    expectStopped();
    _timer->Start();
    ExpectFailure<System::ArgumentOutOfRangeException>("_nanoseconds (-1) must not be less than zero (0)",
                                                       [&] { _timer->Expired(); });
    _clock.Advance(62'000'000'700);
    EXPECT_EQ(_timer->ToString().Value(), "00:01:02.0000007");
    _timer->_nanoseconds = 5;
    _timer->Stop();
    expectStopped();
}
