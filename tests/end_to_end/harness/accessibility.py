# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""What assistive technology sees of a program, read afresh at every call: nothing is cached."""

from dataclasses import dataclass, field

from gi.repository import GLib

from message_bus import BusError, MessageBus

ROOT = "/org/a11y/atspi/accessible/root"
ACCESSIBLE = "org.a11y.atspi.Accessible"
SCREEN_COORDINATES = 0

STATES = {1: "active", 4: "checked", 5: "collapsed", 9: "expandable", 10: "expanded", 11: "focusable", 12: "focused",
          20: "pressed", 23: "selected", 24: "sensitive", 25: "showing", 30: "visible"}


@dataclass
class Node:
    """One accessible object and what is below it."""

    bus: MessageBus
    owner: str
    path: str
    name: str
    role: str
    states: frozenset
    children: list = field(default_factory=list)

    def walk(self):
        """This object and everything below it, in reading order."""
        yield self
        for child in self.children:
            yield from child.walk()

    def extents(self):
        """Left, top, width and height on the screen."""
        return self.bus.call(self.owner, self.path, "org.a11y.atspi.Component", "GetExtents",
                             GLib.Variant("(u)", (SCREEN_COORDINATES,)))[0]

    def centre(self):
        left, top, width, height = self.extents()
        return left + width // 2, top + height // 2


class AccessibilityBus:
    """The bus on which programs describe themselves to assistive technology."""

    def __init__(self, session):
        name, path = "org.a11y.Bus", "/org/a11y/bus"
        session.set_property(name, path, "org.a11y.Status", "IsEnabled", GLib.Variant("b", True))
        self._bus = MessageBus(session.call(name, path, "org.a11y.Bus", "GetAddress")[0])

    def tree_of(self, pid):
        """The objects of the program whose process is `pid`; None while it has none."""
        for attempt in range(4):
            try:
                for owner, path in self._children("org.a11y.atspi.Registry", ROOT):
                    if self._bus.process_of(owner) == pid:
                        return self._read(owner, path)
                return None
            except BusError:
                # The program redrew itself, or another one ended, in the middle of the reading.
                if attempt == 3:
                    raise

    def _children(self, owner, path):
        return self._bus.call(owner, path, ACCESSIBLE, "GetChildren")[0]

    def _read(self, owner, path, depth=0):
        low, high = self._bus.call(owner, path, ACCESSIBLE, "GetState")[0]
        bits = low | high << 32
        node = Node(self._bus, owner, path, self._bus.property(owner, path, ACCESSIBLE, "Name"),
                    self._bus.call(owner, path, ACCESSIBLE, "GetRoleName")[0],
                    frozenset(name for bit, name in STATES.items() if bits >> bit & 1))
        if depth < 40:
            node.children = [self._read(*child, depth + 1) for child in self._children(owner, path)
                             if child[1] != "/org/a11y/atspi/null"]
        return node

    def close(self):
        self._bus.close()
