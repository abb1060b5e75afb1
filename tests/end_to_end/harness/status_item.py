# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""Tarn's item in the panel: what it says over D-Bus, and where it is on the screen."""

import re

from processes import wait_until

INTERFACE = "org.kde.StatusNotifierItem"
PANEL_REACH = 40
STATUS_AREA = re.compile(r'\("wrapper-2\.0" "Wrapper-2\.0"\)\s+(\d+)x(\d+)\S+\s+\+(\d+)\+(\d+)$', re.MULTILINE)


def status_area(desktop):
    """Left, top, width and height of the panel's status area; None while it is empty."""
    for match in STATUS_AREA.finditer(desktop.run("xwininfo", "-root", "-tree")):
        width, height, left, top = map(int, match.groups())
        # The panel's tool tips are windows of the same program, but do not lie within the panel.
        if width >= 16 and top + height <= PANEL_REACH:
            return left, top, width, height
    return None


def status_area_centre(desktop):
    """The middle of the status area, and so of its only item; None while it is empty."""
    area = status_area(desktop)
    return area and (area[0] + area[2] // 2, area[1] + area[3] // 2)


class RegisteredItem:
    """The item of the process `pid` as it describes itself to panels over the bus."""

    def __init__(self, desktop, pid):
        self._desktop = desktop
        self._pid = pid
        self._owner, self._path = wait_until(self._find, "Tarn's item is registered with the panel", timeout=20)

    def _find(self):
        for item in self._desktop.registered_items():
            owner, slash, path = item.partition("/")
            if self._desktop.session.process_of(owner) == self._pid:
                return owner, slash + path
        return None

    def property(self, name):
        return self._desktop.session.property(self._owner, self._path, INTERFACE, name)

    def send(self, method, arguments):
        """Calls one of the item's methods as the panel does, without waiting for an answer."""
        self._desktop.session.send(self._owner, self._path, INTERFACE, method, arguments)

    def title(self):
        return self.property("Title")

    def tool_tip(self):
        """The tool tip's two texts."""
        return tuple(self.property("ToolTip")[2:])


class MenuBarItem(RegisteredItem):
    """The only item of the panel's status area; it belongs to the process `pid`."""

    def __init__(self, desktop, pid):
        super().__init__(desktop, pid)
        wait_until(self._is_drawn, "the panel shows Tarn's circle")

    def colours(self):
        """The colours of the item's pixels, as (red, green, blue) triples of 0 to 255."""
        left, top, width, height = status_area(self._desktop)
        pixels = self._desktop.run("import", "-silent", "-window", "root", "-crop",
                                   f"{width}x{height}+{left}+{top}", "-depth", "8", "txt:-")
        return [tuple(bytes.fromhex(code[:6])) for code in re.findall(r"#([0-9A-F]{6,8})\b", pixels)]

    def _is_drawn(self):
        return status_area(self._desktop) and any(max(colour) - min(colour) > 60 for colour in self.colours())

    def position(self):
        """The middle of the item on the screen."""
        return wait_until(lambda: status_area_centre(self._desktop), "the panel shows Tarn's item")
