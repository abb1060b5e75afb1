# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""A short run of the leak test soak.py."""

import os
import subprocess
import sys
from pathlib import Path

import pytest

from harness.programs import tarn_program
from soak import faketime_libraries

pytestmark = pytest.mark.slow

OPENINGS = 30
SWEEPS = 300


def soak():
    if not faketime_libraries():
        pytest.skip("NOT TESTED: libfaketime is not installed")
    command = [sys.executable, Path(__file__).with_name("soak.py"), str(OPENINGS), str(SWEEPS)]
    finished = subprocess.run(command, env=os.environ | {"TARN_PROGRAM": str(tarn_program())}, stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, text=True, check=False)
    print(finished.stdout)
    assert finished.returncode == 0, finished.stdout


@pytest.mark.long
def test_sweeps_and_openings_leak_nothing():
    soak()


@pytest.mark.long
@pytest.mark.release_build
def test_sweeps_and_openings_of_release_build_leak_nothing():
    soak()
