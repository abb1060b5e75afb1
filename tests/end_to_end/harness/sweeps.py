# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""Watches from outside when Tarn sweeps, and what was true at those moments."""

import threading
import time
from dataclasses import dataclass

import proc_reader
from processes import wait_until

SWEEP_THREAD = "com.tarn.sampler"
POLL = 0.05
QUIET = 1.0  # a thread that stirs again within this many seconds is still busy with the same sweep
NEWEST_WEIGHT = 0.4


@dataclass(frozen=True)
class Sweep:
    """The start of a sweep, on the monotonic clock, and the watched process's processor time then."""

    time: float
    processor_seconds: float


class SweepWatch:
    """Follows the sweep thread of the process `pid`, and the processor time of the process `load`, if given."""

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
        last_stir = float("-inf")
        while not self._stop.wait(POLL):
            try:
                count = proc_reader.voluntary_switches(self._pid, self._thread_id)
                busy = proc_reader.processor_seconds(self._load) if self._load else 0.0
            except OSError:
                return  # Tarn or the load has ended, and with it the watch.
            now = time.monotonic()
            self._memory.append((now, proc_reader.system_memory()))
            if count != last_count:
                if now - last_stir > QUIET:
                    self._sweeps.append(Sweep(now, busy))
                last_count, last_stir = count, now

    def sweeps(self, since=float("-inf")):
        """The sweeps from the moment `since` on."""
        return [sweep for sweep in self._sweeps if sweep.time >= since]

    def wait_for_sweeps(self, count, since, timeout):
        """The first `count` sweeps from `since` on."""
        return wait_until(lambda: len(self.sweeps(since)) >= count and self.sweeps(since),
                          f"Tarn has swept {count} times", timeout, interval=POLL)[:count]

    def smoothed_share(self):
        """The load's share of one core in percent, smoothed over the sweeps so far as Tarn is to smooth it."""
        share = 0.0
        sweeps = self.sweeps()
        for earlier, later in zip(sweeps, sweeps[1:]):
            raw = (later.processor_seconds - earlier.processor_seconds) / (later.time - earlier.time) * 100
            share += (raw - share) * NEWEST_WEIGHT
        return share

    def memory_range(self, seconds):
        """The lowest and highest of each system figure during the last `seconds`."""
        start = time.monotonic() - seconds
        recent = [figures for moment, figures in self._memory if moment >= start]
        return {name: (min(figures[name] for figures in recent), max(figures[name] for figures in recent))
                for name in recent[0]}
