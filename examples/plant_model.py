#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""A model of a drive, for a module in software: the speed of conveyor-1 of plant.toml follows its set point in a ramp.

    vesk module --dpram /tmp/dpram --lines /tmp/lines --flash /tmp/flash --publish plant
    examples/plant_model.py plant

Then start the application on the same two files; that of examples/published.cpp lets the drive run at 1000 rpm.
Arguments: the NAME of --publish, and the bus as in --bus (session). Needs python3-dbus and python3-gi. "Input" is what
goes to the bus, so the drive gets it.
"""
import os
import struct
import sys

import dbus.bus
import dbus.mainloop.glib
from gi.repository import GLib

ADDRESS = 3
PERIOD = 20  # ms
STEP = 10  # rpm in a period: 500 rpm/s
LENGTH = 4  # bytes that the drive sends: speed (int16), and a word that it leaves 0
INTERFACE = "org.libvesk.VirtualModule1"


def connect(bus):
    dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)
    named = {"session": dbus.SessionBus, "system": dbus.SystemBus}
    return named[bus]() if bus in named else dbus.bus.BusConnection(bus)


class Drive:
    def __init__(self, module):
        self.module = dbus.Interface(module, INTERFACE)
        self.set_point = self.speed = 0  # rpm
        module.connect_to_signal("InputChanged", self.take_input, INTERFACE)
        module.connect_to_signal("PropertiesChanged", self.look_around, dbus.PROPERTIES_IFACE)
        self.look_around(INTERFACE, module.GetAll(INTERFACE, dbus_interface=dbus.PROPERTIES_IFACE), [])

    def take_input(self, address, data):
        if address == ADDRESS:
            (self.set_point,) = struct.unpack(">h", bytes(data[:2]))

    def look_around(self, _interface, changed, _invalidated):
        """Without a database there is no drive yet; without its master a drive stops, and with it goes on."""
        slaves = {address: exchanges for address, _ident, _present, exchanges in changed["Slaves"]}
        self.is_there = ADDRESS in slaves
        if slaves.get(ADDRESS):
            self.take_input(ADDRESS, self.module.GetInput(ADDRESS))
        else:
            self.set_point = 0

    def step(self):
        self.speed += max(-STEP, min(STEP, self.set_point - self.speed))
        if self.is_there:
            self.module.SetOutput(ADDRESS, struct.pack(">h", self.speed).ljust(LENGTH, b"\0"))
        return GLib.SOURCE_CONTINUE


def main(name, bus=os.environ.get("VESK_BUS", "session")):
    module = connect(bus).get_object("org.libvesk.VirtualModule." + name, "/org/libvesk/VirtualModule")
    GLib.timeout_add(PERIOD, Drive(module).step)
    print("the drive is ready", flush=True)
    GLib.MainLoop().run()


if __name__ == "__main__":
    main(*sys.argv[1:])
