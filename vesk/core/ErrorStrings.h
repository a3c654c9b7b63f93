// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/system/String.h"

namespace Vesk {

/// The wording of a value that does not fit. Numbers are written in decimal.
class ErrorStrings {
public:
    /// "Invalid name (value)"
    static System::String Invalid(const char* name, unsigned int value);
    /// "name (value) > limit"
    static System::String GreaterThan(const char* name, unsigned int value, unsigned int limit);
    /// "name (value) > limitName (limit)"
    static System::String GreaterThan(const char* name, unsigned int value, const char* limitName,
                                      unsigned int limit);
    /// "name (value) < limit"
    static System::String LessThan(const char* name, unsigned int value, unsigned int limit);
    /// "name (value) < limitName (limit)"
    static System::String LessThan(const char* name, unsigned int value, const char* limitName,
                                   unsigned int limit);
    /// "name (value) != otherName (other)"
    static System::String NotEqual(const char* name, unsigned int value, const char* otherName,
                                   unsigned int other);
    /// "name (value) not in range [low : high]"
    static System::String NotInRange(const char* name, unsigned int value, unsigned int low,
                                     unsigned int high);
};

} // namespace Vesk
