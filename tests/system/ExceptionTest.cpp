// SPDX-License-Identifier: MIT
#include "tests/support/ExpectFailure.h"

#include "vesk/system/io/IOException.h"

using namespace System;

TEST(Exception, SaysItsTextAsAStandardExceptionToo) {
    const std::string text(200, 'x');
    const std::pair<String, std::string> cases[] = {{text, ": " + text}, {nullptr, ""}};
    for (const auto& [message, what] : cases) {
        std::exception_ptr kept; // longer than the reference that was thrown
        try {
            _env_throw(InvalidOperationException::Create(message));
        } catch (...) {
            kept = std::current_exception();
        }
        try {
            std::rethrow_exception(kept);
        } catch (const std::exception& caught) {
            EXPECT_EQ(caught.what(), "System.InvalidOperationException" + what);
        }
    }
}

namespace {

/// Exceptions as an application may have them.
struct Plain : IO::IOException {
    Plain() : IOException("plain") {}

    String TypeName() const override { return "App.Plain"; }

    int code = 7;
};

struct Standard : IO::IOException, std::exception {
    Standard() : IOException("standard") {}
};

struct Unique : IO::IOException {
    Unique() : IOException("unique") {}

    std::unique_ptr<int> part;
};

} // namespace

TEST(Exception, IsCaughtByReferenceToItsOwnClass) {
    const auto failure = std::make_shared<Plain>();
    EXPECT_THROW(_env_throw(failure), IO::IOException);
    try {
        _env_throw(failure);
    } catch (const Plain& caught) {
        EXPECT_EQ(caught.code, 7);
        EXPECT_EQ(caught.ToString().Value(), "App.Plain: plain");
    }
    try {
        _env_throw(std::shared_ptr<Exception>(failure));
    } catch (const Exception& caught) {
        EXPECT_EQ(caught.ToString().Value(), "App.Plain: plain");
    }
    // What cannot be copied, or would be a std::exception twice, is caught in the other ways.
    EXPECT_THROW(_env_throw(std::make_shared<Unique>()), Exception);
    EXPECT_THROW(_env_throw(std::make_shared<Standard>()), std::exception);
}

TEST(Exception, KeepsItsCause) {
    const std::shared_ptr<Exception> cause = FormatException::Create("m");
    EXPECT_EQ(cause->InnerException(), nullptr);
    EXPECT_EQ(InvalidOperationException::Create("m", cause)->InnerException(), cause);
}
