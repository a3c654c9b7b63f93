// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/system/Exception.h"

#include <gtest/gtest.h>

#include <memory>

/// Calls `callable` and expects it to throw an ExceptionType, not a class derived from it, with exactly
/// `message`, or for one that ends with "..." with any that starts so. Returns what was thrown, for a closer
/// look, or null.
template <class ExceptionType, class Callable>
std::shared_ptr<ExceptionType> ExpectFailure(const System::String& message, Callable&& callable,
                                             const char* file = __builtin_FILE(),
                                             int line = __builtin_LINE()) {
    const testing::ScopedTrace caller(file, line, "expected failure");
    try {
        static_cast<void>(callable());
    } catch (const std::shared_ptr<System::Exception>& thrown) {
        const auto failure = std::dynamic_pointer_cast<ExceptionType>(thrown);
        if (!failure || !(failure->ExceptionType::TypeName() == failure->TypeName()))
            ADD_FAILURE() << "another type: " << thrown->ToString().Value();
        const std::string expected = message.IsNull() ? "" : message.Value();
        const bool matches =
            expected.ends_with("...")
                ? thrown->Message().Value().starts_with(expected.substr(0, expected.size() - 3))
                : thrown->Message() == message;
        EXPECT_TRUE(matches) << "thrown:   " << thrown->ToString().Value() << "\nexpected: "
                             << (message.IsNull() ? std::string("no message") : message.Value());
        return failure;
    }
    ADD_FAILURE() << "nothing was thrown";
    return nullptr;
}
