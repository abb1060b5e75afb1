# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""A desktop portal with one setting, the colour scheme. Reads lines "dark" or "light" from its input. Prints the
URLs that programs ask it to open."""

import sys

from gi.repository import Gio, GLib

NAME = "org.freedesktop.portal.Desktop"
PATH = "/org/freedesktop/portal/desktop"
INTERFACE = "org.freedesktop.portal.Settings"
OPENER = "org.freedesktop.portal.OpenURI"
REQUEST = "/org/freedesktop/portal/desktop/request/any"
NAMESPACE = "org.freedesktop.appearance"
KEY = "color-scheme"
SCHEMES = {"none": 0, "dark": 1, "light": 2}

DESCRIPTION = f"""
<node><interface name="{INTERFACE}">
  <method name="Read"><arg type="s" direction="in"/><arg type="s" direction="in"/>
    <arg type="v" direction="out"/></method>
  <method name="ReadAll"><arg type="as" direction="in"/><arg type="a{{sa{{sv}}}}" direction="out"/></method>
  <signal name="SettingChanged"><arg type="s"/><arg type="s"/><arg type="v"/></signal>
  <property name="version" type="u" access="read"/>
</interface>
<interface name="{OPENER}">
  <method name="OpenURI"><arg type="s" direction="in"/><arg type="s" direction="in"/>
    <arg type="a{{sv}}" direction="in"/><arg type="o" direction="out"/></method>
</interface></node>"""


class SettingsPortal:
    def __init__(self, connection, scheme):
        self._connection = connection
        self._scheme = SCHEMES[scheme]
        settings, opener = Gio.DBusNodeInfo.new_for_xml(DESCRIPTION).interfaces
        connection.register_object(PATH, settings, self._handle_call, self._property, None)
        connection.register_object(PATH, opener, self._open, None, None)

    def change(self, scheme):
        self._scheme = SCHEMES[scheme]
        self._connection.emit_signal(None, PATH, INTERFACE, "SettingChanged",
                                     GLib.Variant("(ssv)", (NAMESPACE, KEY, self._value())))

    def _value(self):
        return GLib.Variant("u", self._scheme)

    def _property(self, *_):
        return GLib.Variant("u", 1)

    def _handle_call(self, _connection, _sender, _path, _interface, method, arguments, invocation):
        if method == "ReadAll":
            invocation.return_value(GLib.Variant("(a{sa{sv}})", ({NAMESPACE: {KEY: self._value()}},)))
        elif arguments.unpack() == (NAMESPACE, KEY):
            # Read wraps its reply in a second variant; see the documentation of org.freedesktop.portal.Settings.
            invocation.return_value(GLib.Variant("(v)", (GLib.Variant("v", self._value()),)))
        else:
            invocation.return_dbus_error("org.freedesktop.portal.Error.NotFound", "Requested setting not found")

    @staticmethod
    def _open(_connection, _sender, _path, _interface, _method, arguments, invocation):
        print("opened", arguments.unpack()[1], flush=True)
        invocation.return_value(GLib.Variant("(o)", (REQUEST,)))


def main():
    loop = GLib.MainLoop()
    connection = Gio.bus_get_sync(Gio.BusType.SESSION, None)
    portal = SettingsPortal(connection, sys.argv[1])
    Gio.bus_own_name_on_connection(connection, NAME, Gio.BusNameOwnerFlags.NONE, None, lambda *_: loop.quit())

    def read_line(source, _condition):
        line = source.readline()
        if not line:
            loop.quit()
            return False
        portal.change(line.strip())
        return True

    GLib.io_add_watch(sys.stdin, GLib.PRIORITY_DEFAULT, GLib.IO_IN | GLib.IO_HUP, read_line)
    loop.run()


if __name__ == "__main__":
    main()
