// SPDX-License-Identifier: MIT
#include "busdescription/findings/Finding.h"

#include <algorithm>

namespace BusDescription {

std::string Finding::Place() const {
    std::string place = file;
    if (line > 0)
        place += ":" + std::to_string(line);
    if (column > 0)
        place += ":" + std::to_string(column);
    return place;
}

std::string Finding::ToString() const {
    return Place() + (severity == Severity::ERROR ? ": error: " : ": warning: ") + text;
}

bool HasErrors(const Findings& findings) {
    return std::any_of(findings.begin(), findings.end(),
                       [](const Finding& finding) { return finding.severity == Severity::ERROR; });
}

} // namespace BusDescription
