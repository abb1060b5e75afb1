# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""Clocks that jump, and an address space that cannot grow."""

import os
import resource
import signal
import time

import pytest

from harness import proc_reader
from harness.processes import wait_until
from harness.programs import BURNER, Tarn, start_burner
from harness.shared_desktop import SharedDesktop
from harness.stage import BIN, WORK
from harness.sweeps import SweepWatch
from harness.texts import parse_percent

pytestmark = pytest.mark.slow

HOURS = 8 * 3600
OPEN_INTERVAL = 3.0  # seconds between sweeps
CLOSED_INTERVAL = 30.0
CORES = os.cpu_count()


class TestClocks(SharedDesktop):
    """Clocks that jump, as after suspend or when the time is set."""

    shifts = WORK / "shifts"
    monotonic = 0

    @pytest.fixture(scope="class")
    def programs(self, request, desktop):
        self.shift()
        request.cls.started = time.monotonic()
        request.cls.burner = start_burner(desktop)

    @pytest.fixture(scope="class")
    def tarn(self, desktop, programs):
        # AddressSanitizer checks that it is the first preloaded library.
        options = os.environ.get("ASAN_OPTIONS", "") + ":verify_asan_link_order=0"
        return Tarn(desktop, environment={"LD_PRELOAD": str(BIN / "shifted_clocks.so"),
                                          "SHIFTED_CLOCKS": str(self.shifts), "ASAN_OPTIONS": options})

    @classmethod
    def shift(cls, real=0, boot=0, further=0):
        """Sets by how many seconds Tarn's clocks are ahead. CLOCK_MONOTONIC never goes back, so it is set `further`
        ahead of its last value."""
        cls.monotonic += further
        new = cls.shifts.with_suffix(".new")
        new.write_text(f"{real} {boot} {cls.monotonic} ", encoding="ascii")
        new.replace(cls.shifts)

    def shows_load(self, content):
        """Whether the load has a share above 20 %, or above half of its average if other programs are busy too."""
        row = content.row(BURNER)
        average = 100 * proc_reader.processor_seconds(self.burner.pid) / (time.monotonic() - self.started)
        return row and parse_percent(row.value) > min(20, average / 2)

    def assert_sweeps_continue(self, watch):
        """Sweeps continue at their interval, and every processor share is between 0 and the possible maximum."""
        since = time.monotonic()
        sweeps = watch.wait_for_sweeps(4, since, timeout=40)
        assert sweeps[3].time - sweeps[1].time >= 2 * OPEN_INTERVAL - 1, "the interval between sweeps is too short"
        for row in self.popover.read().rows:
            assert 0 <= parse_percent(row.value) <= 100 * CORES + 10, row
        self.assert_alive()

    def test_sweeps_continue_while_the_popover_is_open(self):
        self.popover.choose_tab("CPU")
        self.popover.wait_for(self.shows_load, "the load shows", 40)
        with SweepWatch(self.tarn.pid) as watch:
            for shifts in (
                    (HOURS, HOURS, 0),  # the machine was suspended
                    (-HOURS, HOURS, 0),  # the time was set back
                    (0, 0, HOURS)):  # CLOCK_MONOTONIC jumped
                self.shift(*shifts)
                self.assert_sweeps_continue(watch)
        self.popover.wait_for(self.shows_load, "the load shows again", 40)

    def test_missed_sweeps_are_not_repeated_while_it_is_closed(self):
        self.popover.open()
        self.desktop.press_key("Escape")
        self.popover.wait_until_closed()
        with SweepWatch(self.tarn.pid) as watch:
            since = time.monotonic()
            self.shift(2 * HOURS, 2 * HOURS, HOURS)
            sweeps = watch.wait_for_sweeps(1, since, timeout=CLOSED_INTERVAL + 10)
            time.sleep(2 * OPEN_INTERVAL)
            assert len(watch.sweeps(since)) <= 2, "missed sweeps are not repeated"
            assert sweeps
        self.assert_alive()
        self.popover.open()


@pytest.mark.long
@pytest.mark.release_build  # a sanitized program ends when an allocation fails
class TestMemoryLimit(SharedDesktop):
    PROCESSES = 1500

    def test_without_memory_for_a_sweep_it_runs_on_and_recovers(self):
        self.popover.open()
        self.desktop.press_key("Escape")
        self.popover.wait_until_closed()
        before = resource.prlimit(self.tarn.pid, resource.RLIMIT_AS)
        size = proc_reader.address_space(self.tarn.pid)
        resource.prlimit(self.tarn.pid, resource.RLIMIT_AS, (size, before[1]))
        crowd = self.desktop.start("crowd", ["sh", "-c", f"i=0; while [ $i -lt {self.PROCESSES} ]; do "
                                             "sleep 600 & i=$((i + 1)); done; echo ready; wait"])
        wait_until(lambda: "ready" in self.desktop.log("crowd"), "there are many processes", timeout=120)
        time.sleep(2 * CLOSED_INTERVAL + 5)
        self.assert_alive()
        assert proc_reader.address_space(self.tarn.pid) <= size
        resource.prlimit(self.tarn.pid, resource.RLIMIT_AS, before)
        for child in proc_reader.children(crowd.pid):
            os.kill(child, signal.SIGTERM)
        crowd.wait(timeout=60)
        self.popover.open()
        self.popover.wait_for(lambda content: len(content.rows) > 5, "the list is filled")
