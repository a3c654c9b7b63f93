// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/Process.h"

/// A D-Bus of the test's own, with a socket in its own folder; it ends with the object.
class PrivateBus {
public:
    PrivateBus() {
        if (!_daemon.WaitForOut("unix:"))
            throw std::runtime_error("no dbus-daemon: " + _daemon.Err());
    }

    std::string Address() const { return "unix:path=" + _folder.Path("bus"); }

    /// Lets it end before its users do.
    void End() { _daemon.End(SIGTERM); }

private:
    std::string Configuration() const {
        return "<busconfig><type>session</type><listen>" + Address() +
               "</listen><policy context='default'><allow own='*'/><allow send_destination='*'/>"
               "<allow receive_sender='*'/></policy></busconfig>";
    }

    TemporaryFolder _folder;
    Process _daemon{
        "/usr/bin/dbus-daemon",
        {"--nofork", "--print-address", "--config-file=" + _folder.Put("bus.conf", Configuration())}};
};
