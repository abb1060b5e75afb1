# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""Observes the sweeps of a running Tarn: when they start, and how many there are."""

import ctypes
import os
import struct
import sys
import tempfile
import threading
import time
from dataclasses import dataclass
from pathlib import Path

from harness import fake_machine, proc_reader
from harness.processes import wait_until
from harness.stage import WORK

SWEEP_THREAD = "com.tarn.sampler"
POLL = 0.05  # seconds
GAP = 1.0  # seconds: context switches with shorter gaps belong to the same sweep
NEWEST_WEIGHT = 0.4  # weight of the newest value in the exponential smoothing of processor shares
COUNTED = "TARN_COUNTED_FILE"
# Event kinds of man 7 inotify.
IN_OPEN = 0x20
IN_CLOSE_NOWRITE = 0x10
IN_Q_OVERFLOW = 0x4000
EVENT = struct.Struct("iIII")  # man 7 inotify: wd, mask, cookie, len; watched files have no name
OPENS_PER_SWEEP = 2  # of /proc/swaps
LIBC = ctypes.CDLL(None, use_errno=True)


@dataclass(frozen=True)
class Sweep:
    """The start of a sweep on the monotonic clock, and the processor time of the watched load at that moment."""

    time: float
    processor_seconds: float


class SweepWatch:
    """Records sweeps by the context switches of the sweep thread of the process `pid`, and the processor time of the
    process `load`."""

    def __init__(self, pid, load=None):
        self._pid = pid
        self._load = load
        self._thread_id = wait_until(lambda: proc_reader.thread_named(pid, SWEEP_THREAD),
                                     f"Tarn has a thread {SWEEP_THREAD}")
        self._sweeps = []
        self._memory = []
        self._stop = threading.Event()
        self._thread = threading.Thread(target=self._watch, daemon=True)

    def __enter__(self):
        self._thread.start()
        return self

    def __exit__(self, *_):
        self._stop.set()
        self._thread.join()

    def _watch(self):
        last_count = proc_reader.voluntary_switches(self._pid, self._thread_id)
        last_switch = float("-inf")
        while not self._stop.wait(POLL):
            try:
                count = proc_reader.voluntary_switches(self._pid, self._thread_id)
                load_seconds = proc_reader.processor_seconds(self._load) if self._load else 0.0
            except OSError:
                return  # Tarn or the load has ended.
            now = time.monotonic()
            self._memory.append((now, proc_reader.system_memory()))
            if count != last_count:
                if now - last_switch > GAP:
                    self._sweeps.append(Sweep(now, load_seconds))
                last_count, last_switch = count, now

    def sweeps(self, since=float("-inf")):
        """The sweeps since the moment `since`."""
        return [sweep for sweep in self._sweeps if sweep.time >= since]

    def wait_for_sweeps(self, count, since, timeout):
        """Waits for `count` sweeps since the moment `since` and returns them."""
        return wait_until(lambda: len(self.sweeps(since)) >= count and self.sweeps(since),
                          f"Tarn has swept {count} times", timeout, interval=POLL)[:count]

    def smoothed_share(self):
        """The load's share of one core in percent, smoothed over the sweeps in the way that Tarn does it."""
        share = 0.0
        sweeps = self.sweeps()
        for earlier, later in zip(sweeps, sweeps[1:]):
            raw = (later.processor_seconds - earlier.processor_seconds) / (later.time - earlier.time) * 100
            share += (raw - share) * NEWEST_WEIGHT
        return share

    def memory_range(self, seconds):
        """The lowest and highest value of each system figure during the last `seconds`."""
        start = time.monotonic() - seconds
        recent = [figures for moment, figures in self._memory if moment >= start]
        return {name: (min(figures[name] for figures in recent), max(figures[name] for figures in recent))
                for name in recent[0]}


def enter_counted_machine():
    """Re-executes this program with a copy of /proc/swaps bind-mounted, so that inotify reports who opens it. The mount
    applies to this program and its children: in a separate user namespace Tarn could not read other processes."""
    if COUNTED in os.environ:
        return
    swaps = Path(tempfile.mkdtemp(prefix="counted.", dir=WORK)) / "swaps"
    swaps.write_bytes(Path("/proc/swaps").read_bytes())
    os.environ[COUNTED] = str(swaps)
    command = [*fake_machine.bind_mounts((swaps, "/proc/swaps")), sys.executable, *sys.argv]
    os.execv(command[0], list(map(str, command)))


class SweepCount:
    """Counts sweeps exactly, by counting how often /proc/swaps is opened. Needs `enter_counted_machine`."""

    def __init__(self):
        self._opened = 0
        self._events = LIBC.inotify_init1(os.O_NONBLOCK | os.O_CLOEXEC)
        # inotify merges equal events in a row. Closing events separate two openings.
        file = os.fsencode(os.environ[COUNTED])
        if self._events < 0 or LIBC.inotify_add_watch(self._events, file, IN_OPEN | IN_CLOSE_NOWRITE) < 0:
            raise OSError(ctypes.get_errno(), "inotify")

    def __enter__(self):
        return self

    def __exit__(self, *_):
        os.close(self._events)

    def count(self):
        """The number of sweeps so far."""
        try:
            while events := os.read(self._events, 1 << 16):
                for _, kinds, _, _ in EVENT.iter_unpack(events):
                    if kinds & IN_Q_OVERFLOW:
                        raise OverflowError("inotify queue overflow")
                    self._opened += bool(kinds & IN_OPEN)
        except BlockingIOError:
            pass
        return self._opened // OPENS_PER_SWEEP

    def wait_for(self, minimum):
        """Waits for at least `minimum` further sweeps. Returns the number of further sweeps."""
        before = self.count()
        wait_until(lambda: self.count() >= before + minimum, f"Tarn has swept {minimum} times", timeout=60,
                   interval=0.01)
        return self.count() - before
