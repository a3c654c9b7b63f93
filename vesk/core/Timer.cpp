// SPDX-License-Identifier: MIT
#include "vesk/core/Timer.h"

#include "vesk/system/Checks.h"
#include "vesk/system/MakeShared.h"

namespace Vesk {

std::shared_ptr<Timer> Timer::Create() {
    return System::MakeShared<Timer>();
}

void Timer::Start() {
    _start = System::DateTime::Now();
}

void Timer::Start(std::int64_t nanoseconds) {
    _nanoseconds = nanoseconds;
    Start();
}

void Timer::Stop() {
    _start.reset();
}

bool Timer::Expired() const {
    if (!_start)
        System::_throw_argument_null_exception("_start");
    if (_nanoseconds < 0)
        System::_throw_not_less_exception(_nanoseconds, 0, "_nanoseconds", "zero");
    return Elapsed().Nanoseconds() >= _nanoseconds;
}

System::String Timer::ToString() const {
    return Elapsed().ToString();
}

System::TimeSpan Timer::Elapsed() const {
    if (!_start)
        System::_throw_argument_null_exception("_start");
    return System::DateTime::Now() - *_start;
}

} // namespace Vesk
