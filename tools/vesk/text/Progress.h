// SPDX-License-Identifier: MIT
#pragma once

#include <ostream>
#include <string>

namespace VeskTool {

/// The progress of a download: on a terminal a bar that is drawn over and over, otherwise a line for each
/// tenth of the requests.
class Progress {
public:
    Progress(std::ostream& out, bool bar, int requests, int bytes);

    /// `answered` requests and `bytes` program bytes are through, `seconds` after the start.
    void Show(int answered, int bytes, double seconds);

    /// Ends the bar's line, so that something else may be written.
    void End();

private:
    std::string Line(int answered) const;

    std::ostream& _out;
    bool _bar;
    int _requests;
    int _bytes;
    int _arrived = 0;        // program bytes so far
    double _dataStart = 0;   // when the first of them went out
    double _dataSeconds = 0; // how long they took
    int _tenth = 0;          // the last one that a line was written for
    double _drawn = -1;      // when the bar was drawn last
    bool _open = false;      // the bar's line is not ended
};

} // namespace VeskTool
