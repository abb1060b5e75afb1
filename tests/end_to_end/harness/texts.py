# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""The texts that Tarn shows, and parsers of its figures (English, United States)."""

import re
from dataclasses import dataclass

UNITS = {"byte": 1, "bytes": 1, "KB": 1 << 10, "MB": 1 << 20, "GB": 1 << 30}
DECIMALS = {"byte": 0, "bytes": 0, "KB": 0, "MB": 1, "GB": 2}
BYTES = r"[\d,]+(?:\.\d+)? (?:bytes?|KB|MB|GB)"
PERCENT = r"[\d,]+%"


@dataclass(frozen=True)
class Bytes:
    """A byte count read from a text. The true count differs from `value` by at most `rounding`."""

    value: float
    rounding: float


def parse_bytes(text):
    """Parses a byte figure. Raises ValueError for any other text."""
    if not re.fullmatch(BYTES, text):
        raise ValueError(f"not a byte figure: {text!r}")
    number, unit = text.split(" ")
    return Bytes(float(number.replace(",", "")) * UNITS[unit], UNITS[unit] * 0.5 / 10 ** DECIMALS[unit])


def parse_percent(text):
    """Parses a whole percentage. Raises ValueError for any other text."""
    if not re.fullmatch(PERCENT, text):
        raise ValueError(f"not a percentage: {text!r}")
    return int(text[:-1].replace(",", ""))


def uptime_text(seconds):
    """The text that Tarn shows for an uptime in seconds."""
    minutes = int(seconds) // 60
    days, hours, rest = minutes // 1440, minutes // 60 % 24, minutes % 60

    def with_unit(number, unit):
        return f"{number} {unit}" + ("" if number == 1 else "s")

    if days:
        return f"{with_unit(days, 'day')}, {with_unit(hours, 'hour')}"
    return f"{with_unit(hours, 'hour')}, {rest} min" if hours else f"{rest} min"


MEMORY_SENTENCES = {
    "normal": "Your Mac has memory to spare.",
    "swapping": "Your Mac is coping, but has started using the disk as overflow.",
    "warning": "Your Mac is running short on memory. Closing an app below would help.",
    "critical": "Your Mac is out of memory. Close something now.",
}
# The accessible description of the circle for each sentence.
STATUS_TEXTS = {
    MEMORY_SENTENCES["normal"]: "Memory normal",
    MEMORY_SENTENCES["swapping"]: "Memory normal, using swap",
    MEMORY_SENTENCES["warning"]: "Memory pressure warning",
    MEMORY_SENTENCES["critical"]: "Memory pressure critical",
}
TINTS = {"normal": "green", "swapping": "orange", "warning": "orange", "critical": "red"}
DETAIL = rf"Wired ({BYTES}) · Compressed ({BYTES}) · Cached files ({BYTES}) · Swap ({BYTES})"


def tint_for(sentence):
    """The circle's colour for a sentence; None for any other text."""
    return next((TINTS[state] for state, text in MEMORY_SENTENCES.items() if text == sentence), None)
