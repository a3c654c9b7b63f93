// SPDX-License-Identifier: MIT
#pragma once

#include "tools/vesk/verbs/Verb.h"

namespace VeskTool {

/// What changes at a module that goes on by itself, a plant's: its state, the operation mode, the exchange
/// with each slave, and failures of the application, over the end of one too.
class Changes {
public:
    explicit Changes(Session& session);

    /// Lets the session go on for a moment; what is otherwise than at the last call, the first time
    /// everything. Each has a "time" and "change": "state" and "mode" with a member of that name, "slave"
    /// with "address", "dataTransfer" and "diagnostic", or "failure" with "type" and "message", which are
    /// null where it is over.
    std::vector<Json> Next();

    /// One of them in a line for people, without its time.
    static std::string Text(const Json& change);

private:
    void GoOn();

    Session& _session;
    std::vector<Json> _before;
    Json _failure;
};

} // namespace VeskTool
