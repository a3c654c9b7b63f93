// SPDX-License-Identifier: MIT
#include "tools/vesk/text/Console.h"

#include "tools/vesk/text/Failure.h"
#include "tools/vesk/text/Interruption.h"

#include <cstdlib>
#include <iostream>
#include <string_view>
#include <sys/ioctl.h>
#include <unistd.h>

namespace VeskTool {

/// A terminal that does not say gets what most have.
static std::size_t Columns() {
    winsize size{};
    return ::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : 80;
}

static bool Draws() {
    const char* const terminal = std::getenv("TERM");
    return isatty(STDOUT_FILENO) == 1 && (terminal == nullptr || std::string_view(terminal) != "dumb");
}

Console Console::Standard() {
    const bool asks = isatty(STDIN_FILENO) == 1 && isatty(STDERR_FILENO) == 1;
    return {std::cout, std::cerr, std::cin, asks, Draws(), Columns};
}

void Console::NeedAnswer(bool yes) const {
    if (!yes && !asks)
        throw Failure("There is no terminal to ask at; give --yes to write without being asked");
}

void Console::Confirm(bool yes, const std::string& question) const {
    if (yes)
        return;
    err << question << " [y/N] " << std::flush;
    if (asks)
        WaitForInput();
    StopIfSignalled([](int) { return "at the question; nothing was changed"; });
    std::string answer;
    std::getline(in, answer);
    if (answer.empty() || (answer.front() != 'y' && answer.front() != 'Y'))
        throw Failure("Nothing was written");
}

} // namespace VeskTool
