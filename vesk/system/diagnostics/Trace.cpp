// SPDX-License-Identifier: MIT
#include "vesk/system/diagnostics/Trace.h"

#include <cstdio>

namespace System::Diagnostics {

static std::function<void(const std::string&)>& Listener() {
    // Never destroyed: whatever ends with the process may still have something to tell.
    static auto& listener = *new std::function<void(const std::string&)>;
    return listener;
}

void Trace::TraceDebug(const String& text) {
    if (Listener())
        Listener()(text.Value());
    else
        std::fprintf(stderr, "%s\n", text.Value().c_str());
}

void Trace::SetListener(std::function<void(const std::string&)> listener) {
    Listener() = std::move(listener);
}

} // namespace System::Diagnostics
