// SPDX-License-Identifier: MIT
#pragma once

#include "tools/vesk/text/Console.h"

#include <cstdint>
#include <string>

namespace VeskTool {

/// The progress of something long: on a terminal a bar that is drawn over and over and fits its width,
/// otherwise a line for each tenth.
class Progress {
public:
    /// Of `total` steps, at least one, which `unit` names in the plural; `bytes` in all that they carry, 0
    /// where nobody counts them.
    Progress(const Console& console, std::string unit, std::int64_t total, std::int64_t bytes = 0);
    /// Ends the bar's line.
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// `done` steps and their `bytes` are through, `seconds` after the start.
    void Show(std::int64_t done, std::int64_t bytes, double seconds);

    /// Ends the bar's line, so that something else may be written.
    void End();

private:
    void Note(std::int64_t done, std::int64_t bytes, double seconds);
    std::string Bar(std::int64_t done, std::size_t width) const;
    std::string Line(std::int64_t done, std::size_t width) const;

    Console _console;
    std::string _unit;
    std::int64_t _total;
    std::int64_t _bytes;
    std::int64_t _arrived = 0; // bytes so far; steps where there are none
    double _dataStart = 0;     // when the first of them went out
    double _dataSeconds = 0;   // how long they took
    std::int64_t _tenth = 0;   // the last one that a line was written for
    double _drawn = -1;        // when the bar was drawn last
    bool _open = false;        // the bar's line is not ended
};

} // namespace VeskTool
