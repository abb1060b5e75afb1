# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""When tasks wait for memory, as the kernel tells it, and a load that has them wait."""

import errno
import os
import re
import select
import threading
import time
from pathlib import Path

COUNTS = Path("/proc/pressure/memory")
TOTAL = re.compile(r"^(some|full) .*total=(\d+)$", re.MULTILINE)
AVERAGE = re.compile(r"^some avg10=([\d.]+)", re.MULTILINE)
TOO_LONG = {"some": 200, "full": 400}  # milliseconds of two seconds, for some tasks and for all


def _open_report(kind):
    report = os.open(COUNTS, os.O_RDWR | os.O_NONBLOCK | os.O_CLOEXEC)
    try:
        os.write(report, f"{kind} {TOO_LONG[kind]}000 2000000\0".encode("ascii"))
    except OSError:
        os.close(report)
        raise
    return report


def _totals():
    """For how many milliseconds some tasks, and all, have waited since the machine started."""
    return {kind: int(total) // 1000 for kind, total in TOTAL.findall(COUNTS.read_text(encoding="ascii"))}


class StallWatch:
    """Has the kernel report, by its own two-second windows, when tasks wait too long. The counts are read only then:
    whoever reads them when the kernel is about to report has it put that off."""

    def __init__(self):
        self._files = {kind: _open_report(kind) for kind in TOO_LONG}
        self._times = {kind: [] for kind in TOO_LONG}
        self._start = time.monotonic()
        self._before = _totals()
        self._told = dict(self._before)
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
        waiting = select.poll()
        kinds = {file: kind for kind, file in self._files.items()}
        for file in kinds:
            waiting.register(file, select.POLLPRI)
        while not self._stop.is_set():
            for file, _ in waiting.poll(100):
                self._take_in(kinds[file])

    def _take_in(self, kind):
        # The first report that a file gets may come for any wait, however short.
        total = _totals()[kind]
        if total - self._told[kind] >= TOO_LONG[kind]:
            self._told[kind] = total
            self._times[kind].append(time.monotonic())

    def reports(self, kind):
        """The moments when tasks were reported to wait too long."""
        return self._times[kind]

    def summary(self):
        """How long tasks have waited since the watch began, in words."""
        share = 2 / (time.monotonic() - self._start)
        waited = {kind: round((total - self._before[kind]) * share) for kind, total in _totals().items()}
        return f"of 2 s, tasks waited for memory for {waited['some']} ms, all of them for {waited['full']} ms"


def average():
    """The share of the last ten seconds in which some task waited, in percent."""
    return float(AVERAGE.search(COUNTS.read_text(encoding="ascii"))[1])


def reason_for_none():
    """Why no task can be made to wait for memory here, or nobody be told; None where both can be."""
    if "TARN_THRASHER" not in os.environ:
        reason = os.environ.get("TARN_NO_THRASHER", "what can was not started")
        return f"nothing here can make tasks wait for memory: {reason}"
    try:
        os.close(_open_report("some"))
    except OSError as error:
        return f"the kernel does not report that tasks wait for memory: {error}"
    return None


def thrash(seconds):
    """Has tasks wait for memory for so many seconds, or, with 0, no more."""
    try:
        requests = os.open(os.environ["TARN_THRASHER"], os.O_WRONLY | os.O_NONBLOCK)
    except OSError as error:
        if error.errno == errno.ENXIO:
            raise RuntimeError("what makes tasks wait for memory has ended, and has said why") from error
        raise
    try:
        os.write(requests, f"{seconds}\n".encode("ascii"))
    finally:
        os.close(requests)
