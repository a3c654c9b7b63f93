// SPDX-License-Identifier: MIT
#pragma once

#include <iosfwd>
#include <string>

namespace VeskTool {

/// Where a command's words go, and whether a person sits there.
struct Console {
    std::ostream& out;  // results
    std::ostream& err;  // questions and warnings
    std::istream& in;   // answers
    bool asks = false;  // questions reach a person
    bool draws = false; // `out` is a terminal, on which a line can be drawn over

    /// The program's own standard streams.
    static Console Standard();

    /// Asks and returns whether the answer begins with "y".
    bool Confirm(const std::string& question) const;
};

} // namespace VeskTool
