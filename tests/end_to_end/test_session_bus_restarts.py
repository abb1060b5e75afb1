# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""The session bus ends and is started again."""

import pytest

from harness.message_bus import BusError
from harness.proc_reader import MEGABYTE, resource_usage, uses_no_more
from harness.processes import wait_until
from harness.programs import Tarn, start_bare
from harness.stage import WORK
from harness.status_item import PanelItem, popover_frame
from harness.virtual_desktop import VirtualDesktop

pytestmark = pytest.mark.slow

APPLICATION = "example.tarn.Tarn"
TIMES = 2
DARK = 80  # largest component of a dark colour
SLACK = 2 * MEGABYTE


def own_window(desktop, pid):
    """The ordinary window that Tarn shows if there is no panel; None if it shows none."""
    return next((window for window in desktop.windows_of(pid)
                 if "Override Redirect State: no" in desktop.run("xwininfo", "-id", window)), None)


def owner_of_the_name(desktop):
    """The pid of the owner of Tarn's bus name; None if there is none."""
    try:
        return desktop.session.process_of(APPLICATION)
    except BusError:
        return None


def wait_for_window(desktop, tarn):
    wait_until(lambda: own_window(desktop, tarn.pid), "it shows a window", timeout=30)
    assert tarn.process.poll() is None, desktop.log("tarn")


def assert_is_in_the_panel(desktop, tarn, scheme):
    """It has an item and no window. A click opens the popover in the desktop's color scheme."""
    item = PanelItem(desktop, tarn.pid)
    wait_until(lambda: not own_window(desktop, tarn.pid), "the window closes")
    assert len(desktop.registered_items()) == 1
    desktop.click(item.position())
    frame = wait_until(lambda: popover_frame(desktop, tarn.pid), "the popover opens")
    left, top, _, height = frame
    wait_until(lambda: (max(desktop.image_of((left + 2, top + height // 2, 1, 1)).row(0)[0]) < DARK)
               == (scheme == "dark"), f"it is {scheme}")
    desktop.press_key("Escape")
    wait_until(lambda: not popover_frame(desktop, tarn.pid), "the popover is closed")


def test_after_a_restart_of_the_session_bus_it_is_in_the_panel_again():
    with VirtualDesktop(accessible=False) as desktop:
        tarn = Tarn(desktop)
        before = None
        for scheme in ("light", "dark") * TIMES:
            desktop.kill_session_bus()
            wait_for_window(desktop, tarn)
            desktop.restart_session_bus(scheme)
            wait_until(lambda: owner_of_the_name(desktop) == tarn.pid, "it owns the bus name")
            desktop.start_panel()
            assert_is_in_the_panel(desktop, tarn, scheme)
            before = before or resource_usage(tarn.pid)
        wait_until(lambda: uses_no_more(tarn.pid, before, SLACK), "it uses no more than after the first restart",
                   timeout=40)
        second = start_bare(desktop.environment, WORK / "second.log")
        assert second.wait(timeout=20) == 0, "a second start activates the first process"
        wait_until(lambda: popover_frame(desktop, tarn.pid), "the first process opens the popover")


def test_of_two_processes_without_a_bus_one_ends_when_the_bus_starts():
    with VirtualDesktop(accessible=False) as desktop:
        first = Tarn(desktop)
        desktop.kill_session_bus()
        wait_for_window(desktop, first)
        log = WORK / "second.log"
        second = start_bare(desktop.environment, log)
        wait_until(lambda: own_window(desktop, second.pid), "the second shows a window", timeout=30)
        desktop.restart_session_bus()
        wait_until(lambda: first.process.poll() is not None or second.poll() is not None, "one process ends")
        is_second_left = second.poll() is None
        remaining, ended = (second, first.process) if is_second_left else (first.process, second)
        assert ended.wait(timeout=20) == 0, desktop.log("tarn") + log.read_text(encoding="utf-8")
        wait_until(lambda: owner_of_the_name(desktop) == remaining.pid, "the remaining process owns the bus name")
        desktop.start_panel()
        PanelItem(desktop, remaining.pid)
        assert remaining.poll() is None


def test_it_connects_to_a_bus_that_starts_later():
    with VirtualDesktop(panel=False, accessible=False) as desktop:
        desktop.kill_session_bus()
        tarn = start_bare(desktop.environment, WORK / "early.log")
        wait_until(lambda: own_window(desktop, tarn.pid), "it shows a window", timeout=30)
        desktop.restart_session_bus()
        desktop.start_panel()
        PanelItem(desktop, tarn.pid)
        wait_until(lambda: owner_of_the_name(desktop) == tarn.pid, "it owns the bus name")
        tarn.terminate()
        assert tarn.wait(timeout=20) == 0
