// SPDX-License-Identifier: MIT
#include "busdescription/findings/Finding.h"

#include <algorithm>

namespace BusDescription {

std::string Finding::ToString() const {
    std::string place = file;
    if (line > 0)
        place += ":" + std::to_string(line);
    if (column > 0)
        place += ":" + std::to_string(column);
    return place + (severity == Severity::ERROR ? ": error: " : ": warning: ") + text;
}

bool HasErrors(const Findings& findings) {
    return std::any_of(findings.begin(), findings.end(),
                       [](const Finding& finding) { return finding.severity == Severity::ERROR; });
}

} // namespace BusDescription
