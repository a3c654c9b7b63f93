// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <sdbus-c++/sdbus-c++.h>
#include <string>

namespace Vesk::DBus {

/// A connection to a bus: "system", "session", or the one at an address such as "unix:path=/run/bus".
/// sdbus::Error where there is none.
inline std::unique_ptr<sdbus::IConnection> Connect(const std::string& bus) {
    if (bus == "system")
        return sdbus::createSystemBusConnection();
    if (bus == "session")
        return sdbus::createSessionBusConnection();
    return sdbus::createSessionBusConnectionWithAddress(bus);
}

} // namespace Vesk::DBus
