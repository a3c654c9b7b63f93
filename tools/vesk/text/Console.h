// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <iosfwd>
#include <string>

namespace VeskTool {

/// Where a command's words go, and whether a person sits there.
struct Console {
    std::ostream& out;  // results
    std::ostream& err;  // questions and warnings
    std::istream& in;   // answers
    bool asks = false;  // questions reach a person
    bool draws = false; // `out` is a terminal that knows colours, and on which a line can be drawn over

    /// How wide that terminal is now.
    std::size_t (*columns)() = [] { return std::size_t{80}; };

    /// The program's own standard streams.
    static Console Standard();

    /// Failure unless a question can be asked, or `yes` makes it needless.
    void NeedAnswer(bool yes) const;
    /// Asks, unless `yes` makes it needless; Failure when the answer does not begin with "y",
    /// Interrupted where a signal ends the wait for it.
    void Confirm(bool yes, const std::string& question) const;
};

} // namespace VeskTool
