// SPDX-License-Identifier: MIT
#include "tools/vesk/text/Failure.h"

#include "failures/Problem.h"

namespace VeskTool {

std::string OneLine(const std::exception& exception) {
    return OneLine(std::string_view(exception.what()));
}

std::string OneLine(std::string_view text) {
    return Failures::OneLine(text);
}

} // namespace VeskTool
