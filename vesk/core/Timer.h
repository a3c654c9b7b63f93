// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/system/DateTime.h"
#include "vesk/system/Object.h"

#include <cstdint>
#include <memory>
#include <optional>

namespace Vesk {

/// A one-shot time-out that is asked, never waited for: armed when a wait begins, it says on every later call
/// whether the time has passed.
class Timer : public System::Object {
public:
    /// A stopped timer without a length.
    static std::shared_ptr<Timer> Create();

    /// Takes the current time as the start; a running timer starts anew.
    void Start();
    /// The same with that length.
    void Start(std::int64_t nanoseconds);
    void Stop();

    /// Whether `_nanoseconds` have passed since Start. ArgumentNullException "_start" on a stopped timer,
    /// ArgumentOutOfRangeException "_nanoseconds" when no length was set.
    bool Expired() const;

    /// The time since Start. ArgumentNullException "_start" on a stopped timer.
    System::String ToString() const override;

    /// Length of the time-out; set before Start.
    std::int64_t _nanoseconds = -1;

protected:
    Timer() = default;

private:
    System::TimeSpan Elapsed() const;

    std::optional<System::DateTime> _start; // empty while stopped
};

} // namespace Vesk
