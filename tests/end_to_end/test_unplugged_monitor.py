# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""A screen is taken away while the popover is open on it."""

import unittest

import hosts
from gi.repository import GLib
from menu_bar import RegisteredItem
from processes import wait_until
from programs import STAGE, Tarn
from seen_item import DEPTH, SeenItem, edge_strip, lies_within, popover_frame
from virtual_desktop import VirtualDesktop, monitor_name

SCREEN = (1280, 800)
LEFT, RIGHT = (0, 0, *SCREEN), (SCREEN[0], 0, *SCREEN)


class UnpluggedScreenTest(unittest.TestCase):
    """Of two monitors the right one, where the panel is."""

    def wait_until_open_within(self, desktop, tarn, screen):
        wait_until(lambda: (frame := popover_frame(desktop, tarn.pid)) and lies_within(frame, screen),
                   f"the popover is open within {screen}", timeout=20)

    def test_the_popover_closes_or_moves_and_opens_again(self):
        host = hosts.xfce(hosts.XFCE_ITEMS, hosts.XFCE_SPACE, output=monitor_name(1))
        with VirtualDesktop(STAGE, host=host, size=(2 * SCREEN[0], SCREEN[1]), monitors=2) as desktop:
            strip = edge_strip(RIGHT, "top", DEPTH)
            tarn = Tarn(desktop, find_item=lambda on, pid: SeenItem(on, strip))
            item = RegisteredItem(desktop, tarn.pid)
            desktop.click(tarn.item.position())
            self.wait_until_open_within(desktop, tarn, RIGHT)
            desktop.run("xrandr", "--output", monitor_name(1), "--off", "--fb", f"{SCREEN[0]}x{SCREEN[1]}")
            if self.is_open_after(desktop, tarn):
                desktop.press_key("Escape")
                wait_until(lambda: popover_frame(desktop, tarn.pid) is None, "the popover is closed")
            self.assertIsNone(tarn.process.poll(), desktop.log("tarn"))
            # A panel that has not noticed yet says where the item was.
            item.send("Activate", GLib.Variant("(ii)", (SCREEN[0] + 20, 10)))
            self.wait_until_open_within(desktop, tarn, LEFT)
            tarn.process.terminate()
            self.assertEqual(tarn.process.wait(timeout=20), 0, desktop.log("tarn"))

    @staticmethod
    def is_open_after(desktop, tarn):
        """Whether the popover, once it is closed or on the screen that is left, is open."""

        def settled():
            frame = popover_frame(desktop, tarn.pid)
            return ("open" if lies_within(frame, LEFT) else None) if frame else "closed"

        return wait_until(settled, "the popover is on the screen that is left, or closed", timeout=20) == "open"
