// SPDX-License-Identifier: MIT
#include "busdescription/description/Units.h"

#include <array>

namespace BusDescription {

using std::chrono::microseconds;

struct TimeUnit {
    std::string_view name;
    std::int64_t microseconds;
};

static constexpr std::array<TimeUnit, 3> TIME_UNITS{{{"s", 1'000'000}, {"ms", 1'000}, {"us", 1}}};
static constexpr std::int64_t LONGEST_TIME = 3'600'000'000;

static bool IsDigit(char character) {
    return character >= '0' && character <= '9';
}

std::string RateText(const Gsd::Rate& rate) {
    return std::string(rate.name) + (rate.bitsPerSecond < 1'000'000 ? "k" : "");
}

std::optional<microseconds> ParseDuration(std::string_view text) {
    const std::size_t end = std::min(text.find_first_not_of("0123456789."), text.size());
    const std::string_view number = text.substr(0, end);
    std::string_view name = text.substr(end);
    name.remove_prefix(std::min(name.find_first_not_of(' '), name.size()));
    for (const TimeUnit& unit : TIME_UNITS) {
        if (unit.name != name || number.empty() || !IsDigit(number.front()) || !IsDigit(number.back()))
            continue;
        std::int64_t value = 0;
        std::int64_t worth = unit.microseconds; // of the digit, behind the point
        bool behind = false;
        for (const char character : number) {
            if (character == '.' && behind)
                return std::nullopt;
            if (character == '.') {
                behind = true;
                continue;
            }
            const std::int64_t digit = character - '0';
            if (behind && worth < 10 && digit != 0)
                return std::nullopt;
            value = behind ? value + digit * (worth /= 10) : value * 10 + digit * unit.microseconds;
            if (value > LONGEST_TIME)
                return std::nullopt;
        }
        return microseconds(value);
    }
    return std::nullopt;
}

std::string DurationText(microseconds duration) {
    for (const TimeUnit& unit : TIME_UNITS)
        if (duration.count() % unit.microseconds == 0)
            return std::to_string(duration.count() / unit.microseconds) + " " + std::string(unit.name);
    return ""; // not reached: the last unit divides everything
}

static int Digit(char character) {
    if (IsDigit(character))
        return character - '0';
    const char small = static_cast<char>(character | 0x20);
    return small >= 'a' && small <= 'f' ? small - 'a' + 10 : -1;
}

std::optional<Bytes> ParseBytes(std::string_view text) {
    Bytes bytes;
    for (std::size_t at = text.find_first_not_of(' '); at < text.size();
         at = text.find_first_not_of(' ', at + 2)) {
        const int high = Digit(text[at]);
        const int low = at + 1 < text.size() ? Digit(text[at + 1]) : -1;
        if (high < 0 || low < 0)
            return std::nullopt;
        bytes.push_back(static_cast<std::uint8_t>(high * 16 + low));
    }
    return bytes;
}

std::string HexText(std::uint32_t value, int digits) {
    std::string text;
    for (; value > 0 || static_cast<int>(text.size()) < digits; value /= 16)
        text.insert(text.begin(), "0123456789abcdef"[value % 16]);
    return "0x" + text;
}

std::string BytesText(const Bytes& bytes) {
    std::string text;
    for (const std::uint8_t byte : bytes)
        text += (text.empty() ? "" : " ") + HexText(byte, 2).substr(2);
    return text;
}

} // namespace BusDescription
