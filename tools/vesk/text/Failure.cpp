// SPDX-License-Identifier: MIT
#include "tools/vesk/text/Failure.h"

namespace VeskTool {

std::string OneLine(const std::exception& exception) {
    return OneLine(std::string_view(exception.what()));
}

std::string OneLine(std::string_view text) {
    std::string line;
    for (const char character : text)
        if (character != '\n')
            line += character;
        else if (!line.empty() && line.back() != ' ')
            line += "; ";
    while (!line.empty() && (line.back() == ' ' || line.back() == ';'))
        line.pop_back();
    return line;
}

} // namespace VeskTool
