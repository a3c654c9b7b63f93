// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/system/Object.h"

#include <concepts>
#include <cstdint>
#include <string>

namespace System::Text {

/// Builds a text from pieces. A line break is one line feed.
class StringBuilder : public Object {
public:
    StringBuilder& Append(const String& text);

    /// Appends a number in decimal.
    template <std::integral Number>
    StringBuilder& Append(Number value) {
        _text += std::to_string(value);
        return *this;
    }

    /// Appends a number in hexadecimal, without prefix or leading zeros.
    StringBuilder& AppendHex(std::uint64_t value);

    StringBuilder& AppendLine();

    /// Appends `text` and a line break.
    StringBuilder& AppendLine(const String& text);

    String ToString() const override;

private:
    std::string _text;
};

} // namespace System::Text
