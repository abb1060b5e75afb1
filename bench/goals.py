# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""The performance goals: maximum values of measured figures. A "÷" in a name means a ratio of two costs."""

from dataclasses import dataclass


@dataclass(frozen=True)
class Goal:
    """A figure, its maximum value, and the format in which both are printed."""

    name: str
    maximum: float
    number_format: str = "{:.2f}"


SWEEP = (
    Goal("sweep ÷ floor, 1,000 processes", 1.20),
    Goal("sweep ÷ floor, 5,000 processes", 1.20),
    Goal("sweep ÷ floor, 1,000 processes that all ran", 1.20),
    Goal("sweep ÷ floor, 5,000 processes that all ran", 1.20),
    Goal("sweep per process, 10,000 ÷ 1,000 processes", 1.10),
    Goal("sweep ÷ refresh of top", 0.65),
    Goal("sweep ÷ refresh of htop", 0.30),
    Goal("sweep ÷ refresh of btop", 0.65),
    Goal("sweep ÷ ps -eo pid,ppid,uid,rss,cputimes,comm", 0.35),
    Goal("growth over 10,000 sweeps, 50 new processes per sweep, KB", 256, "{:.0f}"),
    Goal("index of 500 desktop files, ms", 60, "{:.1f}"),
    Goal("index of 500 desktop files, KB", 400, "{:.0f}"),
)

DESKTOP = (
    Goal("footprint closed ÷ bare tray program", 1.8),
    Goal("footprint open ÷ bare tray program", 2.4),
    Goal("footprint closed again ÷ bare tray program", 2.0),
    Goal("footprint open ÷ mate-system-monitor", 0.5),
    Goal("footprint open ÷ lxtask", 2.0),
    Goal("start until the item is shown ÷ bare tray program", 1.3),
    Goal("voluntary switches per minute, idle", 14, "{:.1f}"),
    Goal("share of a core, idle, 300 processes", 0.0003, "{:.5f}"),
    Goal("main thread per snapshot, popover open, ms", 4, "{:.2f}"),
    Goal("main thread per snapshot, longest, ms", 16, "{:.2f}"),
    Goal("click to first frame, ms", 60, "{:.1f}"),
    Goal("share of the colours missing in the first frame", 0.2),
)
