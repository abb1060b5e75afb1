# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""soak.py [OPENINGS [SWEEPS]]: opens and closes Tarn's popover so many times, by clicks as the panel reports them, and
lets it sweep so many times meanwhile, its time running faster, while processes come and go and the panel asks for this
and that. Says what Tarn holds. Fails when it kept more memory, files or threads than at the start, said a word, or does
not end in order."""

import os
import shutil
import signal
import sys
import time

import fast_time
import proc_reader
from gi.repository import GLib
from processes import adopt_orphans, end_descendants, end_on_signal, start, wait_until
from programs import STAGE, Tarn, start_hog
from sweep_count import SweepCount, enter_counted_machine
from virtual_desktop import VirtualDesktop

OPENINGS = 2000
SWEEPS = 20_000
WARM_UP = 200  # openings, at the most half as many as shall be
SPEED = 100  # a sweep each 30 ms while it is open, and each 300 ms while it is closed
SWEEPS_WHILE_CLOSED = 1  # of those beside each opening
PAUSE = 0.06  # seconds: clicks that follow one another sooner count once
MOST_GROWTH = 512 * 1024
GUESTS = 10
GUEST_MEGABYTES = 60
PROGRESS = 100  # openings


class Holdings:
    """What Tarn holds while its popover is closed."""

    def __init__(self, pid):
        self.judged = not proc_reader.keeps_what_was_freed(pid)
        self.footprint = proc_reader.footprint(pid)
        self.files = len(os.listdir(f"/proc/{pid}/fd"))
        self.threads = len(os.listdir(f"/proc/{pid}/task"))

    def __str__(self):
        return f"{self.footprint // 1024} KB, {self.files} files, {self.threads} threads"


class Guest:
    """One of some applications, for a while. They come again: Tarn remembers each application that it has met."""

    def __init__(self, desktop, number):
        number %= GUESTS
        self._folder = STAGE / "applications" / f"Guest {number}.app"
        self._folder.mkdir(parents=True)
        program = self._folder / f"guest-{number}"
        os.link(STAGE / "bin/hold_memory", program)
        self._process = start([program, GUEST_MEGABYTES], desktop.environment, STAGE / "guests.log")

    def leave(self):
        self._process.kill()
        self._process.wait()
        shutil.rmtree(self._folder)


class Soak:
    """A Tarn on `desktop` whose time runs `speed` times as fast."""

    def __init__(self, desktop, sweeps, speed=SPEED):
        self._desktop = desktop
        self._sweeps = sweeps
        self.tarn = Tarn(desktop, fast_time.wrapper(speed),
                         {"ASAN_OPTIONS": "verify_asan_link_order=0"})
        self.openings = 0
        self.sweeps_while_open = 0
        self.sweeps_while_closed = 0

    def _click_until(self, is_open):
        """Clicks once, and waits until the popover is as it is to be."""
        self.tarn.item.send("Activate", GLib.Variant("(ii)", (self._desktop.size[0] - 20, 12)))
        wait_until(lambda: bool(self._desktop.window_frames(self.tarn.pid)) == is_open,
                   f"the popover is open: {is_open}", interval=0.01)

    def _chat(self):
        """What panels say and ask, and something that none asks."""
        self.tarn.item.title()
        self.tarn.item.tool_tip()
        self.tarn.item.property("IconPixmap")
        self.tarn.item.send("Scroll", GLib.Variant("(is)", (1, "vertical")))
        self.tarn.item.send("NoSuchMethod", GLib.Variant("(s)", ("x",)))

    def open_and_close(self, sweeps):
        """Opens and closes the popover once, so that with it come at least so many sweeps."""
        guest = Guest(self._desktop, self.openings)
        before = self._sweeps.count()
        self._click_until(True)
        self._chat()
        self._sweeps.wait_for((sweeps - SWEEPS_WHILE_CLOSED) // 2)
        guest.leave()
        wait_until(lambda: self._sweeps.count() >= before + sweeps - SWEEPS_WHILE_CLOSED,
                   "Tarn has swept while it is open", timeout=60, interval=0.01)
        self._click_until(False)
        while_open = self._sweeps.count() - before
        time.sleep(PAUSE)
        self.sweeps_while_open += while_open
        self.sweeps_while_closed += self._sweeps.wait_for(SWEEPS_WHILE_CLOSED)
        self.openings += 1

    def run(self, openings, sweeps):
        """So many openings with at least so many sweeps in all; gives what Tarn holds afterwards."""
        for number in range(openings):
            self.open_and_close(-(-sweeps // openings))
            if (number + 1) % PROGRESS == 0:
                print(f"  {self}: {Holdings(self.tarn.pid)}", flush=True)
        time.sleep(2)  # what was freed goes back to the system once the window is gone
        return Holdings(self.tarn.pid)

    def end(self):
        """Ends Tarn as a session does; gives the exit status."""
        self.tarn.process.send_signal(signal.SIGTERM)
        return self.tarn.process.wait(timeout=30)

    def __str__(self):
        return (f"{self.openings} openings, {self.sweeps_while_open} sweeps while open, "
                f"{self.sweeps_while_closed} while closed")


def faults(before, after, status, said):
    """What is wrong with a Tarn that held this before and after, and in the end said that; none when all is well."""
    grown = after.footprint - before.footprint
    found = {f"it grew by {grown // 1024} KB": after.judged and grown >= MOST_GROWTH,
             f"it keeps {after.files - before.files} files": after.files > before.files,
             f"it keeps {after.threads - before.threads} threads": after.threads > before.threads,
             f"it ended with {status}": status != 0,
             f"it said: {said}": bool(said)}
    return [words for words, is_so in found.items() if is_so]


def soak(openings, sweeps, warm_up):
    """Opens and closes the popover `warm_up` times, looks at what Tarn holds, and then so many times more with so many
    sweeps. Tells what was done and held; gives what is wrong."""
    with VirtualDesktop(STAGE, accessible=False) as desktop, SweepCount() as count:
        start_hog(desktop, child=["sleep", "infinity"])
        soaking = Soak(desktop, count)
        before = soaking.run(warm_up, warm_up * sweeps // openings)
        print(f"to begin with, {soaking}: {before}", flush=True)
        after = soaking.run(openings, sweeps)
        print(f"at the end, {soaking}: {after}", flush=True)
        return faults(before, after, soaking.end(), desktop.log("tarn"))


def main():
    openings = int(sys.argv[1]) if len(sys.argv) > 1 else OPENINGS
    sweeps = int(sys.argv[2]) if len(sys.argv) > 2 else SWEEPS
    enter_counted_machine()
    adopt_orphans()
    end_on_signal()
    try:
        found = soak(openings, sweeps, min(WARM_UP, openings // 2))
    finally:
        end_descendants()
    print(f"Failed: {'; '.join(found)}." if found else "Passed: it kept no more than it held, and said nothing.")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
