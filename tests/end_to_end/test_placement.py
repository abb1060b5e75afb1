# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""Where the popover opens: beside the item and wholly on the screen, wherever the panel is."""

import contextlib
import re
import unittest

import hosts
from programs import STAGE, Tarn
from seen_item import DEPTH, SeenItem, edge_strip, lies_within, popover_frame, right_and_bottom
from sentences import DETAIL
from virtual_desktop import SIZE, VirtualDesktop, monitor_name

EDGES = ("top", "bottom", "left", "right")
REACH = 12  # pixels from the panel to the popover, at most
LOW_SCREEN = (1280, 400)
MONITOR = (1280, 800)


def panel_host(edge, at_start=False, scale=1, output="Automatic"):
    """A panel with the item at its left or upper end, or at the other one."""
    plugins = (hosts.XFCE_ITEMS, hosts.XFCE_SPACE) if at_start else (hosts.XFCE_SPACE, hosts.XFCE_ITEMS)
    return hosts.xfce(*plugins, edge=edge, output=output, environment={"GDK_SCALE": str(scale)})


def without_strip(area, edge, depth):
    """What a panel along an edge leaves of an area."""
    left, top, width, height = area
    return {"top": (left, top + depth, width, height - depth), "bottom": (left, top, width, height - depth),
            "left": (left + depth, top, width - depth, height), "right": (left, top, width - depth, height)}[edge]


def gap_to_edge(frame, area, edge):
    """How far a frame is from an edge of the area that it lies in."""
    (right, bottom), (last_right, last_bottom) = right_and_bottom(frame), right_and_bottom(area)
    return {"top": frame[1] - area[1], "bottom": last_bottom - bottom, "left": frame[0] - area[0],
            "right": last_right - right}[edge]


class PlacementTest(unittest.TestCase):
    """On desktops of every kind."""

    @contextlib.contextmanager
    def running(self, host, screen, scale=1, size=None, monitors=1):
        """Tarn on a desktop with this panel along an edge of `screen` (left, top, width, height)."""
        strip = edge_strip(screen, host.edge, DEPTH * scale)
        with VirtualDesktop(STAGE, host=host, size=size or screen[2:], monitors=monitors) as desktop:
            yield desktop, Tarn(desktop, environment={"QT_SCALE_FACTOR": str(scale)},
                                find_item=lambda on, pid: SeenItem(on, strip))

    def assert_is_beside_the_item(self, desktop, tarn, edge, screen, scale=1):
        """The popover is open: wholly on the screen, close to the panel but not over it, and next to the item."""
        frame = popover_frame(desktop, tarn.pid, scale)
        free = without_strip(screen, edge, hosts.PANEL_DEPTH * scale)
        self.assertTrue(lies_within(frame, free), f"{frame} in {free}")
        self.assertLessEqual(gap_to_edge(frame, free, edge), REACH * scale, f"{frame} in {free}")
        along = 0 if edge in ("top", "bottom") else 1
        item = tarn.item.position()
        self.assertTrue(frame[along] <= item[along] < right_and_bottom(frame)[along], (frame, item))

    def check_every_edge(self, scale):
        screen = (0, 0, SIZE[0] * scale, SIZE[1] * scale)
        for edge in EDGES:
            for at_start in (False, True):
                host = panel_host(edge, at_start, scale)
                with self.subTest(edge=edge, at_start=at_start), self.running(host, screen, scale) as (desktop, tarn):
                    tarn.popover.open()
                    self.assert_is_beside_the_item(desktop, tarn, edge, screen, scale)

    def test_beside_panels_at_every_edge_and_corner(self):
        self.check_every_edge(scale=1)

    def test_beside_panels_at_every_edge_and_corner_of_a_dense_screen(self):
        self.check_every_edge(scale=2)

    def test_on_the_monitor_whose_panel_was_clicked(self):
        for monitor in (0, 1):
            for edge in EDGES:
                screen = (monitor * MONITOR[0], 0, *MONITOR)
                # Next to the other monitor.
                host = panel_host(edge, at_start=monitor == 1, output=monitor_name(monitor))
                with self.subTest(monitor=monitor, edge=edge), \
                        self.running(host, screen, size=(2 * MONITOR[0], MONITOR[1]), monitors=2) as (desktop, tarn):
                    tarn.popover.open()
                    self.assert_is_beside_the_item(desktop, tarn, edge, screen)

    def test_on_a_low_screen_all_can_be_reached(self):
        screen = (0, 0, *LOW_SCREEN)
        with self.running(panel_host("top"), screen) as (desktop, tarn):
            content = tarn.popover.open()
            self.assert_is_beside_the_item(desktop, tarn, "top", screen)
            frame = popover_frame(desktop, tarn.pid)
            for node in (content.quit, content.toggle):
                self.assertTrue(lies_within(node.extents(), frame), f"{node.name}: {node.extents()} in {frame}")
            end = self.top_of_detail_line(desktop, tarn)
            self.assertGreater(self.end_of_list(content), end, "the screen is too high for this test")
            desktop.turn_wheel(content.rows[0].node.centre(), notches=30)
            tarn.popover.wait_for(lambda now: self.end_of_list(now) <= end, "the last row comes into sight", timeout=5)

    @staticmethod
    def end_of_list(content):
        return right_and_bottom(content.rows[-1].node.extents())[1]

    @staticmethod
    def top_of_detail_line(desktop, tarn):
        """The first line of pixels below the list that are no longer the list's."""
        tree = desktop.accessibility.tree_of(tarn.pid)
        return next(node for node in tree.walk() if re.fullmatch(DETAIL, node.name)).extents()[1]
