// SPDX-License-Identifier: MIT
#include "busdescription/gsd/FindingList.h"

#include <algorithm>

namespace BusDescription::Gsd {

Findings FindingList::Take() {
    std::stable_sort(_findings.begin(), _findings.end(),
                     [](const Finding& a, const Finding& b) { return a.line < b.line; });
    if (_furtherErrors + _furtherWarnings > 0)
        _findings.push_back({_furtherErrors > 0 ? Severity::ERROR : Severity::WARNING, _file, 0, 0,
                             "and " + std::to_string(_furtherErrors) + " errors and " +
                                 std::to_string(_furtherWarnings) + " warnings more"});
    return std::move(_findings);
}

} // namespace BusDescription::Gsd
