// SPDX-License-Identifier: MIT
#include "tests/support/ExpectFailure.h"

#include "vesk/system/Checks.h"
#include "vesk/system/collections/KeyNotFoundException.h"
#include "vesk/system/io/IOException.h"

#include <cerrno>
#include <functional>
#include <limits>

using namespace System;

TEST(Exception, IsCaughtAsSharedReferenceAndAsStandardException) {
    const auto cause = FormatException::Create("first");
    const auto failure = InvalidOperationException::Create("second", cause);
    try {
        _env_throw(failure);
    } catch (const std::shared_ptr<Exception>& caught) {
        EXPECT_EQ(caught, failure);
        EXPECT_EQ(caught->InnerException(), cause);
        EXPECT_EQ(caught->ToString().Value(), "System.InvalidOperationException: second");
    }
    try {
        _env_throw(failure);
    } catch (const std::exception& caught) {
        EXPECT_STREQ(caught.what(), "System.InvalidOperationException: second");
    }
    try {
        _env_throw(InvalidOperationException::Create(nullptr));
    } catch (const std::exception& caught) {
        EXPECT_STREQ(caught.what(), "System.InvalidOperationException");
    }
}

TEST(Exception, WhatOutlivesTheReferenceThatWasThrown) {
    std::exception_ptr kept;
    try {
        _env_throw(IO::IOException::Create(std::string(200, 'x')));
    } catch (...) {
        kept = std::current_exception();
    }
    try {
        std::rethrow_exception(kept);
    } catch (const std::exception& caught) {
        EXPECT_EQ(caught.what(), "System.IO.IOException: " + std::string(200, 'x'));
    }
}

TEST(Exception, EveryTypeSaysItsDottedName) {
    const struct {
        std::shared_ptr<Exception> exception;
        const char* name;
    } cases[] = {
        {ArgumentException::Create("m"), "System.ArgumentException"},
        {ArgumentNullException::Create("m"), "System.ArgumentNullException"},
        {ArgumentOutOfRangeException::Create("m"), "System.ArgumentOutOfRangeException"},
        {FormatException::Create("m"), "System.FormatException"},
        {InvalidOperationException::Create("m"), "System.InvalidOperationException"},
        {NullReferenceException::Create("m"), "System.NullReferenceException"},
        {IO::IOException::Create("m"), "System.IO.IOException"},
        {IO::FileNotFoundException::Create("m"), "System.IO.FileNotFoundException"},
        {IO::EndOfStreamException::Create("m"), "System.IO.EndOfStreamException"},
        {Collections::Generic::KeyNotFoundException::Create("m"),
         "System.Collections.Generic.KeyNotFoundException"},
    };

    for (const auto& [exception, name] : cases) {
        EXPECT_EQ(exception->TypeName().Value(), name);
        EXPECT_EQ(exception->Message().Value(), "m");
        EXPECT_EQ(exception->ToString().Value(), std::string(name) + ": m");
        EXPECT_EQ(exception->InnerException(), nullptr);
    }
    EXPECT_TRUE(std::dynamic_pointer_cast<ArgumentException>(cases[1].exception));
    EXPECT_TRUE(std::dynamic_pointer_cast<ArgumentException>(cases[2].exception));
    EXPECT_TRUE(std::dynamic_pointer_cast<IO::IOException>(cases[7].exception));
    EXPECT_TRUE(std::dynamic_pointer_cast<IO::IOException>(cases[8].exception));
}

TEST(Checks, CarryEveryNameAndValue) {
    constexpr auto LEAST = std::numeric_limits<std::int64_t>::min();
    ExpectFailure<ArgumentNullException>("src must not be null",
                                         [] { _throw_argument_null_exception("src"); });
    ExpectFailure<NullReferenceException>("_commands is null",
                                          [] { _throw_null_reference_exception("_commands"); });

    const struct {
        const char* message;
        std::function<void()> check;
    } cases[] = {
        {"offset (-1) must not be less than zero (0)",
         [] { _throw_not_less_exception(-1, 0, "offset", "zero"); }},
        {"a (-9223372036854775808) must not be less than b (9223372036854775807)",
         [] { _throw_not_less_exception(LEAST, ~LEAST, "a", "b"); }},
        {"index (8) must not be greater than count - 1 (7)",
         [] { _throw_not_greater_exception(8, 7, "index", "count - 1"); }},
        {"offset (64) must not be equal to capacity_ (64)",
         [] { _throw_not_equal_exception(64, 64, "offset", "capacity_"); }},
        {"length (5) must be equal to expected (6)",
         [] { _throw_equal_exception(5, 6, "length", "expected"); }},
        {"first (2) + n (9) must not be greater than the length of bytes (10)",
         [] { _throw_range_exception(2, 9, 10, "first", "n", "bytes"); }},
    };

    for (const auto& [message, check] : cases)
        ExpectFailure<ArgumentOutOfRangeException>(message, check);
}

TEST(IOException, TellsAMissingFileFromOtherFailures) {
    ExpectFailure<IO::FileNotFoundException>("/a/b: No such file or directory",
                                             [] { IO::ThrowIOException("/a/b", ENOENT); });
    ExpectFailure<IO::IOException>("/a/b: Permission denied", [] { IO::ThrowIOException("/a/b", EACCES); });
}
