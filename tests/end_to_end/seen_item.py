# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""Tarn's item as a person sees it, in whichever panel, and the popover beside it."""

from processes import wait_until

DEPTH = 40  # pixels; no panel of the tests is deeper
CIRCLE_SIZES = range(10, 64)  # pixels
POPOVER_WIDTH = 320
GROUND = (250, 250, 251)  # of the light popover


def edge_strip(area, edge, depth=DEPTH):
    """The part of `area` (left, top, width, height) along one of its edges."""
    left, top, width, height = area
    return {"top": (left, top, width, depth), "bottom": (left, top + height - depth, width, depth),
            "left": (left, top, depth, height), "right": (left + width - depth, top, depth, height)}[edge]


class SeenItem:
    """The circle among the pixels of `strip` (left, top, width, height), where a panel is that shows nothing else in
    the circle's colours."""

    def __init__(self, desktop, strip):
        self._desktop = desktop
        self._strip = strip

    def _look(self):
        picture = self._desktop.picture_of(self._strip)
        circle = picture.circle()
        if not circle or circle.width not in CIRCLE_SIZES or abs(circle.width - circle.height) > 2:
            return None
        return picture, circle

    def _wait(self):
        return wait_until(self._look, "the panel shows Tarn's circle", timeout=20)

    def is_there(self):
        return self._look() is not None

    def tint(self):
        """The name of the circle's colour."""
        return self._wait()[1].tint

    def circle_width(self):
        return self._wait()[1].width

    def width(self):
        """The width of the circle with what stands beside it."""
        picture, circle = self._wait()
        return circle.width_with_text(picture)

    def position(self):
        """The circle's middle on the screen."""
        across, down = self._wait()[1].centre()
        return self._strip[0] + across, self._strip[1] + down


def popover_frame(desktop, pid, scale=1):
    """Left, top, width and height on the screen of what Tarn's popover shows, without its shadow; None while it is
    closed."""
    for left, top, width, height in desktop.window_frames(pid):
        shadow = (width - POPOVER_WIDTH * scale) // 2
        if shadow >= 0:
            return left + shadow, top + shadow, width - 2 * shadow, height - 2 * shadow
    return None


def drawn_popover_frame(desktop, pid):
    """As `popover_frame`, but None, too, until the popover can be seen there, by its left margin: a compositor may know
    of a window's place before it draws it there."""
    frame = popover_frame(desktop, pid)
    if not frame:
        return None
    left, top, _, height = frame
    margin = desktop.picture_of((left + 2, top + height // 2, 4, 1))
    return frame if set(margin.row(0)) == {GROUND} else None


def right_and_bottom(area):
    """The first pixel beyond an area to the right, and below."""
    left, top, width, height = area
    return left + width, top + height


def lies_within(inner, outer):
    (right, bottom), (last_right, last_bottom) = right_and_bottom(inner), right_and_bottom(outer)
    return inner[0] >= outer[0] and inner[1] >= outer[1] and right <= last_right and bottom <= last_bottom
