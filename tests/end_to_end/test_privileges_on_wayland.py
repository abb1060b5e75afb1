# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""What Tarn reaches for on a Wayland desktop."""

from desktop_test import DesktopTest
from programs import STAGE
from seen_item import SeenItem, edge_strip
from test_privileges import PrivilegesTests
from wayland_desktop import WaylandDesktop


class PrivilegesOnWaylandTest(PrivilegesTests, DesktopTest):
    @classmethod
    def make_desktop(cls):
        return WaylandDesktop(STAGE)

    @classmethod
    def find_item(cls, desktop, _pid):
        return SeenItem(desktop, edge_strip((0, 0, *desktop.size), "top"))

    def display_addresses(self):
        """The compositor's: one for windows, one that tells where they are."""
        environment = self.desktop.environment
        return {f"{environment['XDG_RUNTIME_DIR']}/{environment['WAYLAND_DISPLAY']}", environment["SWAYSOCK"]}
