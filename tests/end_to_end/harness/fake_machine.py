# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""Machines that Tarn can be made to believe it runs on, as far as single files and /sys/class go."""

import tempfile
from pathlib import Path

from programs import STAGE

DESCRIPTIONS = STAGE / "machines"
CLASSES = ("power_supply", "hwmon", "thermal")


def build(name):
    """Writes the files of the described machine to a folder of their own; gives the one to be /sys/class."""
    root = Path(tempfile.mkdtemp(prefix=f"{name}.", dir=STAGE))
    classes = root / "sys/class"
    for device_class in CLASSES:
        (classes / device_class).mkdir(parents=True)
    folder = root
    for line in (DESCRIPTIONS / f"{name}.machine").read_text(encoding="utf-8").splitlines():
        if not line or line.startswith("#"):
            continue
        if line.startswith("["):
            folder = root / line.strip("[]")
            folder.mkdir(parents=True, exist_ok=True)
        else:
            file, _, text = line.partition(" =")
            (folder / file).write_text(text[1:] + "\n" if text else "", encoding="utf-8")
    return classes


def wrapper(*places):
    """The words before a program's own that have it find, by pairs of source and target, one file or folder at the
    place of another."""
    return STAGE / "end_to_end/on_machine.py", *(word for place in places for word in place), "--"


def class_wrapper(classes):
    """As `wrapper`, for a program whose /sys/class is the folder `classes`."""
    return wrapper((classes, "/sys/class"))
