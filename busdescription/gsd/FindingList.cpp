// SPDX-License-Identifier: MIT
#include "busdescription/gsd/FindingList.h"

#include <algorithm>

namespace BusDescription::Gsd {

Findings FindingList::Take() {
    std::stable_sort(_findings.begin(), _findings.end(),
                     [](const Finding& a, const Finding& b) { return a.line < b.line; });
    if (TooManyErrors())
        _findings.push_back({Severity::ERROR, _file, 0, 0, "too many errors: the rest is not read"});
    if (_warnings > MAX_FINDINGS)
        _findings.push_back({Severity::WARNING, _file, 0, 0,
                             "and " + std::to_string(_warnings - MAX_FINDINGS) + " warnings more"});
    return std::move(_findings);
}

} // namespace BusDescription::Gsd
