# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""What the kernel may do to Tarn: give it no memory for a while, wake the machine hours later."""

import os
import resource
import signal
import time
from pathlib import Path

import proc_reader
from desktop_test import DesktopTest
from figures import parse_percent
from processes import wait_until
from programs import BURNER, STAGE, Tarn, start_burner
from sweep_watch import SweepWatch

HOURS = 8 * 3600
OPEN_PACE = 3.0  # seconds between sweeps
CLOSED_PACE = 30.0
CORES = os.cpu_count()


class ClocksTest(DesktopTest):
    """Clocks that jump, as they do when a machine sleeps or its time is set."""

    @classmethod
    def start_programs(cls):
        cls.shifts = STAGE / "shifts"
        cls.monotonic = 0
        cls.shift()
        start_burner(cls.desktop)

    @classmethod
    def start_tarn(cls):
        # A sanitizer wants to be loaded first, and does without.
        options = os.environ.get("ASAN_OPTIONS", "") + ":verify_asan_link_order=0"
        return Tarn(cls.desktop, environment={"LD_PRELOAD": str(STAGE / "bin/shifted_clocks.so"),
                                              "SHIFTED_CLOCKS": str(cls.shifts), "ASAN_OPTIONS": options})

    @classmethod
    def shift(cls, real=0, boot=0, further=0):
        """Sets by how many seconds Tarn's clocks are ahead, all at once. The monotonic one never goes back, so it is
        only set `further` ahead."""
        cls.monotonic += further
        new = cls.shifts.with_suffix(".new")
        new.write_text(f"{real} {boot} {cls.monotonic} ", encoding="ascii")
        new.replace(cls.shifts)

    def burner_percent(self, content):
        row = content.row(BURNER)
        return parse_percent(row.value) if row else None

    def assert_goes_on(self, watch):
        """Sweeps go on at their pace, and the load's share stays what it can be."""
        since = time.monotonic()
        sweeps = watch.wait_for_sweeps(4, since, timeout=40)
        self.assertGreaterEqual(sweeps[3].time - sweeps[1].time, 2 * OPEN_PACE - 1, "no flood of sweeps")
        for row in self.popover.read().rows:
            self.assertTrue(0 <= parse_percent(row.value) <= 100 * CORES + 10, row)
        self.assert_alive()

    def test_while_the_popover_is_open(self):
        self.popover.choose_tab("CPU")
        self.popover.wait_for(lambda content: (self.burner_percent(content) or 0) > 20, "the load shows", 40)
        with SweepWatch(self.tarn.pid) as watch:
            for what, shifts in (("the machine slept", (HOURS, HOURS, 0)),
                                 ("the time was set back", (-HOURS, HOURS, 0)),
                                 ("the clock of timers jumped", (0, 0, HOURS))):
                with self.subTest(what):
                    self.shift(*shifts)
                    self.assert_goes_on(watch)
        self.popover.wait_for(lambda content: (self.burner_percent(content) or 0) > 20, "the load shows again", 40)

    def test_while_it_is_closed(self):
        self.popover.open()
        self.desktop.press_key("Escape")
        self.popover.wait_until_closed()
        with SweepWatch(self.tarn.pid) as watch:
            since = time.monotonic()
            self.shift(2 * HOURS, 2 * HOURS, HOURS)
            sweeps = watch.wait_for_sweeps(1, since, timeout=CLOSED_PACE + 10)
            time.sleep(2 * OPEN_PACE)
            self.assertLessEqual(len(watch.sweeps(since)), 2, "nothing is caught up with")
            self.assertTrue(sweeps)
        self.assert_alive()
        self.popover.open()


class MemoryLimitTest(DesktopTest):
    PROCESSES = 1500

    def test_without_memory_for_a_sweep_it_waits_for_better_times(self):
        if "libasan" in Path(f"/proc/{self.tarn.pid}/maps").read_text(encoding="utf-8"):
            self.skipTest("a sanitized program ends when it gets no memory")
        self.popover.open()
        self.desktop.press_key("Escape")
        self.popover.wait_until_closed()
        before = resource.prlimit(self.tarn.pid, resource.RLIMIT_AS)
        size = proc_reader.address_space(self.tarn.pid)
        resource.prlimit(self.tarn.pid, resource.RLIMIT_AS, (size, before[1]))
        crowd = self.desktop.start("crowd", ["sh", "-c", f"i=0; while [ $i -lt {self.PROCESSES} ]; do "
                                             "sleep 600 & i=$((i + 1)); done; echo ready; wait"])
        wait_until(lambda: "ready" in self.desktop.log("crowd"), "there are many processes", timeout=120)
        time.sleep(2 * CLOSED_PACE + 5)
        self.assert_alive()
        self.assertLessEqual(proc_reader.address_space(self.tarn.pid), size)
        resource.prlimit(self.tarn.pid, resource.RLIMIT_AS, before)
        for child in proc_reader.children(crowd.pid):
            os.kill(child, signal.SIGTERM)
        crowd.wait(timeout=60)
        self.popover.open()
        self.popover.wait_for(lambda content: len(content.rows) > 5, "the list is filled")
