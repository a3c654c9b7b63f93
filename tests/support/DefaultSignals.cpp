// SPDX-License-Identifier: MIT
#include <csignal>

/// A shell that starts the tests in the background, or nohup, ignores some signals for them, and they would
/// pass that on to every command.
[[maybe_unused]] static const bool DEFAULT_SIGNALS = [] {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGPIPE})
        std::signal(signal, SIG_DFL);
    return true;
}();
