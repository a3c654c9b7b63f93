// SPDX-License-Identifier: MIT
#include "vesk/core/ErrorStrings.h"

#include "vesk/core/TextOf.h"

namespace Vesk {

using System::String;

static String Named(const char* name, unsigned int value) {
    return TextOf(name, " (", value, ")");
}

String ErrorStrings::Invalid(const char* name, unsigned int value) {
    return TextOf("Invalid ", Named(name, value));
}

String ErrorStrings::GreaterThan(const char* name, unsigned int value, unsigned int limit) {
    return TextOf(Named(name, value), " > ", limit);
}

String ErrorStrings::GreaterThan(const char* name, unsigned int value, const char* limitName,
                                 unsigned int limit) {
    return TextOf(Named(name, value), " > ", Named(limitName, limit));
}

String ErrorStrings::LessThan(const char* name, unsigned int value, unsigned int limit) {
    return TextOf(Named(name, value), " < ", limit);
}

String ErrorStrings::LessThan(const char* name, unsigned int value, const char* limitName,
                              unsigned int limit) {
    return TextOf(Named(name, value), " < ", Named(limitName, limit));
}

String ErrorStrings::NotEqual(const char* name, unsigned int value, const char* otherName,
                              unsigned int other) {
    return TextOf(Named(name, value), " != ", Named(otherName, other));
}

String ErrorStrings::NotInRange(const char* name, unsigned int value, unsigned int low, unsigned int high) {
    return TextOf(Named(name, value), " not in range [", low, " : ", high, "]");
}

} // namespace Vesk
