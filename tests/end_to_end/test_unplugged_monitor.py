# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""The monitor that shows the popover is unplugged."""

import pytest
from gi.repository import GLib

from harness import hosts
from harness.processes import wait_until
from harness.programs import Tarn
from harness.status_item import MAX_PANEL_DEPTH, RegisteredItem, VisibleItem, edge_strip, lies_within, popover_frame
from harness.virtual_desktop import VirtualDesktop, monitor_name

pytestmark = pytest.mark.faults

SCREEN = (1280, 800)
LEFT, RIGHT = (0, 0, *SCREEN), (SCREEN[0], 0, *SCREEN)


def wait_until_open_within(desktop, tarn, screen):
    wait_until(lambda: (frame := popover_frame(desktop, tarn.pid)) and lies_within(frame, screen),
               f"the popover is open within {screen}", timeout=20)


def is_open_afterwards(desktop, tarn):
    """Waits until the popover is closed or on the remaining monitor. Returns whether it is open."""

    def final_state():
        frame = popover_frame(desktop, tarn.pid)
        return ("open" if lies_within(frame, LEFT) else None) if frame else "closed"

    return wait_until(final_state, "the popover is on the remaining monitor or closed", timeout=20) == "open"


def test_the_popover_closes_or_moves_and_opens_again():
    host = hosts.xfce(hosts.XFCE_ITEMS, hosts.XFCE_SPACE, output=monitor_name(1))
    with VirtualDesktop(host=host, size=(2 * SCREEN[0], SCREEN[1]), monitors=2) as desktop:
        strip = edge_strip(RIGHT, "top", MAX_PANEL_DEPTH)
        tarn = Tarn(desktop, find_item=lambda *_: VisibleItem(desktop, strip))
        item = RegisteredItem(desktop, tarn.pid)
        desktop.click(tarn.item.position())
        wait_until_open_within(desktop, tarn, RIGHT)
        desktop.run("xrandr", "--output", monitor_name(1), "--off", "--fb", f"{SCREEN[0]}x{SCREEN[1]}")
        if is_open_afterwards(desktop, tarn):
            desktop.press_key("Escape")
            wait_until(lambda: popover_frame(desktop, tarn.pid) is None, "the popover is closed")
        assert tarn.process.poll() is None, desktop.log("tarn")
        # The position is on the removed monitor, as sent by a panel that still has the old layout.
        item.send("Activate", GLib.Variant("(ii)", (SCREEN[0] + 20, 10)))
        wait_until_open_within(desktop, tarn, LEFT)
        tarn.process.terminate()
        assert tarn.process.wait(timeout=20) == 0, desktop.log("tarn")
