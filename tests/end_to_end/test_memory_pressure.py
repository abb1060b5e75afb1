# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""The memory level, from the kernel's reports to panel and popover. Stalls are real, available memory is fake."""

import time

import pytest

from harness import fake_machine, psi
from harness.fake_machine import FakeMemory
from harness.image import tint_of
from harness.processes import wait_until
from harness.programs import Tarn
from harness.shared_desktop import SharedDesktop
from harness.stage import RESULTS
from harness.texts import MEMORY_SENTENCES, STATUS_TEXTS, TINTS

pytestmark = [pytest.mark.slow, pytest.mark.timeout(1200)]

# Shares of available memory, one for each condition of the level.
PLENTY, SCARCE_FOR_SOME, SCARCE_FOR_ALL, SCARCE, EXHAUSTED = 0.8, 0.4, 0.15, 0.08, 0.03
LOAD = 240  # seconds, if the load is not ended earlier
REPORT_TIMEOUT = 60  # seconds for the kernel to report stalls
REACTION = 5  # maximum seconds from the kernel's report to the new level
POLL = 15  # seconds between readings of the available memory while there are PSI triggers
HOLD = 15  # seconds without a stall before the level falls
PSI_WINDOW = 2  # minimum seconds between the kernel's reports
LAG = 3  # seconds of delay on a busy machine
FALL = 120  # seconds until the level has fallen to normal
CALM = 5  # percent; below this value of "some avg10" there is no pressure


class PressureTests(SharedDesktop):
    """A Tarn that reads the available memory of `self.memory`."""

    @pytest.fixture(scope="class")
    def tarn(self, request, desktop):
        request.cls.memory = FakeMemory(PLENTY)
        return Tarn(desktop, fake_machine.bind_mounts(*request.cls.memory.mounts))

    @pytest.fixture(autouse=True)
    def normal_level(self, request, shared):
        self.test_name = request.node.name.removeprefix("test_")
        self.memory.set_available(PLENTY)
        self.wait_for_level("normal", FALL)

    def level(self):
        """The level in the accessible description of the item."""
        description = self.tarn.item.property("IconAccessibleDesc")
        return next(level for level, sentence in MEMORY_SENTENCES.items() if STATUS_TEXTS[sentence] == description)

    def wait_for_level(self, level, timeout):
        """Waits until the item has this level. Returns the seconds that it took."""
        start = time.monotonic()
        wait_until(lambda: self.level() == level, f"the level is {level}", timeout)
        return time.monotonic() - start

    def assert_shown(self, level):
        """The tooltip, the colour of the circle and the popover show this level."""
        sentence = MEMORY_SENTENCES[level]
        assert self.tarn.item.tool_tip()[0] == sentence
        wait_until(lambda: self.circle_tints() == {TINTS[level]}, f"the circle is {TINTS[level]}", timeout=5)
        self.popover.open()
        self.popover.wait_for(lambda content: sentence in content.texts, f"the popover says: {sentence}", timeout=5)
        self.desktop.take_screenshot(RESULTS / f"{self.test_name}-{level}.png")
        self.desktop.press_key("Escape")
        self.popover.wait_until_closed()

    def circle_tints(self):
        return {tint for colour in self.tarn.item.colours() if (tint := tint_of(colour))}

    @staticmethod
    def report(what, seconds):
        print(f"\n  {what}: {seconds:.1f} s", end="", flush=True)


class TestAvailability(PressureTests):
    """Tests without stalls."""

    def test_the_available_memory_alone_decides_the_level(self):
        self.assert_shown("normal")
        for share, level in ((SCARCE, "warning"), (EXHAUSTED, "critical")):
            self.memory.set_available(share)
            self.report(f"from {share:.0%} available to {level}", self.wait_for_level(level, POLL + LAG))
            self.assert_shown(level)
        self.memory.set_available(PLENTY)
        # The level falls at the second reading after the change.
        self.report(f"from {PLENTY:.0%} available to normal", self.wait_for_level("normal", 3 * POLL + LAG))
        self.assert_shown("normal")


@pytest.mark.machine_wide
class TestStalls(PressureTests):
    """Tests with tasks that stall because they wait for memory."""

    @pytest.fixture(scope="class", autouse=True)
    def prerequisites(self):
        if reason := psi.missing_prerequisite():
            pytest.skip(f"NOT TESTED: {reason}")

    @pytest.fixture(autouse=True)
    def pressure_watch(self, normal_level):
        # The kernel reports at most once in a window.
        wait_until(lambda: psi.some_avg10() < CALM, "there is no memory pressure", FALL, interval=1)
        with psi.PressureWatch() as self.stalls:
            yield
            psi.thrash(0)

    def wait_for_reports(self, kind, count, level=None):
        """Waits until the kernel has reported stalls `count` times, or until the item has the level."""
        try:
            wait_until(lambda: len(self.stalls.reports(kind)) >= count or self.level() == level, "tasks stall",
                       REPORT_TIMEOUT)
        except TimeoutError:
            pytest.skip(f"NOT TESTED: this machine does not stall enough: {self.stalls.summary()}")

    def assert_rises(self, level, kind):
        """Causes stalls. The level rises as soon as the kernel reports stalls of this kind."""
        start = time.monotonic()
        psi.thrash(LOAD)
        self.wait_for_reports(kind, 1)
        reported = self.stalls.reports(kind)[0]
        # If stalls barely exceed the threshold, the trigger of only one of two programs may fire.
        self.wait_for_reports(kind, 2, level)
        self.wait_for_level(level, REACTION)
        self.report(f"from the load to the kernel's report ({kind})", reported - start)
        self.report(f"from the report to {level}, at most", time.monotonic() - reported)
        self.assert_shown(level)

    def assert_falls(self, level, kind):
        """Ends the load. The level falls after HOLD seconds without stalls, and to normal when pressure has ended."""
        psi.thrash(0)
        end = time.monotonic()
        wait_until(lambda: self.level() != level, "the level falls", FALL)
        fell = time.monotonic()
        self.wait_for_level("normal", FALL)
        self.report(f"from the load's end down from {level}", fell - end)
        self.report("from the load's end to normal", time.monotonic() - end)
        assert fell - self.stalls.reports(kind)[-1] >= HOLD - PSI_WINDOW
        assert psi.some_avg10() < CALM
        self.assert_shown("normal")

    def test_stalls_are_ignored_while_enough_memory_is_available(self):
        psi.thrash(LOAD)
        self.wait_for_reports("some", 4)
        self.assert_shown("normal")

    def test_the_warning_level_rises_at_once_and_falls_after_the_hold_time(self):
        self.memory.set_available(SCARCE_FOR_SOME)
        self.assert_rises("warning", "some")
        self.assert_falls("warning", "some")

    def test_the_critical_level_rises_at_once_and_falls_after_the_hold_time(self):
        self.memory.set_available(SCARCE_FOR_ALL)
        self.assert_rises("critical", "full")
        self.assert_falls("critical", "full")
