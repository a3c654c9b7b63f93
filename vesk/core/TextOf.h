// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/system/text/StringBuilder.h"

#include <type_traits>

namespace Vesk {

/// A number that a message has in hexadecimal, without prefix or leading zeros.
struct InHex {
    std::uint64_t value;
};

/// A message: its pieces one after the other, with numbers in decimal unless they are InHex.
template <class... Pieces>
System::String TextOf(const Pieces&... pieces) {
    System::Text::StringBuilder text;
    const auto append = [&text](const auto& piece) {
        if constexpr (std::is_same_v<decltype(piece), const InHex&>)
            text.AppendHex(piece.value);
        else
            text.Append(piece);
    };
    (append(pieces), ...);
    return text.ToString();
}

} // namespace Vesk
