# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""hostile_service.py watcher|portal MANNER: a program that has the name of a service which Tarn asks, and means harm.

silent: it never answers. refusing: every answer is an error. nonsense: answers are of absurd types. huge: answers are
of 10 MB. flapping: it takes the name and lets it go 200 times, then behaves. shouting: it sends 20,000 signals of its
service with absurd arguments, then behaves. proper: it behaves. It says "ready" once that is done, and what it was
asked: "asked METHOD" in a line each, and "item NAME" for an item that is registered."""

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
                self._ask_for_name()
                self._call_bus("ReleaseName", GLib.Variant("(s)", (self._name,)))
        self._ask_for_name()
        if self._manner == "shouting":
            self._shout()
        self._say("ready")
        GLib.MainLoop().run()

    def _shout(self):
        names = ("StatusNotifierHostRegistered", "StatusNotifierHostUnregistered", "SettingChanged")
        for name, arguments, _ in zip(itertools.cycle(names), itertools.cycle(ABSURD), range(SHOUTS)):
            self._connection.emit_signal(None, self._path, self._interface, name, arguments)
        self._connection.flush_sync(None)

    def _ask_for_name(self):
        self._call_bus("RequestName", GLib.Variant("(su)", (self._name, 0)))

    def _call_bus(self, method, arguments):
        self._connection.call_sync(*BUS, method, arguments, None, Gio.DBusCallFlags.NONE, -1, None)

    def _filter(self, _connection, message, incoming):
        """Answers calls before anything else sees them."""
        if not incoming or message.get_message_type() != Gio.DBusMessageType.METHOD_CALL \
                or message.get_path() != self._path:
            return message
        self._say(f"asked {message.get_member()}")
        if message.get_member() == "RegisterStatusNotifierItem":
            self._say(f"item {message.get_body().unpack()[0]}")
        answer = self._answer(message)
        if answer:
            self._connection.send_message(answer, Gio.DBusSendMessageFlags.NONE)
        return None

    def _answer(self, message):
        if self._manner == "silent":
            return None
        if self._manner == "refusing":
            return message.new_method_error_literal("org.freedesktop.DBus.Error.AccessDenied", "No")
        answer = message.new_method_reply()
        body = self._body(message)
        if body:
            answer.set_body(body)
        return answer

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
    def _say(what):
        print(what, flush=True)


if __name__ == "__main__":
    HostileService(*sys.argv[1:]).run()
