// SPDX-License-Identifier: MIT
#include "vesk/system/Convert.h"

#include "vesk/system/Exception.h"

#include <charconv>

namespace System::Convert {

String ToString(std::uint64_t value, int toBase) {
    char digits[64];
    const auto end = std::to_chars(digits, digits + sizeof digits, value, toBase).ptr;
    return std::string(digits, end);
}

std::uint64_t ToUInt64(const String& text, int fromBase) {
    const std::string& digits = text.Value();
    std::uint64_t value = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value, fromBase);
    if (error != std::errc() || end != digits.data() + digits.size())
        _env_throw(FormatException::Create("\"" + digits + "\" is not a number in base " +
                                           std::to_string(fromBase)));
    return value;
}

} // namespace System::Convert
