# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""The base class of tests that share a desktop."""

import pytest

from harness.programs import Tarn
from harness.texts import parse_bytes
from harness.virtual_desktop import VirtualDesktop


class SharedDesktop:
    """The tests of a class share a desktop with Tarn in its panel: `self.desktop`, `self.tarn` and `self.popover`.
    Subclasses override the fixtures below, which run in this order."""

    @pytest.fixture(scope="class")
    def desktop(self):
        with VirtualDesktop() as desktop:
            yield desktop

    @pytest.fixture(scope="class")
    def programs(self, desktop):
        """Starts the programs that run before Tarn starts."""

    @pytest.fixture(scope="class")
    def tarn(self, desktop, programs):
        return Tarn(desktop)

    @pytest.fixture(scope="class", autouse=True)
    def shared(self, request, desktop, tarn):
        request.cls.desktop = desktop
        request.cls.tarn = tarn
        request.cls.popover = tarn.popover

    def assert_alive(self):
        assert self.tarn.process.poll() is None, self.desktop.log("tarn")


def assert_figure(text, low, high, share=0.02):
    """`text` is a byte figure between `low` and `high`. It may differ by its rounding and by `share`."""
    figure = parse_bytes(text)
    assert figure.value >= low * (1 - share) - figure.rounding, text
    assert figure.value <= high * (1 + share) + figure.rounding, text
