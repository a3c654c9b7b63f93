// SPDX-License-Identifier: MIT
#include "tools/vesk/text/Failure.h"

namespace VeskTool {

std::string OneLine(const std::exception& exception) {
    std::string line;
    for (const char character : std::string(exception.what()))
        if (character != '\n')
            line += character;
        else if (!line.empty() && line.back() != ' ')
            line += "; ";
    while (!line.empty() && (line.back() == ' ' || line.back() == ';'))
        line.pop_back();
    return line;
}

} // namespace VeskTool
