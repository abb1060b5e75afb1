# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""hostile_service.py watcher|portal MANNER: a program that owns the bus name of a service and behaves badly.

silent: it never replies. refusing: every reply is an error. nonsense: replies have unexpected types. huge: replies have
10 MB. flapping: it acquires and releases its name 200 times, then behaves well. shouting: it sends 20,000 signals with
unexpected arguments, then behaves well. proper: it behaves well. It prints "ready" after that, "asked METHOD" for each
call, and "item NAME" for each registered item."""

import itertools
import sys

from gi.repository import Gio, GLib

SERVICES = {"watcher": ("org.kde.StatusNotifierWatcher", "/StatusNotifierWatcher", "org.kde.StatusNotifierWatcher"),
            "portal": ("org.freedesktop.portal.Desktop", "/org/freedesktop/portal/desktop",
                       "org.freedesktop.portal.Settings")}
BUS = ("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus")
APPEARANCE = ("org.freedesktop.appearance", "color-scheme")
DARK = 1
FLAPS = 200
SHOUTS = 20_000
HUGE = 10_000_000
ABSURD = (GLib.Variant("()", ()), GLib.Variant("(s)", ("x" * 1_000,)), GLib.Variant("(ssv)", (*APPEARANCE,
          GLib.Variant("as", ["dark"] * 20))), GLib.Variant("(ssv)", (*APPEARANCE, GLib.Variant("x", -1))),
          GLib.Variant("(ai)", (list(range(200)),)))


class HostileService:
    def __init__(self, kind, manner):
        self._name, self._path, self._interface = SERVICES[kind]
        self._manner = manner
        self._connection = Gio.bus_get_sync(Gio.BusType.SESSION, None)
        self._connection.add_filter(self._filter)

    def run(self):
        if self._manner == "flapping":
            for _ in range(FLAPS):
                self._request_name()
                self._call_bus("ReleaseName", GLib.Variant("(s)", (self._name,)))
        self._request_name()
        if self._manner == "shouting":
            self._shout()
        self._print("ready")
        GLib.MainLoop().run()

    def _shout(self):
        names = ("StatusNotifierHostRegistered", "StatusNotifierHostUnregistered", "SettingChanged")
        for name, arguments, _ in zip(itertools.cycle(names), itertools.cycle(ABSURD), range(SHOUTS)):
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
        if self._manner == "silent":
            return None
        if self._manner == "refusing":
            return message.new_method_error_literal("org.freedesktop.DBus.Error.AccessDenied", "No")
        reply = message.new_method_reply()
        body = self._body(message)
        if body:
            reply.set_body(body)
        return reply

    def _body(self, message):
        if self._manner == "nonsense":
            return GLib.Variant("(v)", (GLib.Variant("s", "true"),))
        if self._manner == "huge":
            return GLib.Variant("(v)", (GLib.Variant("as", ["x" * 990] * (HUGE // 1_000)),))
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
