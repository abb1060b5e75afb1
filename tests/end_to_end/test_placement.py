# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""Where the popover opens: beside the item and completely on the screen, for each position of the panel."""

import contextlib
import re

import pytest

from harness import hosts
from harness.programs import Tarn
from harness.status_item import MAX_PANEL_DEPTH, VisibleItem, edge_strip, lies_within, popover_frame, right_and_bottom
from harness.texts import DETAIL
from harness.virtual_desktop import SIZE, VirtualDesktop, monitor_name

pytestmark = [pytest.mark.hosts, pytest.mark.release_build]

EDGES = ("top", "bottom", "left", "right")
MAX_DISTANCE = 12  # pixels from the panel to the popover
LOW_SCREEN = (1280, 400)
MONITOR = (1280, 800)


def panel_host(edge, at_start=False, scale=1, output="Automatic"):
    """A panel with the item at its left or top end (`at_start`), else at its right or bottom end."""
    plugins = (hosts.XFCE_ITEMS, hosts.XFCE_SPACE) if at_start else (hosts.XFCE_SPACE, hosts.XFCE_ITEMS)
    return hosts.xfce(*plugins, edge=edge, output=output, environment={"GDK_SCALE": str(scale)})


def without_strip(area, edge, depth):
    """The part of an area that a panel at an edge leaves free."""
    left, top, width, height = area
    return {"top": (left, top + depth, width, height - depth), "bottom": (left, top, width, height - depth),
            "left": (left + depth, top, width - depth, height), "right": (left, top, width - depth, height)}[edge]


def gap_to_edge(frame, area, edge):
    """The distance from `frame` to an edge of `area`, which contains the frame."""
    (right, bottom), (last_right, last_bottom) = right_and_bottom(frame), right_and_bottom(area)
    return {"top": frame[1] - area[1], "bottom": last_bottom - bottom, "left": frame[0] - area[0],
            "right": last_right - right}[edge]


@contextlib.contextmanager
def running(host, screen, scale=1, size=None, monitors=1):
    """A desktop with this panel at an edge of `screen` (left, top, width, height), and Tarn on it."""
    strip = edge_strip(screen, host.edge, MAX_PANEL_DEPTH * scale)
    with VirtualDesktop(host=host, size=size or screen[2:], monitors=monitors) as desktop:
        yield desktop, Tarn(desktop, environment={"QT_SCALE_FACTOR": str(scale)},
                            find_item=lambda *_: VisibleItem(desktop, strip))


def assert_is_beside_the_item(desktop, tarn, edge, screen, scale=1):
    """The popover is open, completely on the screen, near the panel, not over the panel, and beside the item."""
    frame = popover_frame(desktop, tarn.pid, scale)
    free = without_strip(screen, edge, hosts.PANEL_DEPTH * scale)
    assert lies_within(frame, free), f"{frame} in {free}"
    assert gap_to_edge(frame, free, edge) <= MAX_DISTANCE * scale, f"{frame} in {free}"
    along = 0 if edge in ("top", "bottom") else 1
    item = tarn.item.position()
    assert frame[along] <= item[along] < right_and_bottom(frame)[along], (frame, item)


@pytest.mark.parametrize("at_start", (False, True), ids=("item_at_end", "item_at_start"))
@pytest.mark.parametrize("edge", EDGES)
@pytest.mark.parametrize("scale", (1, 2), ids=("scale1", "scale2"))
def test_beside_panels_at_every_edge_and_corner(scale, edge, at_start):
    screen = (0, 0, SIZE[0] * scale, SIZE[1] * scale)
    with running(panel_host(edge, at_start, scale), screen, scale) as (desktop, tarn):
        tarn.popover.open()
        assert_is_beside_the_item(desktop, tarn, edge, screen, scale)


@pytest.mark.parametrize("edge", EDGES)
@pytest.mark.parametrize("monitor", (0, 1), ids=("left_monitor", "right_monitor"))
def test_on_the_monitor_whose_panel_was_clicked(monitor, edge):
    screen = (monitor * MONITOR[0], 0, *MONITOR)
    # The item is next to the other monitor.
    host = panel_host(edge, at_start=monitor == 1, output=monitor_name(monitor))
    with running(host, screen, size=(2 * MONITOR[0], MONITOR[1]), monitors=2) as (desktop, tarn):
        tarn.popover.open()
        assert_is_beside_the_item(desktop, tarn, edge, screen)


def end_of_list(content):
    return right_and_bottom(content.rows[-1].node.extents())[1]


def top_of_detail_line(desktop, tarn):
    """The first line of pixels below the list."""
    tree = desktop.accessibility.tree_of(tarn.pid)
    return next(node for node in tree.walk() if re.fullmatch(DETAIL, node.name)).extents()[1]


def test_on_a_low_screen_everything_can_be_reached():
    screen = (0, 0, *LOW_SCREEN)
    with running(panel_host("top"), screen) as (desktop, tarn):
        content = tarn.popover.open()
        assert_is_beside_the_item(desktop, tarn, "top", screen)
        frame = popover_frame(desktop, tarn.pid)
        for node in (content.quit, content.toggle):
            assert lies_within(node.extents(), frame), f"{node.name}: {node.extents()} in {frame}"
        end = top_of_detail_line(desktop, tarn)
        assert end_of_list(content) > end, "the screen is too high for this test"
        desktop.turn_wheel(content.rows[0].node.centre(), notches=30)
        tarn.popover.wait_for(lambda now: end_of_list(now) <= end, "the last row is visible", timeout=5)
