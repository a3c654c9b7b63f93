// SPDX-License-Identifier: MIT
#include "tools/vesk/text/Progress.h"

#include <algorithm>
#include <cstdio>
#include <limits>
#include <ostream>
#include <vector>

namespace VeskTool {

static constexpr double REDRAW_SECONDS = 0.1;

Progress::Progress(const Console& console, std::string unit, std::int64_t total, std::int64_t bytes)
    : _console(console), _unit(std::move(unit)), _total(std::max<std::int64_t>(total, 1)), _bytes(bytes) {}

Progress::~Progress() {
    try {
        End();
    } catch (...) {
        // What cannot be written was told before.
    }
}

void Progress::Show(std::int64_t done, std::int64_t bytes, double seconds) {
    Note(done, bytes, seconds);
    const bool whole = done == _total;
    const std::int64_t tenth = done * 10 / std::max<std::int64_t>(_total, 1);
    if (_console.draws) {
        if (!whole && _drawn >= 0 && seconds - _drawn < REDRAW_SECONDS)
            return;
        _console.out << "\r" << Bar(done, _console.columns() - 1) << "\033[K" << std::flush;
        _drawn = seconds;
        _open = true;
    } else if (tenth > _tenth) {
        _tenth = tenth;
        _console.out << "  " << (tenth < 10 ? " " : "") << tenth * 10 << " %  "
                     << Line(done, std::numeric_limits<std::size_t>::max()) << std::endl;
    }
    if (whole)
        End();
}

/// The time before the first byte and after the last one says nothing about the rate.
void Progress::Note(std::int64_t done, std::int64_t bytes, double seconds) {
    const std::int64_t arrived = _bytes > 0 ? bytes : done;
    if (arrived == 0)
        _dataStart = seconds;
    if (arrived > _arrived)
        _dataSeconds = seconds - _dataStart;
    _arrived = arrived;
}

void Progress::End() {
    if (_open)
        _console.out << std::endl;
    _open = false;
}

static std::string Rounded(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.1f", value);
    return text;
}

/// One column less than the terminal has: with the last one it goes on in the next line.
std::string Progress::Bar(std::int64_t done, std::size_t width) const {
    const auto filled = static_cast<std::size_t>(done * 10 / _total);
    const std::string bar = "[" + std::string(filled, '#') + std::string(10 - filled, '.') + "] ";
    return (bar + Line(done, width > bar.size() ? width - bar.size() : 0)).substr(0, width);
}

/// As many of its parts as there is room for.
std::string Progress::Line(std::int64_t done, std::size_t width) const {
    std::vector<std::string> parts{std::to_string(done) + "/" + std::to_string(_total) + " " + _unit};
    const double rate = _dataSeconds > 0 ? static_cast<double>(_arrived) / _dataSeconds : 0;
    if (_bytes > 0)
        parts.push_back(std::to_string(_arrived) + "/" + std::to_string(_bytes) + " bytes");
    if (_bytes > 0 && rate > 0)
        parts.push_back(Rounded(rate / 1024) + " KiB/s");
    if (rate > 0)
        parts.push_back(Rounded(static_cast<double>((_bytes > 0 ? _bytes : _total) - _arrived) / rate) +
                        " s left");
    std::string line;
    for (const std::string& part : parts) {
        const std::string longer = line + (line.empty() ? "" : ", ") + part;
        if (longer.size() > width)
            break;
        line = longer;
    }
    return line;
}

} // namespace VeskTool
