// SPDX-License-Identifier: MIT
#include "tools/vesk/text/Console.h"

#include <iostream>
#include <unistd.h>

namespace VeskTool {

Console Console::Standard() {
    return {std::cout, std::cerr, std::cin, isatty(STDIN_FILENO) == 1 && isatty(STDERR_FILENO) == 1,
            isatty(STDOUT_FILENO) == 1};
}

bool Console::Confirm(const std::string& question) const {
    err << question << " [y/N] " << std::flush;
    std::string answer;
    std::getline(in, answer);
    return !answer.empty() && (answer.front() == 'y' || answer.front() == 'Y');
}

} // namespace VeskTool
