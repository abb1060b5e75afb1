# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""What opens and closes the popover, how often Tarn sweeps, and how it quits."""

import time

import pytest

from harness import proc_reader
from harness.programs import Tarn, start_bare
from harness.shared_desktop import SharedDesktop
from harness.stage import WORK
from harness.sweeps import SweepWatch
from harness.virtual_desktop import SIZE, VirtualDesktop

pytestmark = pytest.mark.desktop


class TestClicks(SharedDesktop):
    """Ways to open and close the popover."""

    def test_a_second_click_on_the_item_closes_it(self):
        self.popover.open()
        self.desktop.click(self.tarn.item.position())
        self.popover.wait_until_closed()
        time.sleep(1)  # a delayed call from the panel must not open it again
        assert self.popover.read() is None

    def test_it_opens_again_after_it_was_closed_by_a_click(self):
        self.popover.open()
        self.desktop.click(self.tarn.item.position())
        self.popover.wait_until_closed()
        time.sleep(1)
        self.popover.open()

    def test_escape_closes_it(self):
        self.popover.open()
        self.desktop.press_key("Escape")
        self.popover.wait_until_closed()

    def test_a_click_elsewhere_closes_it(self):
        self.popover.open()
        self.desktop.click((SIZE[0] // 4, SIZE[1] // 2))
        self.popover.wait_until_closed()

    def test_going_to_another_workspace_closes_it(self):
        self.desktop.run("xdotool", "set_num_desktops", "2")
        self.popover.open()
        self.desktop.run("xdotool", "set_desktop", "1")
        self.popover.wait_until_closed()
        self.desktop.run("xdotool", "set_desktop", "0")

    def test_it_is_320_wide_and_below_the_item(self):
        content = self.popover.open()
        window = next(node for node in self.desktop.accessibility.tree_of(self.tarn.pid).children
                      if "showing" in node.states)
        left, top, width, _ = window.extents()
        x, y = self.tarn.item.position()
        assert width == 320
        assert left <= x <= left + width, (left, width, x)
        assert y <= top < 100, top
        assert content.quit.extents()[0] < SIZE[0]

    def test_tab_and_open_rows_are_kept_while_it_is_closed(self):
        self.popover.choose_tab("CPU")
        self.desktop.press_key("Escape")
        self.popover.wait_until_closed()
        assert self.popover.open().tab == "CPU"
        self.popover.choose_tab("Memory")

    def test_a_second_start_opens_the_popover_of_the_first(self):
        second = start_bare(self.desktop.environment, WORK / "second.log")
        self.popover.wait_for(lambda content: content.rows, "the running Tarn opens its popover")
        assert second.wait(timeout=10) == 0
        self.assert_alive()


@pytest.mark.long
class TestRhythm(SharedDesktop):
    """When Tarn sweeps."""

    def test_it_sweeps_every_3_seconds_while_open_and_every_30_while_closed(self):
        self.popover.open()
        with SweepWatch(self.tarn.pid) as watch:
            opened = time.monotonic()
            sweeps = watch.wait_for_sweeps(5, since=opened, timeout=30)
            for earlier, later in zip(sweeps, sweeps[1:]):
                assert later.time - earlier.time == pytest.approx(3, abs=0.4)
            self.desktop.press_key("Escape")
            self.popover.wait_until_closed()
            closed = time.monotonic()
            # Ignores a sweep that was running when the popover closed. The interval starts at the closing.
            time.sleep(1.5)
            switches = proc_reader.all_voluntary_switches(self.tarn.pid)
            moments = [closed] + [sweep.time for sweep in
                                  watch.wait_for_sweeps(2, since=closed + 1.5, timeout=75)]
            for earlier, later in zip(moments, moments[1:]):
                assert later - earlier == pytest.approx(30, abs=1.5)
            switches = proc_reader.all_voluntary_switches(self.tarn.pid) - switches
        # In one minute: four readings of the available memory, and two sweeps. Each sweep wakes the timer thread twice
        # and its own thread, waits for the window system, and may make the panel read a new tooltip.
        assert switches <= 4 + 2 * (4 + 5)
        self.assert_alive()


@pytest.mark.release_build
class TestRhythmOfReleaseBuild(TestRhythm):
    """The same without sanitizers, which change when threads wake up."""


def test_quit_ends_the_process_with_success():
    with VirtualDesktop() as desktop:
        tarn = Tarn(desktop)
        desktop.click(tarn.popover.open().quit.centre())
        assert tarn.process.wait(timeout=30) == 0, desktop.log("tarn")
