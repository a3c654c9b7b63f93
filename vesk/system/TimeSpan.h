// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/system/Object.h"

#include <cstdint>

namespace System {

/// A length of time, counted in nanoseconds.
class TimeSpan : public Object {
public:
    static std::shared_ptr<TimeSpan> Create(std::int64_t nanoseconds);

    explicit TimeSpan(std::int64_t nanoseconds) : _nanoseconds(nanoseconds) {}

    std::int64_t Nanoseconds() const { return _nanoseconds; }

    /// "[-][d.]hh:mm:ss[.fffffff]": days only when there are any, the fraction (in 100 ns) only when it is
    /// not zero.
    String ToString() const override;

private:
    std::int64_t _nanoseconds;
};

} // namespace System
