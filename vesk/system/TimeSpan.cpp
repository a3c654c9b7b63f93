// SPDX-License-Identifier: MIT
#include "vesk/system/TimeSpan.h"

#include "vesk/system/Convert.h"

#include <memory>

namespace System {

static std::string Padded(std::uint64_t value, int width) {
    return Convert::ToString(value, 10).PadLeft(width, '0').Value();
}

std::shared_ptr<TimeSpan> TimeSpan::Create(std::int64_t nanoseconds) {
    return std::make_shared<TimeSpan>(nanoseconds);
}

String TimeSpan::ToString() const {
    const auto bits = static_cast<std::uint64_t>(_nanoseconds);
    const std::uint64_t ticks = (_nanoseconds < 0 ? 0 - bits : bits) / 100;
    const std::uint64_t seconds = ticks / 10'000'000;
    const std::uint64_t fraction = ticks % 10'000'000;

    std::string text = _nanoseconds < 0 ? "-" : "";
    if (const std::uint64_t days = seconds / 86'400)
        text += std::to_string(days) + ".";
    text +=
        Padded(seconds / 3'600 % 24, 2) + ":" + Padded(seconds / 60 % 60, 2) + ":" + Padded(seconds % 60, 2);
    if (fraction != 0)
        text += "." + Padded(fraction, 7);
    return text;
}

} // namespace System
