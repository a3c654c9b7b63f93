// SPDX-License-Identifier: MIT
#pragma once

#include "busdescription/findings/Finding.h"
#include "busdescription/gsd/Reader.h"

#include <string>
#include <utility>

namespace BusDescription::Gsd {

/// The findings about one file while they are collected, at most MAX_FINDINGS of them.
class FindingList {
public:
    explicit FindingList(std::string file) : _file(std::move(file)) {}

    void Error(unsigned int line, std::string text, unsigned int column = 0) {
        Add(Severity::ERROR, line, column, std::move(text));
    }

    void Warning(unsigned int line, std::string text, unsigned int column = 0) {
        Add(Severity::WARNING, line, column, std::move(text));
    }

    void Add(Severity severity, unsigned int line, unsigned int column, std::string text) {
        if (!Full())
            _findings.push_back({severity, _file, line, column, std::move(text)});
        else if (severity == Severity::ERROR)
            ++_furtherErrors;
        else
            ++_furtherWarnings;
    }

    bool Full() const { return _findings.size() == MAX_FINDINGS; }

    /// All of them in the order of the lines; and how many more there were, as an error if one of those is.
    Findings Take();

private:
    std::string _file;
    Findings _findings;
    std::size_t _furtherErrors = 0;
    std::size_t _furtherWarnings = 0;
};

} // namespace BusDescription::Gsd
