# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""run_tests.py [--GROUP...] [WORD...]: runs the end-to-end tests, or those of some groups: "use", what people do with
Tarn; "hosts", in panels of every kind and with panels everywhere; "faults", what befalls it; "patience", what befalls
it slowly; "unit", as a unit of the session manager. Words select some of them.
Leaves "passed failed" counts in the stage folder."""

import sys
import unittest

from processes import adopt_orphans, end_descendants, end_on_signal
from programs import STAGE

GROUPS = {"use": ("test_desktop", "test_accessibility", "test_hostile_applications", "test_system_tab",
                  "test_privileges"),
          "hosts": ("test_hosts", "test_placement", "test_privileges_on_wayland"),
          "faults": ("test_endings", "test_faults", "test_hostile_bus", "test_unplugged_screen"),
          "patience": ("test_kernel_faults", "test_pressure", "test_restarting_panel", "test_returning_bus",
                       "test_soak"),
          "unit": ("test_unit",)}


def main():
    groups = [word.removeprefix("--") for word in sys.argv[1:] if word.startswith("--")]
    words = [word for word in sys.argv[1:] if not word.startswith("--")]
    adopt_orphans()
    end_on_signal()
    loader = unittest.TestLoader()
    loader.testNamePatterns = [f"*{word}*" for word in words] or None
    try:
        suite = loader.loadTestsFromNames(module for group in groups or GROUPS for module in GROUPS[group])
        result = unittest.TextTestRunner(verbosity=2, stream=sys.stdout).run(suite)
    finally:
        end_descendants()
    failed = len(result.failures) + len(result.errors)
    passed = max(result.testsRun - failed - len(result.skipped), 0)
    (STAGE / "counts").write_text(f"{passed} {failed}\n", encoding="ascii")
    return 1 if failed or not result.testsRun else 0


if __name__ == "__main__":
    sys.exit(main())
