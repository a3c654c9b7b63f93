// SPDX-License-Identifier: MIT
#pragma once

#include "tools/vesk/session/Link.h"
#include "vesk/modules/dpvm/Vt22Bootloader.h"

#include <functional>
#include <memory>

namespace VeskTool {

/// One life of the module in its bootloader: the module object and the loop around its Update, which ends in
/// any case because the library limits every wait. A new session resets the module. The library's exceptions
/// pass through; Interrupted when a signal has come.
class BootloaderSession {
public:
    explicit BootloaderSession(const Link& link);

    Vesk::Modules::DPVM::Vt22Bootloader& Module() { return *_module; }

    /// Updates until the bootloader has shown its identity.
    void Boot();

    /// Downloads the file, as what it says it is: a bootloader or an application. `observer` is called at the
    /// start and with each answer, with the number of requests that are still to be answered.
    void Download(const std::shared_ptr<Vesk::Modules::Bootloader::TarnFile>& file,
                  const std::function<void(int remaining)>& observer);

private:
    void Update();

    std::shared_ptr<Vesk::Modules::DPVM::Vt22Bootloader> _module;
};

} // namespace VeskTool
