# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""D-Bus calls with plain Python values."""

from gi.repository import Gio, GLib

BusError = GLib.Error


def property_call(name, path, interface, key):
    """The call that reads a property."""
    return name, path, "org.freedesktop.DBus.Properties", "Get", GLib.Variant("(ss)", (interface, key))


class MessageBus:
    """A connection to the bus at `address`."""

    def __init__(self, address):
        flags = (Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT
                 | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION)
        self._connection = Gio.DBusConnection.new_for_address_sync(address, flags, None, None)
        self._connection.set_exit_on_close(False)

    def call(self, name, path, interface, method, arguments=None, timeout=10.0):
        """Calls a method and returns the reply's values as a tuple. Raises BusError."""
        reply = self._connection.call_sync(name, path, interface, method, arguments, None,
                                           Gio.DBusCallFlags.NONE, int(timeout * 1000), None)
        return reply.unpack()

    def call_all(self, calls, timeout=10.0):
        """Sends all calls (name, path, interface, method, arguments) before it waits, which is much faster than
        sequential calls. Returns the values of the replies in the same order. Raises BusError if a call fails."""
        replies = {}

        def finish(connection, result, index):
            try:
                replies[index] = connection.call_finish(result).unpack()
            except BusError as error:
                replies[index] = error

        context = GLib.MainContext.new()
        context.push_thread_default()
        try:
            for index, (name, path, interface, method, arguments) in enumerate(calls):
                self._connection.call(name, path, interface, method, arguments, None, Gio.DBusCallFlags.NONE,
                                      int(timeout * 1000), None, finish, index)
            while len(replies) < len(calls):
                context.iteration(True)
        finally:
            context.pop_thread_default()
        for reply in replies.values():
            if isinstance(reply, BusError):
                raise reply
        return [replies[index] for index in range(len(calls))]

    def send(self, name, path, interface, method, arguments=None):
        """Queues a call and ignores the reply."""
        self._connection.call(name, path, interface, method, arguments, None, Gio.DBusCallFlags.NONE, 1000, None, None)

    def send_for_reply(self, name, path, interface, method, arguments=None):
        """Sends a call that requests a reply, which is discarded."""
        message = Gio.DBusMessage.new_method_call(name, path, interface, method)
        if arguments:
            message.set_body(arguments)
        self._connection.send_message(message, Gio.DBusSendMessageFlags.NONE)

    def flush(self):
        """Waits until all queued messages are sent."""
        self._connection.flush_sync(None)

    def property(self, name, path, interface, key):
        return self.call(*property_call(name, path, interface, key))[0]

    def set_property(self, name, path, interface, key, variant):
        arguments = GLib.Variant("(ssv)", (interface, key, variant))
        self.call(name, path, "org.freedesktop.DBus.Properties", "Set", arguments)

    def has_owner(self, name):
        return self.call("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "NameHasOwner",
                         GLib.Variant("(s)", (name,)))[0]

    def process_of(self, name):
        """The pid of the owner of a bus name. Raises BusError for a name without owner."""
        return self.call("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                         "GetConnectionUnixProcessID", GLib.Variant("(s)", (name,)))[0]

    def close(self):
        self._connection.close_sync(None)
