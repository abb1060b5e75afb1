# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""Runs the end-to-end tests; words select some of them. Leaves "passed failed" counts in the stage folder."""

import sys
import unittest

from processes import adopt_orphans, end_descendants, end_on_signal
from programs import STAGE


def main():
    adopt_orphans()
    end_on_signal()
    loader = unittest.TestLoader()
    loader.testNamePatterns = [f"*{word}*" for word in sys.argv[1:]] or None
    try:
        suite = loader.loadTestsFromNames(("test_desktop", "test_endings", "test_faults", "test_hostile_applications", "test_system_tab"))
        result = unittest.TextTestRunner(verbosity=2, stream=sys.stdout).run(suite)
    finally:
        end_descendants()
    failed = len(result.failures) + len(result.errors)
    (STAGE / "counts").write_text(f"{max(result.testsRun - failed, 0)} {failed}\n", encoding="ascii")
    return 1 if failed or not result.testsRun else 0


if __name__ == "__main__":
    sys.exit(main())
