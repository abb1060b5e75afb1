# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""What the tests on a desktop have in common."""

import unittest

from figures import parse_bytes
from programs import STAGE, Tarn
from virtual_desktop import VirtualDesktop


class DesktopTest(unittest.TestCase):
    """A desktop with Tarn in its panel, shared by the tests of a class."""

    @classmethod
    def setUpClass(cls):
        cls.desktop = cls.enterClassContext(cls.make_desktop())
        cls.start_programs()
        cls.tarn = cls.start_tarn()
        cls.popover = cls.tarn.popover

    @classmethod
    def make_desktop(cls):
        return VirtualDesktop(STAGE)

    @classmethod
    def start_tarn(cls):
        return Tarn(cls.desktop)

    @classmethod
    def start_programs(cls):
        """What runs beside Tarn before it starts."""

    def assert_alive(self):
        self.assertIsNone(self.tarn.process.poll(), self.desktop.log("tarn"))

    def assert_figure(self, text, low, high, share=0.02):
        """`text` is a byte figure between `low` and `high`, give or take its rounding and `share`."""
        figure = parse_bytes(text)
        self.assertGreaterEqual(figure.value, low * (1 - share) - figure.rounding, text)
        self.assertLessEqual(figure.value, high * (1 + share) + figure.rounding, text)
