# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""The memory's level, from what the kernel counts to what a person sees: stalls are real, what is available is said."""

import time
import unittest

import machines
import stalls
from desktop_test import DesktopTest
from memory_gauge import MemoryGauge
from picture import tint_of
from processes import wait_until
from programs import Tarn
from sentences import MEMORY_SENTENCES, STATUS_TEXTS, TINTS
from tour import PICTURES

PLENTY, SCARCE_FOR_SOME, SCARCE_FOR_ALL, SCARCE, EXHAUSTED = 0.8, 0.4, 0.15, 0.08, 0.03
LOAD = 240  # seconds, at the most
PATIENCE = 60  # seconds for the kernel to report stalls
PROMPT = 5  # seconds from its report to the level
LOOKS = 15  # seconds between looks at the available memory while the kernel tells of stalls
QUIET = 15  # seconds without a stall before the level comes down
REPORT = 2  # seconds between the kernel's reports, at the least
LAG = 3  # seconds that a busy machine may take for anything
FALL = 120  # seconds
CALM = 5  # percent of the last ten seconds


class PressureTest(DesktopTest):
    @classmethod
    def setUpClass(cls):
        cls.gauge = MemoryGauge(PLENTY)
        super().setUpClass()
        PICTURES.mkdir(exist_ok=True)

    @classmethod
    def start_tarn(cls):
        return Tarn(cls.desktop, machines.wrapper(*cls.gauge.places))

    def setUp(self):
        self.gauge.show(PLENTY)
        self.wait_for_level("normal", FALL)

    def level(self):
        """The level, by what the item says of itself."""
        said = self.tarn.item.property("IconAccessibleDesc")
        return next(level for level, sentence in MEMORY_SENTENCES.items() if STATUS_TEXTS[sentence] == said)

    def wait_for_level(self, level, timeout):
        """Waits until the item says so; gives the seconds that it took."""
        start = time.monotonic()
        wait_until(lambda: self.level() == level, f"the level is {level}", timeout)
        return time.monotonic() - start

    def assert_shown(self, level):
        """The panel tells this level by colour and tool tip, and so does the popover, which is opened for it."""
        sentence = MEMORY_SENTENCES[level]
        self.assertEqual(self.tarn.item.tool_tip()[0], sentence)
        wait_until(lambda: self.circle_tints() == {TINTS[level]}, f"the circle is {TINTS[level]}", timeout=5)
        self.popover.open()
        self.popover.wait_for(lambda content: sentence in content.texts, f"the popover says: {sentence}", timeout=5)
        self.desktop.take_picture(PICTURES / f"{self._testMethodName.removeprefix('test_')}-{level}.png")
        self.desktop.press_key("Escape")
        self.popover.wait_until_closed()

    def circle_tints(self):
        return {tint for colour in self.tarn.item.colours() if (tint := tint_of(colour))}

    @staticmethod
    def tell(what, seconds):
        print(f"\n  {what}: {seconds:.1f} s", end="", flush=True)


class AvailabilityTest(PressureTest):
    """Without stalls."""

    def test_what_is_available_alone_makes_the_level(self):
        self.assert_shown("normal")
        for share, level in ((SCARCE, "warning"), (EXHAUSTED, "critical")):
            self.gauge.show(share)
            self.tell(f"from {share:.0%} available to {level}", self.wait_for_level(level, LOOKS + LAG))
            self.assert_shown(level)
        self.gauge.show(PLENTY)
        # The look before may have been as bad as the level; two looks later it is quiet for long enough.
        self.tell(f"from {PLENTY:.0%} available to normal", self.wait_for_level("normal", 3 * LOOKS + LAG))
        self.assert_shown("normal")


@unittest.skipIf(stalls.reason_for_none(), stalls.reason_for_none())
class StallTest(PressureTest):
    """With tasks that wait for memory."""

    def setUp(self):
        super().setUp()
        # Soon after a report the kernel makes no other.
        wait_until(lambda: stalls.average() < CALM, "the machine is calm", FALL, interval=1)
        self.stalls = self.enterContext(stalls.StallWatch())
        self.addCleanup(stalls.thrash, 0)

    def wait_for_reports(self, kind, count, level=None):
        """Waits until the kernel has told so many times that tasks waited too long, or the level is there."""
        try:
            wait_until(lambda: len(self.stalls.reports(kind)) >= count or self.level() == level, "tasks wait", PATIENCE)
        except TimeoutError:
            self.skipTest(f"this machine can not be made to stall enough: {self.stalls.summary()}")

    def assert_rises(self, level, kind):
        """Has tasks wait for memory, and sees that the level comes as soon as those of a kind wait too long."""
        start = time.monotonic()
        stalls.thrash(LOAD)
        self.wait_for_reports(kind, 1)
        reported = self.stalls.reports(kind)[0]
        # Of waits that are hardly long enough only one of two programs may be told.
        self.wait_for_reports(kind, 2, level)
        self.wait_for_level(level, PROMPT)
        self.tell(f"from the load to the kernel's report ({kind})", reported - start)
        self.tell(f"from the report to {level}, at the most", time.monotonic() - reported)
        self.assert_shown(level)

    def assert_falls(self, level, kind):
        """Ends the load, and sees that the level comes down after the quiet that it takes, and when all is calm."""
        stalls.thrash(0)
        end = time.monotonic()
        wait_until(lambda: self.level() != level, "the level comes down", FALL)
        fell = time.monotonic()
        self.wait_for_level("normal", FALL)
        self.tell(f"from the load's end down from {level}", fell - end)
        self.tell("from the load's end to normal", time.monotonic() - end)
        self.assertGreaterEqual(fell - self.stalls.reports(kind)[-1], QUIET - REPORT)
        self.assertLess(stalls.average(), CALM)
        self.assert_shown("normal")

    def test_stalls_mean_nothing_on_a_machine_with_memory_to_spare(self):
        stalls.thrash(LOAD)
        self.wait_for_reports("some", 4)
        self.assert_shown("normal")

    def test_a_warning_comes_at_once_and_goes_after_quiet(self):
        self.gauge.show(SCARCE_FOR_SOME)
        self.assert_rises("warning", "some")
        self.assert_falls("warning", "some")

    def test_the_worst_comes_at_once_and_goes_after_quiet(self):
        self.gauge.show(SCARCE_FOR_ALL)
        self.assert_rises("critical", "full")
        self.assert_falls("critical", "full")
