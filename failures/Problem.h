// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace Failures {

/// The first thing that is not right with a module that goes on, for people; or with one that does not.
struct Problem {
    std::string what;
    std::string cause;
    std::string next; // what to check, and what to do then

    bool operator==(const Problem&) const = default;
};

/// The words for one that is no exception. Each '*' stands for a value.
struct ProblemWords {
    std::string_view what;
    std::string_view cause;
    std::string_view next;

    /// With the values in the order of the text.
    Problem With(const std::vector<std::string>& values = {}) const;
};

namespace Problems {

extern const ProblemWords COMING_UP, // the state
    NO_DATABASE, NO_CHECKSUM,        // the description
    OTHER_DATABASE,                  // the description, the one expected
    OFF_BUS, OTHER_MODE,             // the mode
    NO_EXCHANGE, DIAGNOSIS;          // address, cause, address

/// Causes for the last two, where no more is known.
extern const std::string_view REPORTS_DIAGNOSIS, NOT_EXCHANGING;

} // namespace Problems

/// Of an exception, `told` being the line that says it. What sends to `vesk status` is left out: the reader
/// is there.
Problem ProblemOf(std::string_view told, std::string_view cause, std::string_view next);
Problem ProblemOf(std::string_view type, std::string_view message);

/// What the module describes its database by is a checksum: eight hexadecimal digits.
bool IsChecksum(std::string_view description);

/// The text in one line: line breaks become "; ".
std::string OneLine(std::string_view text);

} // namespace Failures
