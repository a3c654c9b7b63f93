// SPDX-License-Identifier: MIT
#pragma once

#include "tools/vesk/text/Console.h"
#include "vesk/system/DateTime.h"

#include <functional>
#include <optional>
#include <string>

/// The signals that ask the program to end: SIGINT (Ctrl-C), SIGTERM, SIGHUP (the terminal is gone) and
/// SIGPIPE (who reads the output is gone). A module that runs must not be left so, hence they are only noted,
/// and looked at where the program waits for the module.
namespace VeskTool {

/// A signal has ended the work. Not a std::exception, so that nobody takes it for a failure of the module.
class Interrupted {
public:
    Interrupted(int signal, const std::string& where);

    int Signal() const { return _signal; }

    /// "stopped by SIGINT while waiting for BOOTED".
    const std::string& What() const { return _what; }

private:
    int _signal;
    std::string _what;
};

/// From now on the signals are noted; there was none yet. One that is ignored, as nohup does, stays so.
void WatchSignals();

/// Completes the sentence of an Interrupted by that signal.
using Whereabouts = std::function<std::string(int signal)>;

/// Interrupted if a signal has come; `where` completes its sentence. CarefulWork may go on instead.
void StopIfSignalled(const Whereabouts& where);

/// Waits until standard input can be read, or a signal has come.
void WaitForInput();

/// The reader of the output or the terminal is gone, and the work went on all the same.
bool NobodyReads();

/// Work that must not end in the middle, while one lives; they may be nested. Output that cannot be written
/// and a terminal that is gone do not stop it. SIGINT and SIGTERM do at once where nothing was changed yet;
/// otherwise the first says what would be left, and a second one within 5 s, on the library's clock, stops.
class CarefulWork {
public:
    /// `leftBehind` says where the work stands and what the module would be left with: "at request 5 of 13.
    /// The application is erased."; empty where nothing was changed. Null for nothing at all.
    explicit CarefulWork(const Console& console, std::function<std::string()> leftBehind = nullptr);
    ~CarefulWork();
    CarefulWork(const CarefulWork&) = delete;
    CarefulWork& operator=(const CarefulWork&) = delete;

    /// SIGINT or SIGTERM has come.
    void Decide(int signal, const Whereabouts& where);

private:
    Console _console;
    std::function<std::string()> _leftBehind;
    CarefulWork* _outer;
    std::optional<System::DateTime> _asked; // when it was asked to stop last
};

} // namespace VeskTool
