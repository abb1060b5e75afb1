# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""hostile_service.py watcher|portal FAULT: owns the bus name of a service and sends invalid or too many messages.

FAULT is no-replies, error-replies, wrong-types (of the values in replies), large-replies (10 MB), name-changes (it
acquires and releases its name 200 times, then works correctly) or signal-flood (it sends 20,000 signals with
unexpected arguments, then works correctly). It prints "ready" after that, "asked METHOD" for each call, and
"item NAME" for each registered item."""

import itertools
import sys

from gi.repository import Gio, GLib

SERVICES = {"watcher": ("org.kde.StatusNotifierWatcher", "/StatusNotifierWatcher", "org.kde.StatusNotifierWatcher"),
            "portal": ("org.freedesktop.portal.Desktop", "/org/freedesktop/portal/desktop",
                       "org.freedesktop.portal.Settings")}
BUS = ("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus")
APPEARANCE = ("org.freedesktop.appearance", "color-scheme")
DARK = 1
NAME_CHANGES = 200
SIGNALS = 20_000
LARGE_REPLY_BYTES = 10_000_000
UNEXPECTED_ARGUMENTS = (
    GLib.Variant("()", ()),
    GLib.Variant("(s)", ("x" * 1_000,)),
    GLib.Variant("(ssv)", (*APPEARANCE, GLib.Variant("as", ["dark"] * 20))),
    GLib.Variant("(ssv)", (*APPEARANCE, GLib.Variant("x", -1))),
    GLib.Variant("(ai)", (list(range(200)),)))


class HostileService:
    def __init__(self, kind, fault):
        self._name, self._path, self._interface = SERVICES[kind]
        self._fault = fault
        self._connection = Gio.bus_get_sync(Gio.BusType.SESSION, None)
        self._connection.add_filter(self._filter)

    def run(self):
        if self._fault == "name-changes":
            for _ in range(NAME_CHANGES):
                self._request_name()
                self._call_bus("ReleaseName", GLib.Variant("(s)", (self._name,)))
        self._request_name()
        if self._fault == "signal-flood":
            self._send_signals()
        self._print("ready")
        GLib.MainLoop().run()

    def _send_signals(self):
        names = ("StatusNotifierHostRegistered", "StatusNotifierHostUnregistered", "SettingChanged")
        for name, arguments, _ in zip(itertools.cycle(names), itertools.cycle(UNEXPECTED_ARGUMENTS), range(SIGNALS)):
            self._connection.emit_signal(None, self._path, self._interface, name, arguments)
        self._connection.flush_sync(None)

    def _request_name(self):
        self._call_bus("RequestName", GLib.Variant("(su)", (self._name, 0)))

    def _call_bus(self, method, arguments):
        self._connection.call_sync(*BUS, method, arguments, None, Gio.DBusCallFlags.NONE, -1, None)

    def _filter(self, _connection, message, incoming):
        """Replies to calls before GDBus handles them."""
        if not incoming or message.get_message_type() != Gio.DBusMessageType.METHOD_CALL \
                or message.get_path() != self._path:
            return message
        self._print(f"asked {message.get_member()}")
        if message.get_member() == "RegisterStatusNotifierItem":
            self._print(f"item {message.get_body().unpack()[0]}")
        reply = self._reply(message)
        if reply:
            self._connection.send_message(reply, Gio.DBusSendMessageFlags.NONE)
        return None

    def _reply(self, message):
        if self._fault == "no-replies":
            return None
        if self._fault == "error-replies":
            return message.new_method_error_literal("org.freedesktop.DBus.Error.AccessDenied", "No")
        reply = message.new_method_reply()
        body = self._body(message)
        if body:
            reply.set_body(body)
        return reply

    def _body(self, message):
        if self._fault == "wrong-types":
            return GLib.Variant("(v)", (GLib.Variant("s", "true"),))
        if self._fault == "large-replies":
            return GLib.Variant("(v)", (GLib.Variant("as", ["x" * 990] * (LARGE_REPLY_BYTES // 1_000)),))
        if message.get_member() == "Get":
            return GLib.Variant("(v)", (GLib.Variant("b", True),))
        if message.get_member() == "Read":
            return GLib.Variant("(v)", (GLib.Variant("v", GLib.Variant("u", DARK)),))
        return None

    @staticmethod
    def _print(line):
        print(line, flush=True)


if __name__ == "__main__":
    HostileService(*sys.argv[1:]).run()
