// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/system/diagnostics/Trace.h"

#include <string>
#include <vector>

/// Turns one of the diagnostic switches on and collects what is traced, for as long as it lives.
class TraceListener {
public:
    explicit TraceListener(bool& diagnosticSwitch) : _switch(diagnosticSwitch) {
        _switch = true;
        System::Diagnostics::Trace::SetListener([this](const std::string& text) { lines.push_back(text); });
    }

    ~TraceListener() {
        System::Diagnostics::Trace::SetListener({});
        _switch = false;
    }

    TraceListener(const TraceListener&) = delete;
    TraceListener& operator=(const TraceListener&) = delete;

    std::vector<std::string> lines;

private:
    bool& _switch;
};
