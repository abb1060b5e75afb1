# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""Tarn starts while a service is missing: it prints one line, does not crash, and shows an item or a window."""

import re
import time

import pytest

from harness.processes import wait_until
from harness.programs import start_bare
from harness.stage import WORK
from harness.status_item import PanelItem, status_area_centre
from harness.virtual_desktop import VirtualDesktop

pytestmark = pytest.mark.desktop

NO_SESSION_BUS = {"DBUS_SESSION_BUS_ADDRESS": f"unix:path={WORK}/no-bus"}


class BareTarn:
    """A Tarn that is started with a given environment."""

    def __init__(self, log):
        self._log = log
        self.process = None

    def start(self, environment):
        self.process = start_bare(environment, self._log)

    def output(self):
        """The lines that Tarn printed."""
        return [line for line in self._log.read_text(encoding="utf-8").splitlines() if line.strip()]

    def window(self, desktop):
        """The id of Tarn's first visible window."""

        def search():
            assert self.process.poll() is None, self.output()
            return desktop.windows_of(self.process.pid)

        return wait_until(search, "Tarn shows a window", timeout=20, interval=0.1)[0]

    def end(self):
        if self.process:
            self.process.kill()
            self.process.wait()


@pytest.fixture(name="tarn")
def bare_tarn(request):
    log = WORK / f"{request.node.name}.log"
    log.touch()
    tarn = BareTarn(log)
    yield tarn
    tarn.end()


def assert_shows_a_window(desktop, tarn, environment):
    tarn.start(environment)
    description = desktop.run("xwininfo", "-id", tarn.window(desktop))
    assert re.search(r"Width: 320\n", description)
    assert "Override Redirect State: no" in description
    time.sleep(2)  # the message must not be repeated
    assert len(tarn.output()) == 1, tarn.output()
    assert tarn.process.poll() is None


def test_without_a_display_it_prints_an_error_and_ends(tarn):
    with VirtualDesktop(panel=False) as desktop:
        tarn.start({name: value for name, value in desktop.environment.items() if name != "DISPLAY"})
        assert tarn.process.wait(timeout=20) > 0, "it ended with success or by a signal"
    assert len(tarn.output()) == 1, tarn.output()


def test_without_a_panel_it_shows_an_ordinary_window(tarn):
    with VirtualDesktop(panel=False) as desktop:
        assert_shows_a_window(desktop, tarn, desktop.environment)


def test_without_a_session_bus_and_a_panel_it_shows_an_ordinary_window(tarn):
    with VirtualDesktop(panel=False) as desktop:
        assert_shows_a_window(desktop, tarn, desktop.environment | NO_SESSION_BUS)


def test_without_a_session_bus_it_is_embedded_in_the_panel_over_x11(tarn):
    with VirtualDesktop() as desktop:
        tarn.start(desktop.environment | NO_SESSION_BUS)
        icon = tarn.window(desktop)
        desktop.click(wait_until(lambda: status_area_centre(desktop), "the panel shows Tarn's icon"))
        popover = wait_until(lambda: set(desktop.windows_of(tarn.process.pid)) - {icon}, "the popover shows")
        assert re.search(r"Width: 320\n", desktop.run("xwininfo", "-id", *popover))
        assert tarn.output() == []


def test_it_moves_to_a_panel_that_starts_later(tarn):
    with VirtualDesktop(panel=False) as desktop:
        tarn.start(desktop.environment)
        tarn.window(desktop)
        desktop.start_panel()
        item = PanelItem(desktop, tarn.process.pid)
        assert tarn.process.poll() is None
        assert item.title()
