# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""The folder ("stage") that scripts/on_virtual_desktop.sh prepares: programs, tests, and output folders.

The programs and the tests are read-only. Each pytest worker writes to a separate folder."""

import os
from pathlib import Path

# Without a stage pytest can collect the tests, but not run them.
STAGE = Path(os.environ.get("TARN_STAGE", "/nonexistent"))
BIN = STAGE / "bin"
TARN = BIN / "tarn"  # the program under test: the sanitized one, if it was built
RELEASE_TARN = BIN / "release/tarn"  # missing if the release preset was not built
LIST_GROUPS = BIN / "list_groups"  # missing if the tests in C++ were not built
MACHINES = STAGE / "tests/fixtures/linux/machines"
PROGRAMS = Path(__file__).parents[1] / "programs"  # helper programs in Python
WORK = STAGE / "work" / os.environ.get("PYTEST_XDIST_WORKER", "main")
RESULTS = STAGE / "results"  # copied to build/end_to_end afterwards


def make_folders():
    WORK.mkdir(parents=True, exist_ok=True)
    RESULTS.mkdir(exist_ok=True)
