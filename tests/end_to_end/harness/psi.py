# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""Memory pressure (PSI) as the kernel reports it, and a load that causes it.

See Documentation/accounting/psi.rst: lines "some|full avg10=0.00 avg60=0.00 avg300=0.00 total=0", and triggers."""

import errno
import os
import re
import select
import threading
import time
from pathlib import Path

PRESSURE = Path("/proc/pressure/memory")
TOTAL = re.compile(r"^(some|full) .*total=(\d+)$", re.MULTILINE)
AVERAGE = re.compile(r"^some avg10=([\d.]+)", re.MULTILINE)
THRESHOLDS = {"some": 200, "full": 400}  # milliseconds of stalls in a window of two seconds


def _open_trigger(kind):
    trigger = os.open(PRESSURE, os.O_RDWR | os.O_NONBLOCK | os.O_CLOEXEC)
    try:
        # Threshold and window in microseconds.
        os.write(trigger, f"{kind} {THRESHOLDS[kind]}000 2000000\0".encode("ascii"))
    except OSError:
        os.close(trigger)
        raise
    return trigger


def _totals():
    """The stall times since boot in milliseconds: when some tasks stalled, and when all stalled."""
    return {kind: int(total) // 1000 for kind, total in TOTAL.findall(PRESSURE.read_text(encoding="ascii"))}


class PressureWatch:
    """Registers PSI triggers and records when they fire. The totals are read only then: reading /proc/pressure/memory
    shortly before the end of a window delays the kernel's report."""

    def __init__(self):
        self._files = {kind: _open_trigger(kind) for kind in THRESHOLDS}
        self._times = {kind: [] for kind in THRESHOLDS}
        self._start = time.monotonic()
        self._before = _totals()
        self._reported = dict(self._before)
        self._stop = threading.Event()
        self._thread = threading.Thread(target=self._watch, daemon=True)

    def __enter__(self):
        self._thread.start()
        return self

    def __exit__(self, *_):
        self._stop.set()
        self._thread.join()
        for file in self._files.values():
            os.close(file)

    def _watch(self):
        poller = select.poll()
        kinds = {file: kind for kind, file in self._files.items()}
        for file in kinds:
            poller.register(file, select.POLLPRI)
        while not self._stop.is_set():
            for file, _ in poller.poll(100):
                self._record(kinds[file])

    def _record(self, kind):
        # The first event of a trigger may come below the threshold.
        total = _totals()[kind]
        if total - self._reported[kind] >= THRESHOLDS[kind]:
            self._reported[kind] = total
            self._times[kind].append(time.monotonic())

    def reports(self, kind):
        """The moments when the stall time exceeded the threshold."""
        return self._times[kind]

    def summary(self):
        """The average stall time in two seconds since the watch began, as a text."""
        factor = 2 / (time.monotonic() - self._start)
        stalls = {kind: round((total - self._before[kind]) * factor) for kind, total in _totals().items()}
        return f"stalls in 2 s: some {stalls['some']} ms, full {stalls['full']} ms"


def some_avg10():
    """The value "some avg10" in percent."""
    return float(AVERAGE.search(PRESSURE.read_text(encoding="ascii"))[1])


def missing_prerequisite():
    """Why this system cannot cause or report memory pressure; None if it can."""
    if "TARN_THRASHER" not in os.environ:
        reason = os.environ.get("TARN_NO_THRASHER", "the thrash program was not started")
        return f"no program can cause memory pressure here: {reason}"
    try:
        os.close(_open_trigger("some"))
    except OSError as error:
        return f"the kernel accepts no PSI trigger: {error}"
    return None


def thrash(seconds):
    """Causes memory pressure for some seconds. 0 stops it."""
    try:
        requests = os.open(os.environ["TARN_THRASHER"], os.O_WRONLY | os.O_NONBLOCK)
    except OSError as error:
        if error.errno == errno.ENXIO:
            raise RuntimeError("the thrash program has ended; its error message is above") from error
        raise
    try:
        os.write(requests, f"{seconds}\n".encode("ascii"))
    finally:
        os.close(requests)
