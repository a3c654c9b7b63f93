// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/Process.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <pty.h>
#include <termios.h>

/// What a run of a program left behind.
struct ToolResult {
    int status; // exit status, or the number of the signal that ended it, negative
    std::string out;
    std::string err;
};

/// Runs the command line VESK_TOOL, or any other program, as a process of its own.
class RunTool {
public:
    using Arguments = Process::Arguments;
    static constexpr auto* Join = Process::Join;

    /// Waits for its end.
    static ToolResult Run(const Arguments& arguments, const std::string& program = VESK_TOOL) {
        Process process(program, arguments);
        const int status = process.Wait();
        return {status, process.Out(), process.Err()};
    }

    /// What it prints, and that it ends with `status`.
    static std::string Text(const Arguments& arguments, int status = 0) {
        const ToolResult result = Run(arguments);
        EXPECT_EQ(result.status, status) << result.err;
        return result.out;
    }

    /// The same with --json.
    static nlohmann::json Json(const Arguments& arguments, int status = 0) {
        return nlohmann::json::parse(Text(Process::Join(arguments, {"--json"}), status));
    }

    /// That it ends with `status` and prints nothing but `error` on standard error.
    static void ExpectFailure(const Arguments& arguments, int status,
                              const testing::Matcher<const std::string&>& error) {
        SCOPED_TRACE(testing::PrintToString(arguments));
        const ToolResult result = Run(arguments);
        EXPECT_EQ(result.status, status);
        EXPECT_EQ(result.out, "");
        EXPECT_THAT(result.err, error);
    }

    /// Runs it on a terminal, where `typed` is typed as soon as it shows `prompt`. `out` has all that the
    /// terminal shows, line ends as a terminal has them.
    static ToolResult RunOnTerminal(const Arguments& arguments, std::string typed,
                                    const std::string& prompt = "") {
        int terminal = -1;
        const auto child = ::forkpty(&terminal, nullptr, nullptr, nullptr);
        if (child == 0)
            Process::Execute(VESK_TOOL, arguments);
        if (child < 0)
            throw std::runtime_error("no terminal");
        termios settings{};
        ::tcgetattr(terminal, &settings);
        settings.c_lflag |= NOFLSH; // Ctrl-C would throw away what the command says about it
        ::tcsetattr(terminal, TCSANOW, &settings);
        std::string shown;
        char part[4096];
        ::ssize_t count = 0;
        do {
            shown.append(part, static_cast<std::size_t>(count > 0 ? count : 0));
            if (!typed.empty() && shown.find(prompt) != std::string::npos) {
                EXPECT_EQ(::write(terminal, typed.data(), typed.size()),
                          static_cast<::ssize_t>(typed.size()));
                typed.clear();
            }
            count = ::read(terminal, part, sizeof part);
        } while (count > 0 || (count < 0 && errno == EINTR)); // the end of its last process is an error
        const int status = Process::WaitFor(child);
        ::close(terminal);
        return {status, shown, ""};
    }
};

/// A JSON object that has at least `facts`, which are JSON too.
MATCHER_P(HasFacts, facts, "has " + std::string(facts)) {
    auto with = arg;
    with.merge_patch(std::decay_t<decltype(arg)>::parse(facts));
    return with == arg;
}
