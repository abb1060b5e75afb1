# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""soak.py [OPENINGS]: opens and closes the popover so many times, by clicks as the panel reports them, and says by how much
Tarn has grown. Fails when it kept more memory, files or threads than at the start, or said a word."""

import os
import sys
import time

import proc_reader
from gi.repository import GLib
from processes import adopt_orphans, end_descendants, end_on_signal, wait_until
from programs import STAGE, Tarn, start_hog
from virtual_desktop import VirtualDesktop

WARM_UP = 200
PAUSE = 0.06  # seconds: clicks that follow one another sooner count once
MOST_GROWTH = 512 * 1024


class Looks:
    """What Tarn holds while its popover is closed."""

    def __init__(self, pid):
        self.footprint = proc_reader.footprint(pid)
        self.files = len(os.listdir(f"/proc/{pid}/fd"))
        self.threads = len(os.listdir(f"/proc/{pid}/task"))

    def __str__(self):
        return f"{self.footprint // 1024} KB, {self.files} files, {self.threads} threads"


def click_until(desktop, tarn, is_open):
    """Clicks once, and waits until the popover is as it is to be."""
    tarn.item.send("Activate", GLib.Variant("(ii)", (desktop.size[0] - 20, 12)))
    wait_until(lambda: bool(desktop.window_frames(tarn.pid)) == is_open, f"the popover is open: {is_open}", interval=0.01)
    time.sleep(PAUSE)


def soak(desktop, tarn, openings):
    for _ in range(openings):
        click_until(desktop, tarn, True)
        click_until(desktop, tarn, False)
    time.sleep(2)  # what was freed goes back to the system once the window is gone
    return Looks(tarn.pid)


def main():
    openings = int(sys.argv[1]) if len(sys.argv) > 1 else 2000
    adopt_orphans()
    end_on_signal()
    try:
        with VirtualDesktop(STAGE, accessible=False) as desktop:
            start_hog(desktop, child=["sleep", "infinity"])
            tarn = Tarn(desktop)
            before = soak(desktop, tarn, WARM_UP)
            print(f"after {WARM_UP} openings: {before}", flush=True)
            after = soak(desktop, tarn, openings)
            print(f"after {openings} more: {after}", flush=True)
            said = desktop.log("tarn")
    finally:
        end_descendants()
    grown = after.footprint - before.footprint
    print(f"grown by {grown // 1024} KB; said: {said or 'nothing'}")
    return 0 if grown < MOST_GROWTH and after.files <= before.files and after.threads <= before.threads and not said else 1


if __name__ == "__main__":
    sys.exit(main())
