# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""Counts Tarn's sweeps exactly, however fast they follow one another, by a file that it alone reads, in each."""

import ctypes
import os
import struct
import sys
import tempfile
from pathlib import Path

import machines
from processes import wait_until
from programs import STAGE

COUNTED = "TARN_COUNTED_FILE"
IN_OPEN = 0x20
IN_CLOSE_NOWRITE = 0x10
IN_Q_OVERFLOW = 0x4000
EVENT = struct.Struct("iIII")
TIMES_READ = 2  # in each sweep: for the processes, and for the machine
LIBC = ctypes.CDLL(None, use_errno=True)


def enter_counted_machine():
    """Starts this program anew on a machine where sweeps can be counted; returns there. All that it starts is on that
    machine too: from one of its own Tarn could not tell whose other processes are."""
    if COUNTED in os.environ:
        return
    swaps = Path(tempfile.mkdtemp(prefix="counted.", dir=STAGE)) / "swaps"
    swaps.write_bytes(Path("/proc/swaps").read_bytes())
    os.environ[COUNTED] = str(swaps)
    words = [*machines.wrapper((swaps, "/proc/swaps")), sys.executable, *sys.argv]
    os.execv(words[0], list(map(str, words)))


class SweepCount:
    """Counts the sweeps of the only Tarn on this machine, after `enter_counted_machine`."""

    def __init__(self):
        self._opened = 0
        self._events = LIBC.inotify_init1(os.O_NONBLOCK | os.O_CLOEXEC)
        # Of like events in a row only one is told, so the closing that stands between two openings is asked for.
        file = os.fsencode(os.environ[COUNTED])
        if self._events < 0 or LIBC.inotify_add_watch(self._events, file, IN_OPEN | IN_CLOSE_NOWRITE) < 0:
            raise OSError(ctypes.get_errno(), "the kernel does not tell who opens a file")

    def __enter__(self):
        return self

    def __exit__(self, *_):
        os.close(self._events)

    def count(self):
        """The sweeps so far."""
        try:
            while told := os.read(self._events, 1 << 16):
                for _, kinds, _, _ in EVENT.iter_unpack(told):
                    if kinds & IN_Q_OVERFLOW:
                        raise OverflowError("more sweeps than could be counted")
                    self._opened += bool(kinds & IN_OPEN)
        except BlockingIOError:
            pass
        return self._opened // TIMES_READ

    def wait_for(self, more):
        """Waits for so many more sweeps; gives how many there were."""
        before = self.count()
        wait_until(lambda: self.count() >= before + more, f"Tarn has swept {more} times", timeout=60, interval=0.01)
        return self.count() - before
