// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace BusDescription {

/// An ERROR makes a file unusable; a WARNING is unusual, and most likely not meant.
enum class Severity { WARNING, ERROR };

/// Something that is wrong or unusual in a file, in words for people. Lines and columns are counted from 1;
/// 0 where it is about the whole file or the whole line. Columns count bytes.
struct Finding {
    Severity severity;
    std::string file;
    unsigned int line;
    unsigned int column;
    std::string text; // UTF-8; words of the file stand in it as they are, control characters too

    /// "drive.gsd:12:5".
    std::string Place() const;
    /// "drive.gsd:12:5: error: …", as compilers have it.
    std::string ToString() const;
};

using Findings = std::vector<Finding>;

/// Whether there is an error among them.
bool HasErrors(const Findings& findings);

} // namespace BusDescription
