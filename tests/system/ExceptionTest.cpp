// SPDX-License-Identifier: MIT
#include "tests/support/ExpectFailure.h"

#include "vesk/system/Checks.h"
#include "vesk/system/collections/KeyNotFoundException.h"
#include "vesk/system/io/IOException.h"

#include <cerrno>
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
    }
    for (const auto& [thrown, what] :
         {std::pair{failure, "System.InvalidOperationException: second"},
          {InvalidOperationException::Create(nullptr), "System.InvalidOperationException"}})
        try {
            _env_throw(thrown);
        } catch (const std::exception& caught) {
            EXPECT_STREQ(caught.what(), what);
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
    const std::pair<std::shared_ptr<Exception>, const char*> cases[] = {
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
        EXPECT_EQ(exception->ToString().Value(), std::string(name) + ": m");
        EXPECT_EQ(exception->InnerException(), nullptr) << name;
    }
    for (const int argument : {1, 2})
        EXPECT_TRUE(std::dynamic_pointer_cast<ArgumentException>(cases[argument].first));
    for (const int io : {7, 8})
        EXPECT_TRUE(std::dynamic_pointer_cast<IO::IOException>(cases[io].first));
}

TEST(Checks, CarryValuesOf64Bits) {
    constexpr auto LEAST = std::numeric_limits<std::int64_t>::min();
    ExpectFailure<ArgumentOutOfRangeException>(
        "a (-9223372036854775808) must not be less than b (9223372036854775807)",
        [] { _throw_not_less_exception(LEAST, ~LEAST, "a", "b"); });
}

TEST(IOException, TellsAMissingFileFromOtherFailures) {
    ExpectFailure<IO::FileNotFoundException>("/a/b: No such file or directory",
                                             [] { IO::ThrowIOException("/a/b", ENOENT); });
    ExpectFailure<IO::IOException>("/a/b: Permission denied", [] { IO::ThrowIOException("/a/b", EACCES); });
}
