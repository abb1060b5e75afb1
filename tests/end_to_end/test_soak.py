# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""A short soak; soak.py is the long one."""

import subprocess
import sys
import unittest
from pathlib import Path

import fast_time

OPENINGS = 30
SWEEPS = 300


class SoakTest(unittest.TestCase):
    @unittest.skipUnless(fast_time.is_there(), "what makes time run faster is not installed")
    def test_it_keeps_nothing_from_sweep_to_sweep_and_from_opening_to_opening(self):
        command = [sys.executable, Path(__file__).with_name("soak.py"), str(OPENINGS), str(SWEEPS)]
        soak = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False)
        print("", *soak.stdout.splitlines(), sep="\n  ", flush=True)
        self.assertEqual(soak.returncode, 0, soak.stdout)
