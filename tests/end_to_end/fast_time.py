# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""Has a program's clocks and waits run faster than the world's."""

from glob import glob

LIBRARIES = "/usr/lib/*/faketime/libfaketimeMT.so.1"


def is_there():
    """Whether the library that takes is installed."""
    return bool(glob(LIBRARIES))


def wrapper(speed):
    """The words before a program's own that have its time run `speed` times as fast."""
    if not is_there():
        raise RuntimeError(f"no library that has time run faster: {LIBRARIES}")
    return "/usr/bin/env", f"LD_PRELOAD={glob(LIBRARIES)[0]}", f"FAKETIME=+0 x{speed}", "NO_FAKE_STAT=1"
