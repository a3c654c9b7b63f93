// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>

namespace System {

/// Immutable text that can be null; null is not the empty text. Copies share one buffer.
class String {
public:
    String(std::nullptr_t = nullptr) noexcept {}

    /// A null pointer gives the null string.
    String(const char* text);
    String(std::string text);

    bool IsNull() const noexcept { return !_text; }

    /// The characters. Throws NullReferenceException for the null string.
    const std::string& Value() const;

    /// This text, preceded by as many `fill` characters as it needs to be `width` characters long.
    String PadLeft(int width, char fill) const;

    /// Two null strings are equal; a null string equals no text.
    bool operator==(const String& other) const noexcept;

private:
    std::shared_ptr<const std::string> _text;
};

} // namespace System
