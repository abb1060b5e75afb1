# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""Tarn's status item: its D-Bus properties, its position in the panel, and the popover's position on the screen."""

import re

from harness.processes import wait_until

INTERFACE = "org.kde.StatusNotifierItem"
MAX_PANEL_DEPTH = 40  # pixels; the tests have no deeper panel
STATUS_AREA = re.compile(r'\("wrapper-2\.0" "Wrapper-2\.0"\)\s+(\d+)x(\d+)\S+\s+\+(\d+)\+(\d+)$', re.MULTILINE)
CIRCLE_SIZES = range(10, 64)  # pixels
POPOVER_WIDTH = 320
LIGHT_BACKGROUND = (250, 250, 251)  # of the popover


def status_area(desktop):
    """Left, top, width and height of the panel's status area; None while it is empty."""
    for match in STATUS_AREA.finditer(desktop.run("xwininfo", "-root", "-tree")):
        width, height, left, top = map(int, match.groups())
        # Tooltips are windows of the same class, but lie outside of the panel.
        if width >= 16 and top + height <= MAX_PANEL_DEPTH:
            return left, top, width, height
    return None


def status_area_centre(desktop):
    """The centre of the status area, which is that of its only item; None while it is empty."""
    area = status_area(desktop)
    return area and (area[0] + area[2] // 2, area[1] + area[3] // 2)


class RegisteredItem:
    """The item of the process `pid` as registered over D-Bus."""

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
        """Calls a method of the item without waiting for the reply, as panels do."""
        self._desktop.session.send(self._owner, self._path, INTERFACE, method, arguments)

    def title(self):
        return self.property("Title")

    def tool_tip(self):
        """The title and the text of the tooltip."""
        return tuple(self.property("ToolTip")[2:])


class PanelItem(RegisteredItem):
    """The only item in the status area of xfce4-panel. It belongs to the process `pid`."""

    def __init__(self, desktop, pid):
        super().__init__(desktop, pid)
        wait_until(self._is_drawn, "the panel shows Tarn's circle")

    def colours(self):
        """The colours of the item's pixels, as (red, green, blue) triples of 0 to 255."""
        image = self._desktop.image_of(status_area(self._desktop) or (0, 0, 0, 0))
        return [colour for line in range(image.height) for colour in image.row(line)]

    def _is_drawn(self):
        return status_area(self._desktop) and any(max(colour) - min(colour) > 60 for colour in self.colours())

    def position(self):
        """The centre of the item on the screen."""
        return wait_until(lambda: status_area_centre(self._desktop), "the panel shows Tarn's item")


def edge_strip(area, edge, depth=MAX_PANEL_DEPTH):
    """The part of `area` (left, top, width, height) along one of its edges."""
    left, top, width, height = area
    return {"top": (left, top, width, depth), "bottom": (left, top + height - depth, width, depth),
            "left": (left, top, depth, height), "right": (left + width - depth, top, depth, height)}[edge]


class VisibleItem:
    """The circle in an area `strip` (left, top, width, height) of the screen, in any panel. No other
    pixels there have the circle's colours."""

    def __init__(self, desktop, strip):
        self._desktop = desktop
        self._strip = strip

    def _find_circle(self):
        image = self._desktop.image_of(self._strip)
        circle = image.circle()
        if not circle or circle.width not in CIRCLE_SIZES or abs(circle.width - circle.height) > 2:
            return None
        return image, circle

    def _wait(self):
        return wait_until(self._find_circle, "the panel shows Tarn's circle", timeout=20)

    def is_visible(self):
        return self._find_circle() is not None

    def tint(self):
        """The name of the circle's colour, see texts.TINTS."""
        return self._wait()[1].tint

    def circle_width(self):
        return self._wait()[1].width

    def width(self):
        """The width of the circle and the text beside it."""
        image, circle = self._wait()
        return circle.width_with_text(image)

    def position(self):
        """The centre of the circle on the screen."""
        x, y = self._wait()[1].centre()
        return self._strip[0] + x, self._strip[1] + y


def popover_frame(desktop, pid, scale=1):
    """Left, top, width and height of Tarn's popover on the screen, without its shadow; None while it is closed."""
    for left, top, width, height in desktop.window_frames(pid):
        shadow = (width - POPOVER_WIDTH * scale) // 2
        if shadow >= 0:
            return left + shadow, top + shadow, width - 2 * shadow, height - 2 * shadow
    return None


def drawn_popover_frame(desktop, pid):
    """As `popover_frame`, but also None until the popover's left margin is painted there: a compositor may report a
    window's position before it paints the window."""
    frame = popover_frame(desktop, pid)
    if not frame:
        return None
    left, top, _, height = frame
    margin = desktop.image_of((left + 2, top + height // 2, 4, 1))
    return frame if set(margin.row(0)) == {LIGHT_BACKGROUND} else None


def right_and_bottom(area):
    """The first column to the right of an area and the first line below it."""
    left, top, width, height = area
    return left + width, top + height


def lies_within(inner, outer):
    (right, bottom), (last_right, last_bottom) = right_and_bottom(inner), right_and_bottom(outer)
    return inner[0] >= outer[0] and inner[1] >= outer[1] and right <= last_right and bottom <= last_bottom
