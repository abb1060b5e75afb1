# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""How Tarn ends: by signals, and when the display, the compositor or the session bus ends."""

import os
import re
import signal
from pathlib import Path

import pytest

from harness.processes import descendants, wait_until
from harness.programs import Tarn
from harness.status_item import VisibleItem, edge_strip
from harness.virtual_desktop import VirtualDesktop
from harness.wayland_desktop import WaylandDesktop

pytestmark = pytest.mark.faults

SIGNALS = (signal.SIGTERM, signal.SIGINT, signal.SIGHUP)
WITH_AND_WITHOUT_POPOVER = pytest.mark.parametrize("is_open", (False, True), ids=("popover_closed", "popover_open"))
# Qt ends the process without freeing memory when the display connection breaks.
WITHOUT_LEAK_CHECK = {"ASAN_OPTIONS": "detect_leaks=0"}


def kill_helpers(name):
    """Kills the desktop's programs with this name."""
    for pid in descendants(os.getpid()):
        try:
            if Path(f"/proc/{pid}/comm").read_text(encoding="utf-8").strip() == name:
                os.kill(pid, signal.SIGKILL)
        except (FileNotFoundError, ProcessLookupError):
            pass


def test_signals_end_it_with_success_and_without_output():
    with VirtualDesktop() as desktop:
        for number in SIGNALS:
            tarn = Tarn(desktop)
            tarn.process.send_signal(number)
            assert tarn.process.wait(timeout=20) == 0, f"{number.name}: {desktop.log('tarn')}"
            assert desktop.log("tarn") == "", number.name


def test_a_signal_ends_it_while_the_popover_is_open():
    with VirtualDesktop() as desktop:
        tarn = Tarn(desktop)
        tarn.popover.open()
        tarn.process.terminate()
        assert tarn.process.wait(timeout=20) == 0, desktop.log("tarn")


def assert_ends_with_an_error(desktop, tarn, message):
    status = tarn.process.wait(timeout=20)
    output = desktop.log("tarn")
    assert status > 0, f"it ended with success or by a signal: {output}"
    assert re.search(message, output)
    assert not re.search("Sanitizer", output)


@WITH_AND_WITHOUT_POPOVER
def test_when_the_x_server_ends_it_prints_an_error_and_ends(is_open):
    with VirtualDesktop() as desktop:
        tarn = Tarn(desktop, environment=WITHOUT_LEAK_CHECK)
        if is_open:
            tarn.popover.open()
        kill_helpers("Xvfb")
        assert_ends_with_an_error(desktop, tarn, "(?i)x11|display|connection")


@WITH_AND_WITHOUT_POPOVER
def test_when_the_wayland_compositor_ends_it_prints_an_error_and_ends(is_open):
    with WaylandDesktop() as desktop:
        strip = edge_strip((0, 0, *desktop.size), "top")
        tarn = Tarn(desktop, environment=WITHOUT_LEAK_CHECK, find_item=lambda *_: VisibleItem(desktop, strip))
        tarn.item.position()
        if is_open:
            tarn.popover.open()
        kill_helpers("sway")
        assert_ends_with_an_error(desktop, tarn, "(?i)wayland|display|connection")


def test_when_the_session_bus_ends_it_shows_a_window():
    with VirtualDesktop(accessible=False) as desktop:
        tarn = Tarn(desktop)
        kill_helpers("dbus-daemon")
        wait_until(lambda: desktop.windows_of(tarn.pid), "it shows a window", timeout=20)
        assert tarn.process.poll() is None, desktop.log("tarn")
        tarn.process.terminate()
        assert tarn.process.wait(timeout=20) == 0, desktop.log("tarn")
