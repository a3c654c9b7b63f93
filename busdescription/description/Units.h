// SPDX-License-Identifier: MIT
#pragma once

#include "busdescription/gsd/Device.h"
#include "busdescription/records/RecordFields.h"

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

/// How values are written in a description.
namespace BusDescription {

/// "500k", "1.5M".
std::string RateText(const Gsd::Rate& rate);

/// "1.5 s", "100 ms", "400 us", the blank may be missing; nothing for anything else, for fractions of a
/// microsecond and for more than an hour.
std::optional<std::chrono::microseconds> ParseDuration(std::string_view text);
/// The shortest such text.
std::string DurationText(std::chrono::microseconds duration);

/// "21 0f": two hexadecimal digits for each byte, blanks between bytes or none; nothing for anything else.
std::optional<Bytes> ParseBytes(std::string_view text);
/// With a blank between bytes.
std::string BytesText(const Bytes& bytes);

/// "0x" and at least `digits` digits.
std::string HexText(std::uint32_t value, int digits);

} // namespace BusDescription
