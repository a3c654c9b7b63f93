// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

/// The argument checks. Each throws and never returns; the message carries every name and value that it was
/// given. A null argument is an ArgumentNullException, a null dereference a NullReferenceException, the
/// others are ArgumentOutOfRangeExceptions.
namespace System {

/// `name` is a null argument, or a field that has to be set.
[[noreturn]] void _throw_argument_null_exception(const char* name);
/// `name` is a null reference that an operation needs.
[[noreturn]] void _throw_null_reference_exception(const char* name);
/// `value` is less than `bound`, and must not be.
[[noreturn]] void _throw_not_less_exception(std::int64_t value, std::int64_t bound, const char* valueName,
                                            const char* boundName);
/// `value` is greater than `bound`, and must not be.
[[noreturn]] void _throw_not_greater_exception(std::int64_t value, std::int64_t bound, const char* valueName,
                                               const char* boundName);
/// `value` equals `bound`, and must not.
[[noreturn]] void _throw_not_equal_exception(std::int64_t value, std::int64_t bound, const char* valueName,
                                             const char* boundName);
/// `value` differs from `bound`, and must not.
[[noreturn]] void _throw_equal_exception(std::int64_t value, std::int64_t bound, const char* valueName,
                                         const char* boundName);
/// `offset` + `count` reaches beyond the `length` of an array.
[[noreturn]] void _throw_range_exception(std::int64_t offset, std::int64_t count, std::int64_t length,
                                         const char* offsetName, const char* countName,
                                         const char* arrayName);

} // namespace System
