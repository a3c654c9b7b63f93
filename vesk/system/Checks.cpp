// SPDX-License-Identifier: MIT
#include "vesk/system/Checks.h"

#include "vesk/system/Exception.h"

#include <string>

namespace System {

static std::string Named(const char* name, std::int64_t value) {
    return std::string(name) + " (" + std::to_string(value) + ")";
}

[[noreturn]] static void ThrowOutOfRange(const std::string& value, const char* rule,
                                         const std::string& bound) {
    _env_throw(ArgumentOutOfRangeException::Create(value + rule + bound));
}

void _throw_argument_null_exception(const char* name) {
    _env_throw(ArgumentNullException::Create(std::string(name) + " must not be null"));
}

void _throw_null_reference_exception(const char* name) {
    _env_throw(NullReferenceException::Create(std::string(name) + " is null"));
}

void _throw_not_less_exception(std::int64_t value, std::int64_t bound, const char* valueName,
                               const char* boundName) {
    ThrowOutOfRange(Named(valueName, value), " must not be less than ", Named(boundName, bound));
}

void _throw_not_greater_exception(std::int64_t value, std::int64_t bound, const char* valueName,
                                  const char* boundName) {
    ThrowOutOfRange(Named(valueName, value), " must not be greater than ", Named(boundName, bound));
}

void _throw_not_equal_exception(std::int64_t value, std::int64_t bound, const char* valueName,
                                const char* boundName) {
    ThrowOutOfRange(Named(valueName, value), " must not be equal to ", Named(boundName, bound));
}

void _throw_equal_exception(std::int64_t value, std::int64_t bound, const char* valueName,
                            const char* boundName) {
    ThrowOutOfRange(Named(valueName, value), " must be equal to ", Named(boundName, bound));
}

void _throw_range_exception(std::int64_t offset, std::int64_t count, std::int64_t length,
                            const char* offsetName, const char* countName, const char* arrayName) {
    ThrowOutOfRange(Named(offsetName, offset) + " + " + Named(countName, count),
                    " must not be greater than the length of ", Named(arrayName, length));
}

} // namespace System
