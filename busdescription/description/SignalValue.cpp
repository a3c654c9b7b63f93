// SPDX-License-Identifier: MIT
#include "busdescription/description/SignalValue.h"

#include "busdescription/description/Units.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <limits>

namespace BusDescription {

namespace {

constexpr std::array<SignalTypeRow, 12> TYPES{{{SignalType::BOOL, "bool", SignalKind::BOOL, 1},
                                               {SignalType::INT8, "int8", SignalKind::SIGNED, 1},
                                               {SignalType::INT16, "int16", SignalKind::SIGNED, 2},
                                               {SignalType::INT32, "int32", SignalKind::SIGNED, 4},
                                               {SignalType::INT64, "int64", SignalKind::SIGNED, 8},
                                               {SignalType::UINT8, "uint8", SignalKind::UNSIGNED, 1},
                                               {SignalType::UINT16, "uint16", SignalKind::UNSIGNED, 2},
                                               {SignalType::UINT32, "uint32", SignalKind::UNSIGNED, 4},
                                               {SignalType::UINT64, "uint64", SignalKind::UNSIGNED, 8},
                                               {SignalType::FLOAT32, "float32", SignalKind::REAL, 4},
                                               {SignalType::FLOAT64, "float64", SignalKind::REAL, 8},
                                               {SignalType::BYTES, "bytes", SignalKind::BYTES, 0}}};

/// The bytes of a number as an unsigned one.
std::uint64_t BitsOf(const Signal& signal, std::span<const std::uint8_t> bytes) {
    std::uint64_t bits = 0;
    for (std::size_t i = 0; i < bytes.size(); ++i)
        bits = bits << 8 | bytes[signal.littleEndian ? bytes.size() - 1 - i : i];
    return bits;
}

Bytes BytesOfBits(const Signal& signal, std::uint64_t bits) {
    Bytes bytes(signal.length);
    for (std::size_t i = 0; i < bytes.size(); ++i)
        bytes[signal.littleEndian ? i : bytes.size() - 1 - i] =
            static_cast<std::uint8_t>(bits >> 8 * i & 0xFF);
    return bytes;
}

std::int64_t Signed(std::uint64_t bits, unsigned int length) {
    const unsigned int unused = 64 - 8 * length;
    return static_cast<std::int64_t>(bits << unused) >> unused;
}

double Real(std::uint64_t bits, unsigned int length) {
    return length == 4 ? double{std::bit_cast<float>(static_cast<std::uint32_t>(bits))}
                       : std::bit_cast<double>(bits);
}

std::uint64_t BitsOfReal(double value, unsigned int length) {
    return length == 4 ? std::bit_cast<std::uint32_t>(static_cast<float>(value))
                       : std::bit_cast<std::uint64_t>(value);
}

std::optional<double> ParseReal(const std::string& text) {
    double value = 0;
    const auto end = std::from_chars(text.data(), text.data() + text.size(), value);
    return end.ec == std::errc() && end.ptr == text.data() + text.size() && std::isfinite(value)
               ? std::optional(value)
               : std::nullopt;
}

/// A whole number, decimal or hexadecimal after 0x, perhaps with a sign.
template <class Number>
std::optional<Number> ParseWhole(std::string text) {
    int base = 10;
    for (const std::size_t start : {std::size_t{0}, std::size_t{1}})
        if (text.size() > start + 2 && (start == 0 || text[0] == '-') && text[start] == '0' &&
            (text[start + 1] | 0x20) == 'x' && base == 10) {
            text.erase(start, 2);
            base = 16;
        }
    Number value = 0;
    const auto end = std::from_chars(text.data(), text.data() + text.size(), value, base);
    return end.ec == std::errc() && end.ptr == text.data() + text.size() ? std::optional(value)
                                                                         : std::nullopt;
}

/// The numbers of the type, as doubles.
std::pair<double, double> RangeOf(const SignalTypeRow& row) {
    if (row.kind == SignalKind::REAL)
        return row.length == 4
                   ? std::pair(double{std::numeric_limits<float>::lowest()},
                               double{std::numeric_limits<float>::max()})
                   : std::pair(std::numeric_limits<double>::lowest(), std::numeric_limits<double>::max());
    const int bits = static_cast<int>(8 * row.length);
    return row.kind == SignalKind::SIGNED
               ? std::pair(-std::ldexp(1.0, bits - 1), std::ldexp(1.0, bits - 1) - 1)
               : std::pair(0.0, std::ldexp(1.0, bits) - 1);
}

/// Numbers that texts become.
class Parser {
public:
    Parser(const Signal& signal, const std::string& text) : _signal(signal), _text(text) {}

    std::uint64_t Bits() const {
        if (!_signal.scale && _row.kind == SignalKind::SIGNED)
            return static_cast<std::uint64_t>(Whole<std::int64_t>());
        if (!_signal.scale && _row.kind == SignalKind::UNSIGNED)
            return Whole<std::uint64_t>();
        return RealBits();
    }

    [[noreturn]] void Refuse(const std::string& expected) const {
        throw SignalValueError(_text + " is no value of " + _signal.name + ", expected " + expected);
    }

private:
    template <class Number>
    Number Whole() const {
        const auto value = ParseWhole<Number>(_text);
        const auto [least, most] = RangeOf(_row);
        // Of 64 bits every number fits, and the greatest are no doubles.
        if (!value ||
            (_row.length < 8 && (static_cast<double>(*value) < least || static_cast<double>(*value) > most)))
            Refuse("a whole number " + RangeText());
        return *value;
    }

