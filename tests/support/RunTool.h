// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/Process.h"

#include <cerrno>
#include <pty.h>
#include <stdexcept>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

/// What a run of a program left behind.
struct ToolResult {
    int status; // exit status, or the number of the signal that ended it, negative
    std::string out;
    std::string err;
};

/// Runs the command line VESK_TOOL, or any other program, as a process of its own.
class RunTool {
public:
    using Arguments = std::vector<std::string>;

    /// Waits for its end.
    static ToolResult Run(const Arguments& arguments, const std::string& program = VESK_TOOL) {
        Process process(program, arguments);
        const int status = process.Wait();
        return {status, process.Out(), process.Err()};
    }

    /// Runs it on a terminal, where `typed` is typed. `out` has all that the terminal shows, line ends as a
    /// terminal has them.
    static ToolResult RunOnTerminal(const Arguments& arguments, const std::string& typed,
                                    const std::string& program = VESK_TOOL) {
        int terminal = -1;
        const auto child = ::forkpty(&terminal, nullptr, nullptr, nullptr);
        if (child == 0)
            Process::Execute(program, arguments);
        if (child < 0)
            throw std::runtime_error("no terminal for " + program);
        std::string shown;
        if (::write(terminal, typed.data(), typed.size()) == static_cast<::ssize_t>(typed.size())) {
            char part[4096];
            ::ssize_t count = 0;
            // The end of the last process on a terminal is an error of its reading.
            while ((count = ::read(terminal, part, sizeof part)) > 0 || (count < 0 && errno == EINTR))
                shown.append(part, static_cast<std::size_t>(count > 0 ? count : 0));
        }
        const int status = Wait(child);
        ::close(terminal);
        return {status, shown, ""};
    }

private:
    static int Wait(::pid_t child) {
        int status = 0;
        while (::waitpid(child, &status, 0) != child)
            if (errno != EINTR)
                throw std::runtime_error("no child to wait for");
        return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
    }
};
