# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""A panel that is started again and again."""

from desktop_test import DesktopTest
from hosts import XFCE_ALONE
from menu_bar import MenuBarItem
from proc_reader import MEGABYTE, takes_no_more, takings
from processes import wait_until
from programs import STAGE
from seen_item import popover_frame
from virtual_desktop import VirtualDesktop

RESTARTS = 100
WARM_UP = 10
SLACK = MEGABYTE


class RestartingPanelTest(DesktopTest):
    @classmethod
    def make_desktop(cls):
        return VirtualDesktop(STAGE, host=XFCE_ALONE, accessible=False)

    def restart(self, times):
        for _ in range(times):
            self.desktop.stop_panel()
            self.desktop.start_panel()
            MenuBarItem(self.desktop, self.tarn.pid)

    def test_a_hundred_restarts_leave_nothing_behind(self):
        self.restart(WARM_UP)
        before = takings(self.tarn.pid)
        self.restart(RESTARTS)
        self.assert_alive()
        wait_until(lambda: takes_no_more(self.tarn.pid, before, SLACK), "it takes no more than before", timeout=40)
        self.assertEqual(len(self.desktop.registered_items()), 1)
        self.desktop.click(MenuBarItem(self.desktop, self.tarn.pid).position())
        wait_until(lambda: popover_frame(self.desktop, self.tarn.pid), "the popover opens")
