# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""A machine of whose memory as much is available as a test says, at any moment."""

import os
import re
import tempfile
from pathlib import Path

from programs import STAGE

NO_SWAPS = "Filename\t\t\t\tType\t\tSize\t\tUsed\t\tPriority\n"
WIDTH = 12  # digits and the blanks before them: what is written again is as long as before


class MemoryGauge:
    """Stands in for the kernel's figures of available memory, on a machine without swap, to the program that runs with
    `places`. The other figures are those of the moment when it was made."""

    def __init__(self, share):
        folder = Path(tempfile.mkdtemp(prefix="gauge.", dir=STAGE))
        self._figures = folder / "meminfo"
        self._swaps = folder / "swaps"
        self._swaps.write_text(NO_SWAPS, encoding="ascii")
        self._real = Path("/proc/meminfo").read_text(encoding="ascii")
        self._total = int(re.search(r"^MemTotal: *(\d+)", self._real, re.MULTILINE)[1])
        self._figures.touch()
        self.show(share)
        self.places = ((self._figures, "/proc/meminfo"), (self._swaps, "/proc/swaps"))

    def show(self, share):
        """Has so large a share of the memory be available, from 0 to 1."""
        figures = {"MemAvailable": int(self._total * share), "SwapTotal": 0, "SwapFree": 0}
        text = re.sub(r"^(\w+): *\d+", lambda line: f"{line[1]}:{figures[line[1]]:{WIDTH}}"
                      if line[1] in figures else line[0], self._real, flags=re.MULTILINE)
        # In one piece and in place: a reader finds the one or the other, and never a part.
        file = os.open(self._figures, os.O_WRONLY)
        try:
            os.pwrite(file, text.encode("ascii"), 0)
        finally:
            os.close(file)
