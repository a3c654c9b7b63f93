// SPDX-License-Identifier: MIT
#include "vesk/system/text/StringBuilder.h"

#include "vesk/system/Convert.h"

namespace System::Text {

StringBuilder& StringBuilder::Append(const String& text) {
    _text += text.Value();
    return *this;
}

StringBuilder& StringBuilder::AppendHex(std::uint64_t value) {
    return Append(Convert::ToString(value, 16));
}

StringBuilder& StringBuilder::AppendLine() {
    _text += '\n';
    return *this;
}

StringBuilder& StringBuilder::AppendLine(const String& text) {
    return Append(text).AppendLine();
}

String StringBuilder::ToString() const {
    return _text;
}

} // namespace System::Text
