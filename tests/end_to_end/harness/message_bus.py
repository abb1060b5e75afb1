# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""Calls over D-Bus, with plain Python values."""

from gi.repository import Gio, GLib

BusError = GLib.Error


class MessageBus:
    """A connection to the bus at `address`."""

    def __init__(self, address):
        flags = (Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT
                 | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION)
        self._connection = Gio.DBusConnection.new_for_address_sync(address, flags, None, None)
        self._connection.set_exit_on_close(False)

    def call(self, name, path, interface, method, arguments=None, timeout=10.0):
        """The reply's values as a tuple. Raises BusError."""
        reply = self._connection.call_sync(name, path, interface, method, arguments, None,
                                           Gio.DBusCallFlags.NONE, int(timeout * 1000), None)
        return reply.unpack()

    def send(self, name, path, interface, method, arguments=None):
        """Calls without waiting for a reply, or for the call to have left."""
        self._connection.call(name, path, interface, method, arguments, None, Gio.DBusCallFlags.NONE, 1000, None, None)

    def send_for_reply(self, name, path, interface, method, arguments=None):
        """Calls so that a reply is due, which nobody takes."""
        message = Gio.DBusMessage.new_method_call(name, path, interface, method)
        if arguments:
            message.set_body(arguments)
        self._connection.send_message(message, Gio.DBusSendMessageFlags.NONE)

    def flush(self):
        """Waits until all that was sent has left."""
        self._connection.flush_sync(None)

    def property(self, name, path, interface, key):
        arguments = GLib.Variant("(ss)", (interface, key))
        return self.call(name, path, "org.freedesktop.DBus.Properties", "Get", arguments)[0]

    def set_property(self, name, path, interface, key, variant):
        arguments = GLib.Variant("(ssv)", (interface, key, variant))
        self.call(name, path, "org.freedesktop.DBus.Properties", "Set", arguments)

    def has_owner(self, name):
        return self.call("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "NameHasOwner",
                         GLib.Variant("(s)", (name,)))[0]

    def process_of(self, name):
        """The pid of the process behind a bus name. Raises BusError for a name without owner."""
        return self.call("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                         "GetConnectionUnixProcessID", GLib.Variant("(s)", (name,)))[0]

    def close(self):
        self._connection.close_sync(None)
