// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/Process.h"

#include <optional>
#include <stdexcept>
#include <string>

/// A D-Bus of the test's own, with a socket in its own folder; it ends with the object.
class PrivateBus {
public:
    PrivateBus() { Begin(); }

    std::string Address() const { return "unix:path=" + _folder.Path("bus"); }

    /// Lets it end before its users do.
    void End() { _daemon->End(SIGTERM); }

    /// Lets another one begin at the same address.
    void Begin() {
        _daemon.emplace("/usr/bin/dbus-daemon",
                        Process::Arguments{"--nofork", "--print-address", "--config-file=" + _configuration});
        if (!_daemon->WaitForOut("unix:"))
            throw std::runtime_error("no dbus-daemon: " + _daemon->Err());
    }

private:
    TemporaryFolder _folder;
    std::string _configuration = _folder.Put(
        "bus.conf", "<busconfig><type>session</type><listen>" + Address() +
                        "</listen><policy context='default'><allow own='*'/><allow send_destination='*'/>"
                        "<allow receive_sender='*'/></policy></busconfig>");
    std::optional<Process> _daemon;
};
