// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/system/String.h"

namespace Vesk {

/// The diagnostics of the whole process. An application sets them before it creates a module.
class RuntimeConfig {
public:
    /// Traces each mailbox request and response.
    static bool _printMailbox;
    /// Traces the module's indication register whenever it yields an event.
    static bool _printVelmoHandshake;
    /// Traces the host's indication register when it is written.
    static bool _printApplicationHandshake;
    /// Traces the contents of the DPRAM when a host interface is destroyed.
    static bool _printHostInterfaceDump;
    /// The file that gets the contents of the DPRAM when a host interface is destroyed; null for none.
    static System::String _hostInterfaceDumpPath;
};

} // namespace Vesk
