# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""soak.py [OPENINGS [SWEEPS]]: a leak test. Opens and closes Tarn's popover with the D-Bus calls of panels, with at
least SWEEPS sweeps in total. Tarn's clocks run faster; meanwhile applications start and end, and properties are read.
Prints Tarn's memory, files and threads. Fails if these grow, if Tarn prints a line, or if its exit status is not 0."""

import glob
import os
import shutil
import signal
import sys
import time

from gi.repository import GLib

from harness import proc_reader
from harness.processes import all_ended_afterwards, start, wait_until
from harness.programs import Tarn, start_hog
from harness.stage import BIN, WORK
from harness.sweeps import SweepCount, enter_counted_machine
from harness.virtual_desktop import VirtualDesktop

OPENINGS = 2000
SWEEPS = 20_000
WARM_UP = 200  # openings, but at most half of OPENINGS
SPEED = 100  # a sweep each 30 ms while the popover is open, and each 300 ms while it is closed
SWEEPS_WHILE_CLOSED = 1  # after each opening
PAUSE = 0.06  # seconds: Tarn ignores clicks that follow sooner
MAX_GROWTH = 512 * 1024
GUESTS = 10
GUEST_MEGABYTES = 60
PROGRESS = 100  # openings


def faketime_libraries():
    """The paths of the installed libfaketime libraries; usually one."""
    return glob.glob("/usr/lib/*/faketime/libfaketimeMT.so.1")


def faketime_prefix(speed):
    """The command prefix for a program whose clocks and timeouts run `speed` times as fast."""
    return "/usr/bin/env", f"LD_PRELOAD={faketime_libraries()[0]}", f"FAKETIME=+0 x{speed}", "NO_FAKE_STAT=1"


class Usage:
    """Tarn's memory, files and threads while its popover is closed."""

    def __init__(self, pid):
        self.measures_leaks = not proc_reader.is_sanitized(pid)
        self.footprint = proc_reader.footprint(pid)
        self.files = len(os.listdir(f"/proc/{pid}/fd"))
        self.threads = len(os.listdir(f"/proc/{pid}/task"))

    def __str__(self):
        return f"{self.footprint // 1024} KB, {self.files} files, {self.threads} threads"


class Guest:
    """A short-lived application. There are GUESTS of them, because Tarn keeps data of every application it has seen."""

    def __init__(self, desktop, number):
        number %= GUESTS
        self._folder = WORK / "applications" / f"Guest {number}.app"
        self._folder.mkdir(parents=True)
        program = self._folder / f"guest-{number}"
        shutil.copy2(BIN / "hold_memory", program)
        self._process = start([program, GUEST_MEGABYTES], desktop.environment, WORK / "guests.log")

    def end(self):
        self._process.kill()
        self._process.wait()
        shutil.rmtree(self._folder)


class Soak:
    """A Tarn on `desktop` whose clocks run `speed` times as fast."""

    def __init__(self, desktop, sweeps, speed=SPEED):
        self._desktop = desktop
        self._sweeps = sweeps
        self.tarn = Tarn(desktop, faketime_prefix(speed),
                         {"ASAN_OPTIONS": "verify_asan_link_order=0"})
        self.openings = 0
        self.sweeps_while_open = 0
        self.sweeps_while_closed = 0

    def _click_until(self, is_open):
        """Clicks once and waits until the popover is open, or closed."""
        self.tarn.item.send("Activate", GLib.Variant("(ii)", (self._desktop.size[0] - 20, 12)))
        wait_until(lambda: bool(self._desktop.window_frames(self.tarn.pid)) == is_open,
                   f"the popover is open: {is_open}", interval=0.01)

    def _make_calls(self):
        """Calls that panels make, and one of an unknown method."""
        self.tarn.item.title()
        self.tarn.item.tool_tip()
        self.tarn.item.property("IconPixmap")
        self.tarn.item.send("Scroll", GLib.Variant("(is)", (1, "vertical")))
        self.tarn.item.send("NoSuchMethod", GLib.Variant("(s)", ("x",)))

    def open_and_close(self, sweeps):
        """Opens and closes the popover once, with at least `sweeps` sweeps."""
        guest = Guest(self._desktop, self.openings)
        before = self._sweeps.count()
        self._click_until(True)
        self._make_calls()
        self._sweeps.wait_for((sweeps - SWEEPS_WHILE_CLOSED) // 2)
        guest.end()
        wait_until(lambda: self._sweeps.count() >= before + sweeps - SWEEPS_WHILE_CLOSED,
                   "Tarn has swept while it is open", timeout=60, interval=0.01)
        self._click_until(False)
        while_open = self._sweeps.count() - before
        time.sleep(PAUSE)
        self.sweeps_while_open += while_open
        self.sweeps_while_closed += self._sweeps.wait_for(SWEEPS_WHILE_CLOSED)
        self.openings += 1

    def run(self, openings, sweeps):
        """Opens the popover `openings` times with at least `sweeps` sweeps. Returns Tarn's Usage afterwards."""
        for number in range(openings):
            self.open_and_close(-(-sweeps // openings))  # rounded up
            if (number + 1) % PROGRESS == 0:
                print(f"  {self}: {Usage(self.tarn.pid)}", flush=True)
        time.sleep(2)  # freed memory is returned to the system after the window is destroyed
        return Usage(self.tarn.pid)

    def end(self):
        """Ends Tarn by SIGTERM. Returns the exit status."""
        self.tarn.process.send_signal(signal.SIGTERM)
        return self.tarn.process.wait(timeout=30)

    def __str__(self):
        return (f"{self.openings} openings, {self.sweeps_while_open} sweeps while open, "
                f"{self.sweeps_while_closed} while closed")


def errors_of(before, after, status, output):
    """The error messages of a soak; empty if it passed."""
    growth = after.footprint - before.footprint
    errors = {f"it grew by {growth // 1024} KB": after.measures_leaks and growth >= MAX_GROWTH,
              f"it keeps {after.files - before.files} files": after.files > before.files,
              f"it keeps {after.threads - before.threads} threads": after.threads > before.threads,
              f"it ended with {status}": status != 0,
              f"it printed: {output}": bool(output)}
    return [message for message, holds in errors.items() if holds]


def soak(openings, sweeps, warm_up):
    """Opens the popover `warm_up` times, measures, opens it `openings` times, measures. Returns the errors."""
    with VirtualDesktop(accessible=False) as desktop, SweepCount() as count:
        start_hog(desktop, child=["sleep", "infinity"])
        soaking = Soak(desktop, count)
        before = soaking.run(warm_up, warm_up * sweeps // openings)
        print(f"after the warm-up, {soaking}: {before}", flush=True)
        after = soaking.run(openings, sweeps)
        print(f"at the end, {soaking}: {after}", flush=True)
        return errors_of(before, after, soaking.end(), desktop.log("tarn"))


def main():
    openings = int(sys.argv[1]) if len(sys.argv) > 1 else OPENINGS
    sweeps = int(sys.argv[2]) if len(sys.argv) > 2 else SWEEPS
    enter_counted_machine()
    with all_ended_afterwards():
        errors = soak(openings, sweeps, min(WARM_UP, openings // 2))
    print(f"Failed: {'; '.join(errors)}." if errors else "Passed: no leaks, no output.")
    return 1 if errors else 0


if __name__ == "__main__":
    sys.exit(main())
