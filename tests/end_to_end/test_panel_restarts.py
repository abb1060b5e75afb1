# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""A panel that is restarted many times."""

import pytest

from harness.hosts import XFCE_ALONE
from harness.proc_reader import MEGABYTE, resource_usage, uses_no_more
from harness.processes import wait_until
from harness.shared_desktop import SharedDesktop
from harness.status_item import PanelItem, popover_frame
from harness.virtual_desktop import VirtualDesktop

pytestmark = [pytest.mark.slow, pytest.mark.timeout(900)]

RESTARTS = 100
WARM_UP = 10
SLACK = MEGABYTE


@pytest.mark.long
class TestPanelRestarts(SharedDesktop):
    @pytest.fixture(scope="class")
    def desktop(self):
        with VirtualDesktop(host=XFCE_ALONE, accessible=False) as desktop:
            yield desktop

    def restart(self, times):
        for _ in range(times):
            self.desktop.stop_panel()
            self.desktop.start_panel()
            PanelItem(self.desktop, self.tarn.pid)

    def test_a_hundred_restarts_leak_nothing(self):
        self.restart(WARM_UP)
        before = resource_usage(self.tarn.pid)
        self.restart(RESTARTS)
        self.assert_alive()
        wait_until(lambda: uses_no_more(self.tarn.pid, before, SLACK), "Tarn uses no more than before", timeout=40)
        assert len(self.desktop.registered_items()) == 1
        self.desktop.click(PanelItem(self.desktop, self.tarn.pid).position())
        wait_until(lambda: popover_frame(self.desktop, self.tarn.pid), "the popover opens")
