"""Stands in for the desktop's disk service on a private system bus.

    udisks_mock.py LOG

Has a card in a drive that ejects, mounted at "/mnt/a card" and one at "/mnt/card 2"; a disk at
"/mnt/disk" that does not eject; and a volume at "/mnt/busy" that cannot be unmounted. Prints "ready"
once it can be called and writes the calls to LOG.
"""

import sys

import dbus
import dbus.mainloop.glib
import dbusmock.mockobject
from gi.repository import GLib

BASE = "/org/freedesktop/UDisks2"
NAME = "org.freedesktop.UDisks2"


def bytes_of(path):
    return dbus.Array(path.encode() + b"\0", signature="y")


def main():
    dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)
    bus = dbus.SystemBus()
    name = dbus.service.BusName(NAME, bus)
    root = dbusmock.mockobject.DBusMockObject(name, BASE, NAME, {}, sys.argv[1], True)

    def drive(path, ejectable):
        root.AddObject(f"{BASE}/drives/{path}", NAME + ".Drive",
                       {"Ejectable": dbus.Boolean(ejectable)}, [("Eject", "a{sv}", "", "")])

    def volume(path, drive_path, points, unmount=""):
        block = f"{BASE}/block_devices/{path}"
        root.AddObject(block, NAME + ".Block",
                       {"Drive": dbus.ObjectPath(drive_path)}, [])
        dbusmock.mockobject.objects[block].AddProperties(
            NAME + ".Filesystem",
            {"MountPoints": dbus.Array([bytes_of(point) for point in points], signature="ay")})
        dbusmock.mockobject.objects[block].AddMethod(
            NAME + ".Filesystem", "Unmount", "a{sv}", "", unmount)

    busy = "raise dbus.exceptions.DBusException('in use', name='org.freedesktop.UDisks2.Error.DeviceBusy')"
    drive("reader", True)
    drive("disk", False)
    volume("sdb1", f"{BASE}/drives/reader", ["/mnt/a card", "/mnt/card 2"])
    volume("sda1", f"{BASE}/drives/disk", ["/mnt/disk"])
    volume("sdb2", f"{BASE}/drives/reader", ["/mnt/busy"], busy)
    volume("loop0", "/", ["/mnt/image"])
    volume("sdc1", f"{BASE}/drives/reader", [])

    print("ready", flush=True)
    GLib.MainLoop().run()


main()
