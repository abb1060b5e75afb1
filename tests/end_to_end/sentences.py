# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""What Tarn says of the memory, and the circle's colour that goes with it."""

from figures import BYTES

MEMORY_SENTENCES = {
    "normal": "Your Mac has memory to spare.",
    "swapping": "Your Mac is coping, but has started using the disk as overflow.",
    "warning": "Your Mac is running short on memory. Closing an app below would help.",
    "critical": "Your Mac is out of memory. Close something now.",
}
# What the circle says of itself beside each.
STATUS_TEXTS = {
    MEMORY_SENTENCES["normal"]: "Memory normal",
    MEMORY_SENTENCES["swapping"]: "Memory normal, using swap",
    MEMORY_SENTENCES["warning"]: "Memory pressure warning",
    MEMORY_SENTENCES["critical"]: "Memory pressure critical",
}
TINTS = {"normal": "green", "swapping": "orange", "warning": "orange", "critical": "red"}
DETAIL = rf"Wired ({BYTES}) · Compressed ({BYTES}) · Cached files ({BYTES}) · Swap ({BYTES})"


def tint_for(sentence):
    """The circle's colour beside this sentence; None beside any other."""
    return next((TINTS[state] for state, text in MEMORY_SENTENCES.items() if text == sentence), None)
