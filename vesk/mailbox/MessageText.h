// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/core/FormatArray.h"
#include "vesk/system/text/StringBuilder.h"

namespace Vesk::Mailbox {

/// The text of a message for logs: one line for each field, with its name.
class MessageText {
public:
    MessageText& Line(const char* text) {
        _text.AppendLine(text);
        return *this;
    }

    MessageText& Line(const char* name, const System::String& value) {
        _text.Append(name).Append(": ").AppendLine(value);
        return *this;
    }

    MessageText& Hex(const char* name, unsigned int value) {
        _text.Append(name).Append(": 0x").AppendHex(value).AppendLine();
        return *this;
    }

    /// Every element with as many digits as its type has.
    template <class T>
    MessageText& Elements(const char* name, const std::shared_ptr<System::IArray<T>>& array) {
        return Line(name, FormatArray(array, 0, array->Count(), nullptr, 2 * sizeof(T), 16));
    }

    System::String ToString() const { return _text.ToString(); }

private:
    System::Text::StringBuilder _text;
};

} // namespace Vesk::Mailbox
