# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""desktop_costs.py ROUNDS REST MONITOR...: what Tarn, a bare program of its toolkit and other monitors cost on the same
desktop, one after the other, so many times; and what Tarn costs at rest, over so many seconds. Writes figures.json: a
list of values for each figure."""

import json
import subprocess
import sys
import time
from pathlib import Path

from gi.repository import GLib

from harness import proc_reader
from harness.desktop import WATCHER
from harness.processes import all_ended_afterwards, wait_until
from harness.stage import BIN, RESULTS, TARN
from harness.status_item import INTERFACE
from harness.sweeps import SWEEP_THREAD
from harness.virtual_desktop import VirtualDesktop

BARE = BIN / "bare_tray_program"
POPOVER_WIDTH = 300  # at least; pixels
WATCHED = 2  # seconds for which the processor time of a monitor is watched
SETTLED = 3  # seconds after which a program has drawn itself and looked around once
SNAPSHOTS = 7  # seconds that hold three sweeps of the open popover
IDLE_PROCESSES = 300
STARTS = 15


class Figures:
    """Every value of every figure, in the order in which they were measured."""

    def __init__(self):
        self.values = {}

    def add(self, name, value):
        self.values.setdefault(name, []).append(value)
        print(f"  {name}: {value:.6g}", flush=True)


def processor_time(pid):
    """Processor time of all threads of a process, ended ones too, in seconds."""
    return time.clock_gettime(~pid << 3 | 2)


def thread_time(pid, thread):
    """Processor time of one thread, in seconds."""
    return int(Path(f"/proc/{pid}/task/{thread}/schedstat").read_text().split()[0]) / 1e9


class Program:
    """A running program that shows an item in the panel; knows what it had cost when the item was registered."""

    def __init__(self, desktop, path):
        self._desktop = desktop
        self.process = desktop.start(path.name, [path])
        self.pid = self.process.pid
        self.owner, self.path = wait_until(self._item, f"the item of {path.name} is registered", 20, 0.002)
        self.start_cost = processor_time(self.pid)

    def _item(self):
        items = self._desktop.session.property(WATCHER, "/StatusNotifierWatcher", WATCHER,
                                               "RegisteredStatusNotifierItems")
        for item in items:
            owner, slash, path = item.partition("/")
            if self._desktop.session.process_of(owner) == self.pid:
                return owner, slash + path
        return None

    def footprint(self):
        return proc_reader.footprint(self.pid)

    def activate(self):
        """What the panel does on a click."""
        self._desktop.session.call(self.owner, self.path, INTERFACE, "Activate",
                                   GLib.Variant("(ii)", (1200, 12)))

    def is_open(self):
        return bool(self._desktop.windows_of(self.pid))

    def end(self):
        self.process.terminate()
        self.process.wait()
        wait_until(lambda: not self._item_is_left(), "the panel has let go of the item")

    def _item_is_left(self):
        items = self._desktop.session.property(WATCHER, "/StatusNotifierWatcher", WATCHER,
                                               "RegisteredStatusNotifierItems")
        return any(item.startswith(self.owner) for item in items)


def open_and_time(desktop, tarn, figures):
    """Opens the popover and measures the time to its first frame."""
    watch = subprocess.Popen([BIN / "first_frame", str(POPOVER_WIDTH)], env=desktop.environment,
                             stdout=subprocess.PIPE, text=True)
    watch.stdout.readline()
    begin = time.monotonic()
    tarn.activate()
    painted, first, later = watch.stdout.readline().split()
    watch.wait(timeout=10)
    figures.add("click to first frame, s", float(painted) - begin)
    figures.add("share of the colours in the first frame", int(first) / int(later))


def close(tarn):
    tarn.activate()
    wait_until(lambda: not tarn.is_open(), "the popover is closed", 5)


def measure_main_thread(tarn, figures, seconds):
    """The main thread's processor time for each sweep, while the popover is open."""
    sampler = proc_reader.thread_named(tarn.pid, SWEEP_THREAD)
    swept, drawn = thread_time(tarn.pid, sampler), thread_time(tarn.pid, tarn.pid)
    first, quiet_since = True, None
    end = time.monotonic() + seconds
    while time.monotonic() < end:
        time.sleep(0.05)
        now = thread_time(tarn.pid, sampler)
        if now > swept:
            swept, quiet_since = now, time.monotonic()
        elif quiet_since and time.monotonic() - quiet_since > 1:
            # A second after a sweep all that follows from it is done.
            before, drawn, quiet_since = drawn, thread_time(tarn.pid, tarn.pid), None
            if not first:
                figures.add("main thread per snapshot, s", drawn - before)
            first = False


