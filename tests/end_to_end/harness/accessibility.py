# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""The accessible objects of a program (AT-SPI). Every call reads them again."""

from dataclasses import dataclass, field

from gi.repository import GLib

from harness.message_bus import BusError, MessageBus, property_call

ROOT = "/org/a11y/atspi/accessible/root"
ACCESSIBLE = "org.a11y.atspi.Accessible"
SCREEN_COORDINATES = 0  # ATSPI_COORD_TYPE_SCREEN
MAX_DEPTH = 40

# Bit numbers of AtspiStateType.
STATES = {1: "active", 4: "checked", 5: "collapsed", 9: "expandable", 10: "expanded", 11: "focusable", 12: "focused",
          20: "pressed", 23: "selected", 24: "sensitive", 25: "showing", 30: "visible"}


@dataclass
class Node:
    """An accessible object and its descendants."""

    bus: MessageBus
    owner: str
    path: str
    name: str
    role: str
    states: frozenset
    children: list = field(default_factory=list)

    def walk(self):
        """This object and its descendants, in reading order."""
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
    """The accessibility bus (AT-SPI) of a desktop."""

    def __init__(self, session):
        name, path = "org.a11y.Bus", "/org/a11y/bus"
        session.set_property(name, path, "org.a11y.Status", "IsEnabled", GLib.Variant("b", True))
        self._bus = MessageBus(session.call(name, path, "org.a11y.Bus", "GetAddress")[0])

    def tree_of(self, pid):
        """The accessible objects of the process `pid`; None while it has none."""
        for attempt in range(4):
            try:
                for owner, path in self._children("org.a11y.atspi.Registry", ROOT):
                    if self._bus.process_of(owner) == pid:
                        return self._read(owner, path)
                return None
            except BusError:
                # Objects disappeared while they were read: the program updated itself, or another program ended.
                if attempt == 3:
                    raise

    def _children(self, owner, path):
        return self._bus.call(owner, path, ACCESSIBLE, "GetChildren")[0]

    def _read(self, owner, path):
        """Reads an object and its descendants, one level of the tree after the other."""
        root = None
        level = [(None, owner, path)]  # parent, bus name and path of each object
        for _ in range(MAX_DEPTH):
            calls = [call for _, owner, path in level for call in (
                (owner, path, ACCESSIBLE, "GetState", None), (owner, path, ACCESSIBLE, "GetRoleName", None),
                (owner, path, ACCESSIBLE, "GetChildren", None), property_call(owner, path, ACCESSIBLE, "Name"))]
            values = [reply[0] for reply in self._bus.call_all(calls)]
            children = []
            for (parent, owner, path), (low, high), role, child_objects, name in zip(
                    level, values[::4], values[1::4], values[2::4], values[3::4]):
                bits = low | high << 32
                states = frozenset(state for bit, state in STATES.items() if bits >> bit & 1)
                node = Node(self._bus, owner, path, name, role, states)
                if parent:
                    parent.children.append(node)
                else:
                    root = node
                children += [(node, *child) for child in child_objects if child[1] != "/org/a11y/atspi/null"]
            if not children:
                break
            level = children
        return root

    def close(self):
        self._bus.close()
