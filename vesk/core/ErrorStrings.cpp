// SPDX-License-Identifier: MIT
#include "vesk/core/ErrorStrings.h"

#include "vesk/system/text/StringBuilder.h"

namespace Vesk {

using System::String;
using System::Text::StringBuilder;

static StringBuilder Named(const char* name, unsigned int value) {
    StringBuilder text;
    text.Append(name).Append(" (").Append(value).Append(")");
    return text;
}

String ErrorStrings::Invalid(const char* name, unsigned int value) {
    return StringBuilder().Append("Invalid ").Append(Named(name, value).ToString()).ToString();
}

String ErrorStrings::GreaterThan(const char* name, unsigned int value, unsigned int limit) {
    return Named(name, value).Append(" > ").Append(limit).ToString();
}

String ErrorStrings::GreaterThan(const char* name, unsigned int value, const char* limitName,
                                 unsigned int limit) {
    return Named(name, value).Append(" > ").Append(Named(limitName, limit).ToString()).ToString();
}

String ErrorStrings::LessThan(const char* name, unsigned int value, unsigned int limit) {
    return Named(name, value).Append(" < ").Append(limit).ToString();
}

String ErrorStrings::LessThan(const char* name, unsigned int value, const char* limitName,
                              unsigned int limit) {
    return Named(name, value).Append(" < ").Append(Named(limitName, limit).ToString()).ToString();
}

String ErrorStrings::NotEqual(const char* name, unsigned int value, const char* otherName,
                              unsigned int other) {
    return Named(name, value).Append(" != ").Append(Named(otherName, other).ToString()).ToString();
}

String ErrorStrings::NotInRange(const char* name, unsigned int value, unsigned int low, unsigned int high) {
    return Named(name, value)
        .Append(" not in range [")
        .Append(low)
        .Append(" : ")
        .Append(high)
        .Append("]")
        .ToString();
}

} // namespace Vesk
