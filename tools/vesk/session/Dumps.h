// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace VeskTool {

/// The dumps of the DPRAM that are kept of fatal events, each in a file of its own, which no later one
/// replaces: vesk-YYYYMMDD-hhmmss.bin, with the time at which it was made.
class Dumps {
public:
    /// Where they are kept from now on; the system's folder for temporary files otherwise.
    static void SetFolder(const std::string& path);

    /// Lets the library keep the DPRAM when the module object ends that is there now.
    static void Keep();
    /// Lets it keep none.
    static void KeepNone();

    /// Somebody else has kept one there.
    static void KeptIn(const std::string& path);

    /// The path of the one to keep, or that was kept last; empty for none.
    static std::string Path();
};

} // namespace VeskTool
