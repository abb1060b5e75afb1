# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""How Tarn ends, and what does not end it."""

import os
import signal
import unittest
from pathlib import Path

from processes import descendants, wait_until
from programs import STAGE, Tarn
from seen_item import SeenItem, edge_strip
from virtual_desktop import VirtualDesktop
from wayland_desktop import WaylandDesktop

ENDINGS = (signal.SIGTERM, signal.SIGINT, signal.SIGHUP)


def kill_helpers(name):
    """Ends the desktop's programs of that name at once, as a crash would."""
    for pid in descendants(os.getpid()):
        try:
            if Path(f"/proc/{pid}/comm").read_text(encoding="utf-8").strip() == name:
                os.kill(pid, signal.SIGKILL)
        except (FileNotFoundError, ProcessLookupError):
            pass


class EndingsTest(unittest.TestCase):
    def test_signals_that_ask_it_to_end_are_obeyed(self):
        with VirtualDesktop(STAGE) as desktop:
            for number in ENDINGS:
                with self.subTest(number.name):
                    tarn = Tarn(desktop)
                    tarn.process.send_signal(number)
                    self.assertEqual(tarn.process.wait(timeout=20), 0, desktop.log("tarn"))
                    self.assertEqual(desktop.log("tarn"), "")

    def test_a_signal_ends_it_while_the_popover_is_open(self):
        with VirtualDesktop(STAGE) as desktop:
            tarn = Tarn(desktop)
            tarn.popover.open()
            tarn.process.terminate()
            self.assertEqual(tarn.process.wait(timeout=20), 0, desktop.log("tarn"))

    def test_when_the_display_dies_it_says_so_and_ends(self):
        for opens in (False, True):
            with self.subTest(popover=opens), VirtualDesktop(STAGE) as desktop:
                # The toolkit ends the program where it stands: what it leaves behind is no leak of ours.
                tarn = Tarn(desktop, environment={"ASAN_OPTIONS": "detect_leaks=0"})
                if opens:
                    tarn.popover.open()
                kill_helpers("Xvfb")
                status = tarn.process.wait(timeout=20)
                said = desktop.log("tarn")
                self.assertGreater(status, 0, f"it ended with success or by a signal: {said}")
                self.assertRegex(said, "(?i)x11|display|connection")
                self.assertNotRegex(said, "Sanitizer")

    def test_when_the_compositor_dies_it_says_so_and_ends(self):
        for opens in (False, True):
            with self.subTest(popover=opens), WaylandDesktop(STAGE) as desktop:
                strip = edge_strip((0, 0, *desktop.size), "top")
                tarn = Tarn(desktop, environment={"ASAN_OPTIONS": "detect_leaks=0"},
                            find_item=lambda on, pid, strip=strip: SeenItem(on, strip))
                tarn.item.position()
                if opens:
                    tarn.popover.open()
                kill_helpers("sway")
                status = tarn.process.wait(timeout=20)
                said = desktop.log("tarn")
                self.assertGreater(status, 0, f"it ended with success or by a signal: {said}")
                self.assertRegex(said, "(?i)wayland|display|connection")
                self.assertNotRegex(said, "Sanitizer")

    def test_when_the_session_bus_dies_it_stays_within_reach(self):
        with VirtualDesktop(STAGE, accessible=False) as desktop:
            tarn = Tarn(desktop)
            kill_helpers("dbus-daemon")
            wait_until(lambda: desktop.windows_of(tarn.pid), "it shows itself", timeout=20)
            self.assertIsNone(tarn.process.poll(), desktop.log("tarn"))
            tarn.process.terminate()
            self.assertEqual(tarn.process.wait(timeout=20), 0, desktop.log("tarn"))