    std::uint64_t RealBits() const {
        const auto value = ParseReal(_text);
        const auto [least, most] = RangeOf(_row);
        double number = value.value_or(std::numeric_limits<double>::quiet_NaN());
        if (_signal.scale)
            number = (number - _signal.zero) / *_signal.scale;
        if (_row.kind != SignalKind::REAL)
            number = std::round(number);
        // 2^64 - 1 and 2^63 - 1 are no doubles, but the next greater number.
        if (!(number >= least && number <= most) ||
            (_row.kind != SignalKind::REAL && _row.length == 8 && number >= most))
            Refuse("a number " + RangeText());
        if (_row.kind == SignalKind::REAL)
            return BitsOfReal(number, _row.length);
        return _row.kind == SignalKind::SIGNED ? static_cast<std::uint64_t>(static_cast<std::int64_t>(number))
                                               : static_cast<std::uint64_t>(number);
    }

    /// "from -3276.8 to 3276.7 rpm (int16)".
    std::string RangeText() const {
        return "from " + LimitsText() + (_signal.unit.empty() ? "" : " " + _signal.unit) + " (" +
               std::string(_row.name) + ")";
    }

    std::string LimitsText() const {
        auto [least, most] = RangeOf(_row);
        if (!_signal.scale && _row.kind != SignalKind::REAL) { // the greatest of these are no doubles
            const bool sign = _row.kind == SignalKind::SIGNED;
            const std::uint64_t greatest = ~std::uint64_t{0} >> (64 - 8 * _row.length + (sign ? 1 : 0));
            return (sign ? "-" + std::to_string(greatest + 1) : "0") + " to " + std::to_string(greatest);
        }
        if (_signal.scale) {
            least = least * *_signal.scale + _signal.zero;
            most = most * *_signal.scale + _signal.zero;
        }
        return RealText(_signal, std::min(least, most)) + " to " + RealText(_signal, std::max(least, most));
    }

    const Signal& _signal;
    const std::string& _text;
    const SignalTypeRow& _row = RowOf(_signal.type);
};

SignalBytes BytesOfText(const Signal& signal, const Parser& parser, const std::string& text) {
    const auto bytes = ParseBytes(text);
    if (!bytes || bytes->size() != signal.length)
        parser.Refuse(std::to_string(signal.length) + " bytes as hexadecimal digits");
    return {*bytes, Bytes(signal.length, 0xFF)};
}

SignalBytes BytesOfBool(const Signal& signal, const Parser& parser, const std::string& text) {
    const auto mask = static_cast<std::uint8_t>(1U << signal.bit);
    if (text == "true" || text == "1")
        return {{mask}, {mask}};
    if (text != "false" && text != "0")
        parser.Refuse("true or false");
    return {{0}, {mask}};
}

} // namespace

std::span<const SignalTypeRow> SignalTypes() {
    return TYPES;
}

const SignalTypeRow& RowOf(SignalType type) {
    return *std::find_if(TYPES.begin(), TYPES.end(),
                         [type](const SignalTypeRow& row) { return row.type == type; });
}

SignalValue ValueOf(const Signal& signal, std::span<const std::uint8_t> data) {
    if (signal.offset > data.size() || signal.length > data.size() - signal.offset)
        throw std::out_of_range(signal.name);
    const auto bytes = data.subspan(signal.offset, signal.length);
    const SignalTypeRow& row = RowOf(signal.type);
    if (row.kind == SignalKind::BYTES)
        return Bytes(bytes.begin(), bytes.end());
    if (row.kind == SignalKind::BOOL)
        return (bytes[0] >> signal.bit & 1) != 0;
    const std::uint64_t bits = BitsOf(signal, bytes);
    const auto scaled = [&](auto number) -> SignalValue {
        if (signal.scale)
            return static_cast<double>(number) * *signal.scale + signal.zero;
        return number;
    };
    if (row.kind == SignalKind::REAL)
        return scaled(Real(bits, row.length));
    return row.kind == SignalKind::SIGNED ? scaled(Signed(bits, row.length)) : scaled(bits);
}

std::string RealText(const Signal& signal, double value) {
    std::array<char, 32> text{};
    const auto end = signal.scale
                         ? std::to_chars(text.begin(), text.end(), value, std::chars_format::general, 12)
                     : signal.type == SignalType::FLOAT32
                         ? std::to_chars(text.begin(), text.end(), static_cast<float>(value))
                         : std::to_chars(text.begin(), text.end(), value);
    return {text.begin(), end.ptr};
}

SignalBytes BytesOf(const Signal& signal, const std::string& text) {
    const Parser parser(signal, text);
    const SignalKind kind = RowOf(signal.type).kind;
    if (kind == SignalKind::BYTES)
        return BytesOfText(signal, parser, text);
    if (kind == SignalKind::BOOL)
        return BytesOfBool(signal, parser, text);
    return {BytesOfBits(signal, parser.Bits()), Bytes(signal.length, 0xFF)};
}

} // namespace BusDescription
