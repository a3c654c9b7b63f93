// SPDX-License-Identifier: MIT
#pragma once

#include "busdescription/findings/Finding.h"
#include "busdescription/gsd/Reader.h"

#include <string>
#include <utility>

namespace BusDescription::Gsd {

/// The findings about one file while they are collected: at most MAX_FINDINGS errors and as many warnings.
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
        std::size_t& count = severity == Severity::ERROR ? _errors : _warnings;
        if (++count <= MAX_FINDINGS)
            _findings.push_back({severity, _file, line, column, std::move(text)});
    }

    /// Whether there are so many errors that the rest of the file need not be read.
    bool TooManyErrors() const { return _errors >= MAX_FINDINGS; }

    /// Whether a further warning would only be counted.
    bool TooManyWarnings() const { return _warnings >= MAX_FINDINGS; }

    /// All of them in the order of the lines, and a last one that says whether there are more.
    Findings Take();

private:
    std::string _file;
    Findings _findings;
    std::size_t _errors = 0;
    std::size_t _warnings = 0;
};

} // namespace BusDescription::Gsd
