// SPDX-License-Identifier: MIT
#include "tools/vesk/text/Progress.h"

#include <cstdio>

namespace VeskTool {

static constexpr double REDRAW_SECONDS = 0.1;

Progress::Progress(std::ostream& out, bool bar, int requests, int bytes)
    : _out(out), _bar(bar), _requests(requests), _bytes(bytes) {}

void Progress::Show(int answered, int bytes, double seconds) {
    // The time for erasing before and for checking afterwards says nothing about the rate.
    if (bytes == 0)
        _dataStart = seconds;
    if (bytes > _arrived)
        _dataSeconds = seconds - _dataStart;
    _arrived = bytes;
    const bool whole = answered == _requests;
    const int tenth = answered * 10 / _requests;
    if (_bar) {
        if (!whole && _drawn >= 0 && seconds - _drawn < REDRAW_SECONDS)
            return;
        const auto filled = static_cast<std::size_t>(tenth);
        _out << "\r[" << std::string(filled, '#') << std::string(10 - filled, '.') << "] " << Line(answered)
             << "\033[K" << std::flush;
        _drawn = seconds;
        _open = true;
    } else if (tenth > _tenth) {
        _tenth = tenth;
        _out << "  " << (tenth < 10 ? " " : "") << tenth * 10 << " %  " << Line(answered) << std::endl;
    }
    if (whole)
        End();
}

void Progress::End() {
    if (_open)
        _out << std::endl;
    _open = false;
}

std::string Progress::Line(int answered) const {
    std::string line = std::to_string(answered) + "/" + std::to_string(_requests) + " requests, " +
                       std::to_string(_arrived) + "/" + std::to_string(_bytes) + " bytes";
    if (_dataSeconds > 0) {
        const double rate = _arrived / _dataSeconds;
        char text[64];
        std::snprintf(text, sizeof text, ", %.1f KiB/s, %.1f s left", rate / 1024,
                      (_bytes - _arrived) / rate);
        line += text;
    }
    return line;
}

} // namespace VeskTool
