// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/TemporaryFolder.h"

#include <cerrno>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <optional>
#include <stdexcept>
#include <string>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

/// A program that runs beside the test. It is killed, if it still runs, with the object or with the test.
class Process {
public:
    using Arguments = std::vector<std::string>;

    Process(const std::string& program, const Arguments& arguments) : _child(::fork()) {
        if (_child == 0) {
            ::prctl(PR_SET_PDEATHSIG, SIGKILL);
            Redirect(STDOUT_FILENO, _folder.Path("out"));
            Redirect(STDERR_FILENO, _folder.Path("err"));
            Execute(program, arguments);
        }
        if (_child < 0)
            throw std::runtime_error("no process for " + program);
    }

    ~Process() { End(SIGKILL); }

    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    /// `first` and what follows it.
    static Arguments Join(Arguments first, const Arguments& more) {
        first.insert(first.end(), more.begin(), more.end());
        return first;
    }

    ::pid_t Id() const { return _child; }

    /// Waits for its end: its exit status, or the number of the signal that ended it, negative.
    int Wait() {
        if (!HasEnded())
            _status = WaitFor(_child);
        return *_status;
    }

    /// The same for any child.
    static int WaitFor(::pid_t child) {
        int status = 0;
        while (::waitpid(child, &status, 0) != child)
            if (errno != EINTR)
                throw std::runtime_error("no child to wait for");
        return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
    }

    /// Sends the signal and waits for the end that follows from it.
    int End(int signal) {
        if (!_status)
            ::kill(_child, signal);
        return Wait();
    }

    /// What it has written so far.
    std::string Out() const { return _folder.Content("out"); }

    std::string Err() const { return _folder.Content("err"); }

    /// Waits until it has written `text`; false when it has ended without, or after two minutes.
    bool WaitForOut(const std::string& text) {
        return WaitUntil([&] { return Out().find(text) != std::string::npos; });
    }

    bool WaitForErr(const std::string& text) {
        return WaitUntil([&] { return Err().find(text) != std::string::npos; });
    }

    /// What starts the program: an emulator too, where this build is for another machine. Scripts and shells
    /// are the machine's own.
    static Arguments WordsOf(const std::string& program) {
#ifdef TEST_EMULATOR
        if (program.rfind(BUILD_DIR "/", 0) == 0)
            return {TEST_EMULATOR, program};
#endif
        return {program};
    }

    /// Becomes the program.
    [[noreturn]] static void Execute(const std::string& program, const Arguments& arguments) {
        for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGPIPE}) // whoever runs the tests may ignore some
            ::signal(signal, SIG_DFL);
        // Where the module is, is the test's affair alone.
        for (const char* variable : {"VESK_DPRAM", "VESK_OFFSET", "VESK_LINES", "VESK_GPIO", "VESK_BUS"})
            ::unsetenv(variable);
        Arguments words = Join(WordsOf(program), arguments);
        std::vector<char*> argv;
        for (std::string& word : words)
            argv.push_back(word.data());
        argv.push_back(nullptr);
        ::execv(argv.front(), argv.data());
        ::_exit(127);
    }

private:
    template <class Condition>
    bool WaitUntil(const Condition& reached) {
        const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(2);
        while (!reached()) {
            if (HasEnded() || std::chrono::steady_clock::now() > end)
                return reached();
            std::this_thread::sleep_for(std::chrono::microseconds(200));
        }
        return true;
    }

    bool HasEnded() {
        ::siginfo_t end{};
        if (!_status &&
            ::waitid(P_PID, static_cast<::id_t>(_child), &end, WEXITED | WNOHANG | WNOWAIT) == 0 &&
            end.si_pid == _child)
            _status = WaitFor(_child);
        return _status.has_value();
    }

    static void Redirect(int descriptor, const std::string& path) {
        if (::dup2(::open(path.c_str(), O_WRONLY | O_CREAT, 0600), descriptor) != descriptor)
            ::_exit(127);
    }

    TemporaryFolder _folder;
    ::pid_t _child;
    std::optional<int> _status; // once it has ended
};
