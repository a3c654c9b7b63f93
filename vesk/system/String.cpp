// SPDX-License-Identifier: MIT
#include "vesk/system/String.h"

#include "vesk/system/Checks.h"

namespace System {

String::String(const char* text) : _text(text ? std::make_shared<const std::string>(text) : nullptr) {}

String::String(std::string text) : _text(std::make_shared<const std::string>(std::move(text))) {}

const std::string& String::Value() const {
    if (!_text)
        _throw_null_reference_exception("string");
    return *_text;
}

String String::PadLeft(int width, char fill) const {
    const std::string& text = Value();
    const auto wanted = static_cast<std::size_t>(width > 0 ? width : 0);
    return wanted <= text.size() ? *this : String(std::string(wanted - text.size(), fill) + text);
}

bool String::operator==(const String& other) const noexcept {
    if (!_text || !other._text)
        return !_text && !other._text;
    return *_text == *other._text;
}

} // namespace System
