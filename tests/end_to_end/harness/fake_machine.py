# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""Replaces files below /proc and /sys by those of another machine, for a program that starts with a command prefix."""

import os
import re
import subprocess
import tempfile
from pathlib import Path

from harness.stage import BIN, MACHINES, PROGRAMS, WORK

CLASSES = ("power_supply", "hwmon", "thermal")
NO_SWAPS = "Filename\t\t\t\tType\t\tSize\t\tUsed\t\tPriority\n"
WIDTH = 12  # digits with leading spaces: every version of the file has the same size


def write_files(name):
    """Writes the files of a machine in tests/fixtures to a new folder. Returns its sys/class."""
    root = Path(tempfile.mkdtemp(prefix=f"{name}.", dir=WORK))
    classes = root / "sys/class"
    for device_class in CLASSES:
        (classes / device_class).mkdir(parents=True)
    subprocess.run([BIN / "lay_out_machine", MACHINES / f"{name}.machine", root], check=True)
    return classes


def bind_mounts(*mounts):
    """The command prefix for a program that sees `source` at the path `target`, for each (source, target) in `mounts`.
    Both are files, or both are folders."""
    return PROGRAMS / "with_bind_mounts.py", *(path for mount in mounts for path in mount), "--"


def with_classes(classes):
    """The command prefix for a program whose /sys/class is the folder `classes`."""
    return bind_mounts((classes, "/sys/class"))


class FakeMemory:
    """Replacements of /proc/meminfo and /proc/swaps: no swap, and a share of available memory that the test sets. The
    other figures are those of the real machine. `mounts` are arguments of `bind_mounts`."""

    def __init__(self, share):
        folder = Path(tempfile.mkdtemp(prefix="memory.", dir=WORK))
        self._meminfo = folder / "meminfo"
        self._swaps = folder / "swaps"
        self._swaps.write_text(NO_SWAPS, encoding="ascii")
        self._real = Path("/proc/meminfo").read_text(encoding="ascii")
        self._total = int(re.search(r"^MemTotal: *(\d+)", self._real, re.MULTILINE)[1])
        self._meminfo.touch()
        self.set_available(share)
        self.mounts = ((self._meminfo, "/proc/meminfo"), (self._swaps, "/proc/swaps"))

    def set_available(self, share):
        """Sets the share of the memory that is available, from 0 to 1."""
        figures = {"MemAvailable": int(self._total * share), "SwapTotal": 0, "SwapFree": 0}
        text = re.sub(r"^(\w+): *\d+", lambda match: f"{match[1]}:{figures[match[1]]:{WIDTH}}"
                      if match[1] in figures else match[0], self._real, flags=re.MULTILINE)
        # One write: a reader gets the old or the new version. The file is bind-mounted, so it is not replaced.
        file = os.open(self._meminfo, os.O_WRONLY)
        try:
            os.pwrite(file, text.encode("ascii"), 0)
        finally:
            os.close(file)