def measure_starts(desktop, figures):
    """What it costs to start, each time after the other one: what is still at hand from before is the same for both."""
    for _ in range(STARTS):
        for name, path in (("bare", BARE), ("tarn", TARN)):
            program = Program(desktop, path)
            figures.add(f"start of {name}, s", program.start_cost)
            time.sleep(0.5)
            program.end()


def measure_tarn(desktop, figures):
    tarn = Program(desktop, TARN)
    time.sleep(SETTLED)
    figures.add("tarn closed, B", tarn.footprint())
    tarn.activate()  # what it costs to open once is not warm
    wait_until(tarn.is_open, "the popover is open", 5)
    time.sleep(SNAPSHOTS)
    figures.add("tarn open, B", tarn.footprint())
    close(tarn)
    time.sleep(SETTLED)
    figures.add("tarn closed again, B", tarn.footprint())
    open_and_time(desktop, tarn, figures)
    close(tarn)
    tarn.end()


def measure_bare(desktop, figures):
    bare = Program(desktop, BARE)
    time.sleep(SETTLED)
    figures.add("bare, B", bare.footprint())
    bare.end()


def measure_monitor(desktop, figures, name):
    process = desktop.start(name, [name])
    if name != "conky":  # which draws on the wallpaper
        wait_until(lambda: desktop.windows_of(process.pid), f"the window of {name} shows", 20)
    time.sleep(SETTLED)
    busy = processor_time(process.pid)
    time.sleep(WATCHED)
    figures.add(f"{name}, share of a core", (processor_time(process.pid) - busy) / WATCHED)
    figures.add(f"{name}, B", proc_reader.footprint(process.pid))
    process.terminate()
    process.wait()


def measure_rest(desktop, figures, seconds):
    """What the closed popover costs on a machine with a usual number of processes."""
    idle = desktop.start("idle", [BIN / "idle_processes", IDLE_PROCESSES])
    wait_until(lambda: "ready" in desktop.log("idle"), "the idle processes are there")
    tarn = Program(desktop, TARN)
    time.sleep(SETTLED)
    begin, asleep, busy = time.monotonic(), proc_reader.all_voluntary_switches(tarn.pid), processor_time(tarn.pid)
    time.sleep(seconds)
    span = time.monotonic() - begin
    figures.add("switches per minute at rest", (proc_reader.all_voluntary_switches(tarn.pid) - asleep) * 60 / span)
    figures.add("share of a core at rest", (processor_time(tarn.pid) - busy) / span)
    tarn.activate()
    wait_until(tarn.is_open, "the popover is open", 5)
    measure_main_thread(tarn, figures, 30)
    tarn.end()
    idle.terminate()
    idle.wait()


def main():
    rounds, rest_seconds, monitors = int(sys.argv[1]), int(sys.argv[2]), sys.argv[3:]
    figures = Figures()
    with all_ended_afterwards(), VirtualDesktop(accessible=False) as desktop:
        measure_starts(desktop, figures)
        for _ in range(rounds):
            measure_tarn(desktop, figures)
            measure_bare(desktop, figures)
            for name in monitors:
                measure_monitor(desktop, figures, name)
        if rest_seconds:
            measure_rest(desktop, figures, rest_seconds)
    (RESULTS / "figures.json").write_text(json.dumps(figures.values, indent=1), encoding="ascii")
    return 0


if __name__ == "__main__":
    sys.exit(main())
