// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/system/String.h"

#include <functional>
#include <string>

namespace System::Diagnostics {

/// Where the library's diagnostics go.
class Trace {
public:
    /// Hands a line to the listener, or writes it to standard error.
    static void TraceDebug(const String& text);

    /// Replaces the listener, for the whole process; an empty one means standard error. Not to be called
    /// while another thread traces.
    static void SetListener(std::function<void(const std::string&)> listener);
};

} // namespace System::Diagnostics
