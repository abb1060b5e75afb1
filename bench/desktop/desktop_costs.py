# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""desktop_costs.py ROUNDS IDLE_SECONDS MONITOR...: measures the costs of Tarn, of a bare Qt tray program and of
other monitors on one desktop, one after the other, ROUNDS times; then the costs of Tarn while it is idle, over
IDLE_SECONDS. Writes figures.json: a list of values for each figure."""

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
MIN_POPOVER_WIDTH = 300  # pixels
MEASURING_SECONDS = 2  # over which the CPU time of a monitor is measured
SETTLING_SECONDS = 3  # after which a program has painted its window and finished its first update
SNAPSHOT_SECONDS = 7  # three sweeps while the popover is open
IDLE_PROCESSES = 300
START_COUNT = 15  # of each program


class Figures:
    """The values of each figure, in the order of measurement."""

    def __init__(self):
        self.values = {}

    def add(self, name, value):
        self.values.setdefault(name, []).append(value)
        print(f"  {name}: {value:.6g}", flush=True)


def cpu_time(pid):
    """CPU time of all threads of a process, including exited ones, in seconds."""
    return time.clock_gettime(~pid << 3 | 2)  # the process's CPU clock, as clock_getcpuclockid(3) returns it


def thread_time(pid, thread):
    """CPU time of one thread, in seconds (Documentation/scheduler/sched-stats.rst)."""
    return int(Path(f"/proc/{pid}/task/{thread}/schedstat").read_text().split()[0]) / 1e9


class Program:
    """A running program with an item in the panel. `start_cost` is its CPU time until the item was registered."""

    def __init__(self, desktop, path):
        self._desktop = desktop
        self.process = desktop.start(path.name, [path])
        self.pid = self.process.pid
        self.owner, self.path = wait_until(self._item, f"the item of {path.name} is registered", 20, 0.002)
        self.start_cost = cpu_time(self.pid)

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
        """Calls the method that a panel calls on a click."""
        self._desktop.session.call(self.owner, self.path, INTERFACE, "Activate",
                                   GLib.Variant("(ii)", (1200, 12)))

    def is_open(self):
        return bool(self._desktop.windows_of(self.pid))

    def end(self):
        self.process.terminate()
        self.process.wait()
        wait_until(lambda: not self._item_is_left(), "the panel has removed the item")

    def _item_is_left(self):
        items = self._desktop.session.property(WATCHER, "/StatusNotifierWatcher", WATCHER,
                                               "RegisteredStatusNotifierItems")
        return any(item.startswith(self.owner) for item in items)


def open_and_time(desktop, tarn, figures):
    """Opens the popover, and measures the time until its first frame and how complete that frame is."""
    watch = subprocess.Popen([BIN / "first_frame", str(MIN_POPOVER_WIDTH)], env=desktop.environment,
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
    """Measures the main thread's CPU time per sweep while the popover is open."""
    sampler = proc_reader.thread_named(tarn.pid, SWEEP_THREAD)
    sampler_time, main_time = thread_time(tarn.pid, sampler), thread_time(tarn.pid, tarn.pid)
    is_first, swept_at = True, None
    end = time.monotonic() + seconds
    while time.monotonic() < end:
        time.sleep(0.05)
        now = thread_time(tarn.pid, sampler)
        if now > sampler_time:
            sampler_time, swept_at = now, time.monotonic()
        elif swept_at and time.monotonic() - swept_at > 1:
            # One second after a sweep, the main thread has processed its snapshot.
            before, main_time, swept_at = main_time, thread_time(tarn.pid, tarn.pid), None
            if not is_first:
                figures.add("main thread per snapshot, s", main_time - before)
            is_first = False


def measure_starts(desktop, figures):
    """Measures the cost of a start. The programs start alternately, so that both find the same caches."""
    for _ in range(START_COUNT):
        for name, path in (("bare", BARE), ("tarn", TARN)):
            program = Program(desktop, path)
            figures.add(f"start of {name}, s", program.start_cost)
            time.sleep(0.5)
            program.end()


def measure_tarn(desktop, figures):
    tarn = Program(desktop, TARN)
    time.sleep(SETTLING_SECONDS)
    figures.add("tarn closed, B", tarn.footprint())
    tarn.activate()  # the first opening
    wait_until(tarn.is_open, "the popover is open", 5)
    time.sleep(SNAPSHOT_SECONDS)
    figures.add("tarn open, B", tarn.footprint())
    close(tarn)
    time.sleep(SETTLING_SECONDS)
    figures.add("tarn closed again, B", tarn.footprint())
    open_and_time(desktop, tarn, figures)
    close(tarn)
    tarn.end()


def measure_bare(desktop, figures):
    bare = Program(desktop, BARE)
    time.sleep(SETTLING_SECONDS)
    figures.add("bare, B", bare.footprint())
    bare.end()


def measure_monitor(desktop, figures, name):
    process = desktop.start(name, [name])
    if name != "conky":  # conky draws on the root window and has no window
        wait_until(lambda: desktop.windows_of(process.pid), f"the window of {name} shows", 20)
    time.sleep(SETTLING_SECONDS)
    cpu_before = cpu_time(process.pid)
    time.sleep(MEASURING_SECONDS)
    figures.add(f"{name}, share of a core", (cpu_time(process.pid) - cpu_before) / MEASURING_SECONDS)
    figures.add(f"{name}, B", proc_reader.footprint(process.pid))
    process.terminate()
    process.wait()


def measure_idle(desktop, figures, seconds):
    """Measures the cost while the popover is closed, on a machine with a typical number of processes."""
    idle = desktop.start("idle", [BIN / "idle_processes", IDLE_PROCESSES])
    wait_until(lambda: "ready" in desktop.log("idle"), "the idle processes have started")
    tarn = Program(desktop, TARN)
    time.sleep(SETTLING_SECONDS)
    begin, cpu_before = time.monotonic(), cpu_time(tarn.pid)
    switches_before = proc_reader.all_voluntary_switches(tarn.pid)
    time.sleep(seconds)
    span = time.monotonic() - begin
    figures.add("switches per minute, idle", (proc_reader.all_voluntary_switches(tarn.pid) - switches_before) * 60
                / span)
    figures.add("share of a core, idle", (cpu_time(tarn.pid) - cpu_before) / span)
    tarn.activate()
    wait_until(tarn.is_open, "the popover is open", 5)
    measure_main_thread(tarn, figures, 30)
    tarn.end()
    idle.terminate()
    idle.wait()


def main():
    rounds, idle_seconds, monitors = int(sys.argv[1]), int(sys.argv[2]), sys.argv[3:]
    figures = Figures()
    with all_ended_afterwards(), VirtualDesktop(accessible=False) as desktop:
        measure_starts(desktop, figures)
        for _ in range(rounds):
            measure_tarn(desktop, figures)
            measure_bare(desktop, figures)
            for name in monitors:
                measure_monitor(desktop, figures, name)
        if idle_seconds:
            measure_idle(desktop, figures, idle_seconds)
    (RESULTS / "figures.json").write_text(json.dumps(figures.values, indent=1), encoding="ascii")
    return 0


if __name__ == "__main__":
    sys.exit(main())
