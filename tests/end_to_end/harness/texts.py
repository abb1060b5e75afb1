# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""Figures as Tarn writes them (English, United States), as numbers again."""

import re
from dataclasses import dataclass

UNITS = {"byte": 1, "bytes": 1, "KB": 1 << 10, "MB": 1 << 20, "GB": 1 << 30}
DECIMALS = {"byte": 0, "bytes": 0, "KB": 0, "MB": 1, "GB": 2}
BYTES = r"[\d,]+(?:\.\d+)? (?:bytes?|KB|MB|GB)"
PERCENT = r"[\d,]+%"


@dataclass(frozen=True)
class Bytes:
    """A byte count as read from a text; `rounding` is how far the true count may lie from it."""

    value: float
    rounding: float


def parse_bytes(text):
    """Raises ValueError for anything but a byte figure."""
    if not re.fullmatch(BYTES, text):
        raise ValueError(f"not a byte figure: {text!r}")
    number, unit = text.split(" ")
    return Bytes(float(number.replace(",", "")) * UNITS[unit], UNITS[unit] * 0.5 / 10 ** DECIMALS[unit])


def parse_percent(text):
    """Raises ValueError for anything but a whole percentage."""
    if not re.fullmatch(PERCENT, text):
        raise ValueError(f"not a percentage: {text!r}")
    return int(text[:-1].replace(",", ""))


def uptime_text(seconds):
    """Seconds as Tarn writes an uptime."""
    minutes = int(seconds) // 60
    days, hours, rest = minutes // 1440, minutes // 60 % 24, minutes % 60

    def counted(number, unit):
        return f"{number} {unit}" + ("" if number == 1 else "s")

    if days:
        return f"{counted(days, 'day')}, {counted(hours, 'hour')}"
    return f"{counted(hours, 'hour')}, {rest} min" if hours else f"{rest} min"
