// SPDX-License-Identifier: MIT
#include "virtualmodule/wires/Watch.h"

namespace VirtualModule {

void Watch::Report(std::string_view name, const std::string& detail) {
    const std::string text = std::string(name) + ": " + detail;
    Log([&] { return "violation: " + text; });
    if (_violations.size() < MOST_VIOLATIONS)
        _violations.push_back(text);
}

} // namespace VirtualModule
