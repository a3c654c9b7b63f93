// SPDX-License-Identifier: MIT
// Texts become the bytes of a signal, and bytes its value.
#include "busdescription/description/SignalValue.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <random>

using namespace BusDescription;

namespace {

std::string TextOf(const Signal& signal, const SignalValue& value) {
    if (const auto* real = std::get_if<double>(&value))
        return RealText(signal, *real);
    if (const auto* flag = std::get_if<bool>(&value))
        return *flag ? "true" : "false";
    if (const auto* number = std::get_if<std::int64_t>(&value))
        return std::to_string(*number);
    return std::to_string(std::get<std::uint64_t>(value));
}

Signal SignalOf(SignalType type, unsigned int offset) {
    Signal signal;
    signal.name = "it";
    signal.unit = "mm";
    signal.offset = offset;
    signal.type = type;
    signal.length = std::max(RowOf(type).length, 1U);
    return signal;
}

/// Every value of every number comes back as the same bytes, in either order, and where a scale leaves enough
/// digits.
TEST(SignalValueTest, AValueIsWrittenAsItWasRead) {
    std::mt19937 random{5};
    for (const SignalTypeRow& row : SignalTypes())
        for (int round = 0; row.length > 0 && round < 500; ++round) {
            Signal signal = SignalOf(row.type, 1);
            signal.bit = static_cast<unsigned int>(round % 8);
            signal.littleEndian = round % 2 == 0;
            if (round % 3 == 0 && row.kind != SignalKind::BOOL && row.length < 4)
                signal.scale = -0.1;
            signal.zero = signal.scale ? 7 : 0;
            Bytes data(row.length + 2);
            for (std::uint8_t& byte : data)
                byte = static_cast<std::uint8_t>(round < 250 ? random() : random() % 2 * 0xFF);
            const SignalValue value = ValueOf(signal, data);
            if (const auto* real = std::get_if<double>(&value); real != nullptr && !std::isfinite(*real))
                continue;
            const auto [bytes, mask] = BytesOf(signal, TextOf(signal, value));
            for (std::size_t i = 0; i < row.length; ++i)
                ASSERT_EQ(bytes[i], data[i + 1] & mask[i]) << row.name << " " << TextOf(signal, value);
        }
    EXPECT_THROW(ValueOf(SignalOf(SignalType::INT16, 2), Bytes{1, 2, 3}), std::out_of_range);
}

TEST(SignalValueTest, RefusesWhatIsNoValue) {
    const auto refusal = [](SignalType type, const std::string& text, std::optional<double> scale) {
        Signal signal = SignalOf(type, 0);
        signal.scale = scale;
        try {
            BytesOf(signal, text);
        } catch (const SignalValueError& error) {
            return std::string(error.what());
        }
        return std::string();
    };

    const struct {
        SignalType type;
        const char* text;
        std::optional<double> scale;
        const char* expected; // "" for a value
    } CASES[] = {
        {SignalType::INT8, "-128", {}, ""},
        {SignalType::INT8, "-129", {}, "a whole number from -128 to 127 mm (int8)"},
        {SignalType::INT8, "12.7", -0.1, ""},
        {SignalType::INT8, "12.86", -0.1, "a number from -12.7 to 12.8 mm (int8)"},
        {SignalType::UINT16, "65535.4", 1, ""},
        {SignalType::UINT16, "65535.5", 1, "a number from 0 to 65535 mm (uint16)"},
        {SignalType::UINT16, "-1", {}, "a whole number from 0 to 65535 mm (uint16)"},
        {SignalType::UINT16, "0xFFFF", {}, ""},
        {SignalType::INT16, "-0x8000", {}, ""},
        {SignalType::UINT16, "12 mm", {}, "a whole number from 0 to 65535 mm (uint16)"},
        {SignalType::UINT64, "18446744073709551615", {}, ""},
        {SignalType::UINT64,
         "18446744073709551616",
         {},
         "a whole number from 0 to 18446744073709551615 mm (uint64)"},
        {SignalType::UINT64, "18446744073709551615", 1, "a number from 0 to 1.84467440737e+19 mm (uint64)"},
        {SignalType::FLOAT32, "1e39", {}, "a number from -3.4028235e+38 to 3.4028235e+38 mm (float32)"},
        {SignalType::FLOAT64,
         "nan",
         {},
         "a number from -1.7976931348623157e+308 to 1.7976931348623157e+308 mm (float64)"},
        {SignalType::BOOL, "on", {}, "true or false"},
        {SignalType::BYTES, "0102", {}, "1 bytes as hexadecimal digits"},
    };

    for (const auto& [type, text, scale, expected] : CASES)
        EXPECT_EQ(refusal(type, text, scale),
                  *expected == 0 ? "" : text + std::string(" is no value of it, expected ") + expected);
}

} // namespace
