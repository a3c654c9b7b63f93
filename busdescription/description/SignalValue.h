// SPDX-License-Identifier: MIT
#pragma once

#include "busdescription/description/Description.h"

#include <span>
#include <stdexcept>

/// The types of signals, and the values that bytes have by them.
namespace BusDescription {

enum class SignalKind { BOOL, SIGNED, UNSIGNED, REAL, BYTES };

/// A type as texts name it.
struct SignalTypeRow {
    SignalType type;
    std::string_view name;
    SignalKind kind;
    unsigned int length; // bytes; 0: each signal has its own
};

/// All types.
std::span<const SignalTypeRow> SignalTypes();
const SignalTypeRow& RowOf(SignalType type);

/// A text is no value of a signal; says what it is and what was expected.
class SignalValueError : public std::invalid_argument {
public:
    using std::invalid_argument::invalid_argument;
};

/// A number is a double where the signal has a scale.
using SignalValue = std::variant<bool, std::int64_t, std::uint64_t, double, Bytes>;

/// What the bytes of a slave in the signal's direction say; std::out_of_range where they end before it.
SignalValue ValueOf(const Signal& signal, std::span<const std::uint8_t> data);

/// A number of a real or scaled signal, in no more digits than it takes: "1200", "-3.5", "1e+30".
std::string RealText(const Signal& signal, double value);

/// Bytes from the signal's offset on. Only the bits of `mask` are the signal's.
struct SignalBytes {
    Bytes bytes;
    Bytes mask;
};

/// The bytes that `text` stands for: a number that is in the range of the type, or, where the signal has a
/// scale, the nearest that the type has; "true" or "false"; hexadecimal digits of as many bytes as the signal
/// has. SignalValueError for anything else.
SignalBytes BytesOf(const Signal& signal, const std::string& text);

} // namespace BusDescription
