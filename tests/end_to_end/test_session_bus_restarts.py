# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""The session bus dies, and comes back."""

import unittest
from pathlib import Path

from menu_bar import MenuBarItem
from message_bus import BusError
from proc_reader import MEGABYTE, takes_no_more, takings
from processes import wait_until
from programs import STAGE, Tarn, start_bare
from seen_item import popover_frame
from virtual_desktop import VirtualDesktop

APPLICATION = "example.tarn.Tarn"
TIMES = 2
DARK = 80  # of 255
SLACK = 2 * MEGABYTE


def own_window(desktop, pid):
    """The ordinary window that Tarn has where there is no panel; None without one."""
    return next((window for window in desktop.windows_of(pid)
                 if "Override Redirect State: no" in desktop.run("xwininfo", "-id", window)), None)


def owner_of_the_name(desktop):
    """The pid of the session's Tarn, as launchers find it; None without one."""
    try:
        return desktop.session.process_of(APPLICATION)
    except BusError:
        return None


class ReturningBusTest(unittest.TestCase):
    def wait_for_window(self, desktop, tarn):
        wait_until(lambda: own_window(desktop, tarn.pid), "it is within reach in a window", timeout=30)
        self.assertIsNone(tarn.process.poll(), desktop.log("tarn"))

    def assert_is_in_the_panel(self, desktop, tarn, scheme):
        """It is in the panel alone, where a click opens the popover, in the desktop's colours."""
        item = MenuBarItem(desktop, tarn.pid)
        wait_until(lambda: not own_window(desktop, tarn.pid), "the window leaves for the panel")
        self.assertEqual(len(desktop.registered_items()), 1)
        desktop.click(item.position())
        frame = wait_until(lambda: popover_frame(desktop, tarn.pid), "the popover opens")
        left, top, _, height = frame
        wait_until(lambda: (max(desktop.picture_of((left + 2, top + height // 2, 1, 1)).row(0)[0]) < DARK)
                   == (scheme == "dark"), f"it is {scheme}")
        desktop.press_key("Escape")
        wait_until(lambda: not popover_frame(desktop, tarn.pid), "the popover is closed")

    def test_when_the_session_bus_comes_back_it_is_in_the_panel_again(self):
        with VirtualDesktop(STAGE, accessible=False) as desktop:
            tarn = Tarn(desktop)
            before = None
            for scheme in ("light", "dark") * TIMES:
                desktop.kill_session_bus()
                self.wait_for_window(desktop, tarn)
                desktop.restart_session_bus(scheme)
                wait_until(lambda: owner_of_the_name(desktop) == tarn.pid, "it is the session's Tarn")
                desktop.start_panel()
                self.assert_is_in_the_panel(desktop, tarn, scheme)
                before = before or takings(tarn.pid)
            wait_until(lambda: takes_no_more(tarn.pid, before, SLACK), "it takes no more than after the first return",
                       timeout=40)
            second = start_bare(desktop.environment, STAGE / "second.log")
            self.assertEqual(second.wait(timeout=20), 0, "a second launch finds the first one")
            wait_until(lambda: popover_frame(desktop, tarn.pid), "and has it open the popover")

    def test_of_two_that_started_without_a_bus_one_is_left(self):
        with VirtualDesktop(STAGE, accessible=False) as desktop:
            first = Tarn(desktop)
            desktop.kill_session_bus()
            self.wait_for_window(desktop, first)
            log = STAGE / "second.log"
            second = start_bare(desktop.environment, log)
            wait_until(lambda: own_window(desktop, second.pid), "the second shows itself", timeout=30)
            desktop.restart_session_bus()
            wait_until(lambda: first.process.poll() is not None or second.poll() is not None, "one of them ends")
            left, gone = (second, first.process) if second.poll() is None else (first.process, second)
            self.assertEqual(gone.wait(timeout=20), 0, desktop.log("tarn") + Path(log).read_text(encoding="utf-8"))
            wait_until(lambda: owner_of_the_name(desktop) == left.pid, "the other one is the session's Tarn")
            desktop.start_panel()
            MenuBarItem(desktop, left.pid)
            self.assertIsNone(left.poll())

    def test_a_bus_that_comes_after_it_is_found(self):
        with VirtualDesktop(STAGE, panel=False, accessible=False) as desktop:
            desktop.kill_session_bus()
            tarn = start_bare(desktop.environment, STAGE / "early.log")
            wait_until(lambda: own_window(desktop, tarn.pid), "it shows itself", timeout=30)
            desktop.restart_session_bus()
            desktop.start_panel()
            MenuBarItem(desktop, tarn.pid)
            wait_until(lambda: owner_of_the_name(desktop) == tarn.pid, "it is the session's Tarn")
            tarn.terminate()
            self.assertEqual(tarn.wait(timeout=20), 0)
