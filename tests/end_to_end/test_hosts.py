# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""Tarn's item and popover on panels of every kind."""

import re
import time

import hosts
import proc_reader
from desktop_test import DesktopTest
from figures import BYTES, parse_bytes
from menu_bar import RegisteredItem
from processes import wait_until
from programs import HOG, STAGE, Tarn, start_hog
from seen_item import SeenItem, drawn_popover_frame, edge_strip, popover_frame
from sentences import DETAIL, tint_for
from sweep_watch import SweepWatch
from virtual_desktop import VirtualDesktop
from wayland_desktop import OUTPUT_SIZE, WaylandDesktop

PICTURES = STAGE / "pictures"
PICTURE_SIZE = (480, 560)
FIGURE_PICTURE_SIZE = (240, 40)
RESTARTS = 20
REACH = 12  # pixels from the panel to the popover, at most
REOPEN_GUARD = 0.5  # seconds after which a click on the item opens the popover again, whatever closed it
LATE = 1  # seconds in which a late message of the panel would open the popover again


class HostTests:
    """What holds in the panel `host`, which lies along the top of the screen and shows nothing but Tarn's item."""

    host = None

    @classmethod
    def make_desktop(cls):
        return VirtualDesktop(STAGE, host=cls.host)

    @classmethod
    def start_programs(cls):
        start_hog(cls.desktop)
        wait_until(lambda: cls.desktop.active_window_name() == HOG, "Hog's window has the focus")

    @classmethod
    def start_tarn(cls):
        strip = edge_strip((0, 0, *cls.desktop.size), "top")
        return Tarn(cls.desktop, find_item=lambda desktop, pid: SeenItem(desktop, strip))

    def setUp(self):
        self.item = self.tarn.item
        self.leave_item()

    def leave_item(self):
        """Takes the pointer from the item, which may look otherwise below it."""
        self.desktop.move_pointer((OUTPUT_SIZE[0] // 4, OUTPUT_SIZE[1] - 60))

    def tearDown(self):
        if self.popover.read():
            self.desktop.press_key("Escape")
            self.popover.wait_until_closed()

    def registered(self):
        return RegisteredItem(self.desktop, self.tarn.pid)

    def frame(self):
        """The popover's place on the screen, once it is drawn there."""
        return wait_until(lambda: drawn_popover_frame(self.desktop, self.tarn.pid), "the popover is drawn in its place")

    def tool_tip(self):
        """The sentence and the figures that the panel shows while the pointer rests on the item."""
        return wait_until(lambda: (texts := self.registered().tool_tip())[1] and texts, "the item tells figures")

    def figure_told(self):
        """The figure that the item tells in words; None without one."""
        match = re.search(BYTES, self.registered().title())
        return match and match[0]

    def toggle(self):
        """Switches the figure in the panel on or off, as a person does, and leaves the popover closed."""
        self.popover.open()
        self.frame()
        content = self.popover.read()
        self.desktop.click(self.desktop.on_screen(self.tarn.pid, content.toggle.centre()))
        self.popover.wait_for(lambda now: now.toggle.states != content.toggle.states, "the toggle changes")
        self.desktop.press_key("Escape")
        self.popover.wait_until_closed()
        self.leave_item()

    def take_picture(self, name, size):
        """Leaves a picture of what is around and below the item."""
        across, _ = self.item.position()
        start = min(max(across - size[0] // 2, 0), OUTPUT_SIZE[0] - size[0])
        PICTURES.mkdir(exist_ok=True)
        self.desktop.take_picture(PICTURES / f"{name}.png", (start, 0, *size))

    def items_shown(self):
        """How many items the panel has."""
        return len(self.desktop.registered_items())

    def test_the_circle_has_the_colour_of_the_memory_state(self):
        wait_until(lambda: self.item.tint() == tint_for(self.tool_tip()[0]), "colour and sentence agree")

    def test_the_tooltip_is_the_verdict_and_the_figures(self):
        sentence, figures = self.tool_tip()
        self.assertIsNotNone(tint_for(sentence), sentence)
        self.assertRegex(figures, rf"\A{DETAIL}\Z")

    def test_a_click_opens_the_popover_beside_the_item(self):
        across, _ = self.item.position()
        self.popover.open()
        left, top, width, height = self.frame()
        self.take_picture(f"host-{self.host.name}", PICTURE_SIZE)
        self.assertTrue(left <= across < left + width, (left, width, across))
        self.assertTrue(hosts.PANEL_DEPTH <= top <= hosts.PANEL_DEPTH + REACH, top)
        self.assertLessEqual(left + width, self.desktop.size[0])
        self.assertLessEqual(top + height, self.desktop.size[1])

    def test_a_second_click_closes_it_for_good(self):
        self.popover.open()
        self.desktop.click(self.item.position())
        self.popover.wait_until_closed()
        time.sleep(LATE)
        self.assertIsNone(self.popover.read())
        self.assertIsNone(popover_frame(self.desktop, self.tarn.pid))

    def test_escape_closes_it(self):
        self.popover.open()
        self.desktop.press_key("Escape")
        self.popover.wait_until_closed()
        self.assertIsNone(popover_frame(self.desktop, self.tarn.pid))

    def test_the_frontmost_figure_shows_the_way_the_panel_offers(self):
        circle, before = self.item.circle_width(), self.item.width()
        self.assertLess(before, 2 * circle)
        self.toggle()
        self.addCleanup(self.toggle)
        wait_until(self.figure_told, "the item's title bears a figure")
        self.assertRegex(self.tool_tip()[1], rf"\A{DETAIL}\nFrontmost application: {BYTES}\Z")
        if self.host.keeps_proportions:
            wait_until(lambda: self.item.width() > 3 * circle, "the figure stands beside the circle")
            self.take_picture(f"host-{self.host.name}-figure", FIGURE_PICTURE_SIZE)
        self.assertAlmostEqual(self.item.circle_width(), circle, delta=2)

    def test_one_item_is_left_after_many_restarts_of_the_panel(self):
        for _ in range(RESTARTS):
            self.desktop.stop_panel()
            self.desktop.start_panel()
            wait_until(self.item.is_there, "the new panel shows the circle")
        self.assertEqual(self.items_shown(), 1)
        self.assert_alive()


class XfceTest(HostTests, DesktopTest):
    host = hosts.XFCE_ALONE


class LxqtTest(HostTests, DesktopTest):
    host = hosts.LXQT


class MateTest(HostTests, DesktopTest):
    host = hosts.MATE


class TrayerTest(HostTests, DesktopTest):
    """A tray that embeds windows: what the item says is in its window's own tooltip."""

    host = hosts.TRAYER

    def tool_tip(self):
        across, down = self.item.position()
        for step in (-2, 0):
            self.desktop.move_pointer((across + step, down))
        tip = wait_until(self._tip, "the tooltip shows")
        self.leave_item()
        sentence, _, figures = tip.name.partition("\n")
        return sentence, figures

    def _tip(self):
        tree = self.desktop.accessibility.tree_of(self.tarn.pid)
        return next((node for node in tree.walk() if node.role == "tool tip" and "showing" in node.states), None)

    def figure_told(self):
        return re.search(BYTES, self.tool_tip()[1])

    def items_shown(self):
        return len([frame for frame in self.desktop.window_frames(self.tarn.pid) if frame[3] <= hosts.PANEL_DEPTH])


class WaybarTest(HostTests, DesktopTest):
    """Under a compositor, where windows can not place themselves."""

    host = hosts.WAYBAR

    @classmethod
    def make_desktop(cls):
        return WaylandDesktop(STAGE)

    @classmethod
    def start_programs(cls):
        cls.window = cls.desktop.start("window", ["foot", "--title", HOG, "sleep", "infinity"])
        wait_until(lambda: cls.desktop.active_window_name() == HOG, "a window has the focus")

    def test_the_popover_itself_is_never_the_frontmost_application(self):
        self.toggle()
        self.addCleanup(self.toggle)
        self.popover.open()
        with SweepWatch(self.tarn.pid) as watch:
            watch.wait_for_sweeps(2, since=time.monotonic(), timeout=20)
        self.desktop.press_key("Escape")
        self.popover.wait_until_closed()
        figure = parse_bytes(wait_until(self.figure_told, "the item's title bears a figure"))
        expected = sum(map(proc_reader.footprint, [self.window.pid, *proc_reader.children(self.window.pid)]))
        self.assertAlmostEqual(figure.value, expected, delta=expected / 5 + figure.rounding)

    def test_a_click_on_another_window_closes_it(self):
        self.popover.open()
        self.desktop.click((OUTPUT_SIZE[0] // 4, OUTPUT_SIZE[1] // 2))
        self.popover.wait_until_closed()
        self.assertIsNone(popover_frame(self.desktop, self.tarn.pid))
        # A click on the item that took the focus from the popover may reach it as late as this.
        time.sleep(REOPEN_GUARD)


class TwoOutputsTest(DesktopTest):
    """A bar on each of two outputs, both with Tarn's item."""

    @classmethod
    def make_desktop(cls):
        return WaylandDesktop(STAGE, outputs=2)

    @classmethod
    def start_tarn(cls):
        strip = edge_strip((0, 0, *OUTPUT_SIZE), "top")
        return Tarn(cls.desktop, find_item=lambda desktop, pid: SeenItem(desktop, strip))

    def test_the_popover_opens_where_the_item_was_clicked(self):
        for number in (1, 0, 1):
            start = number * OUTPUT_SIZE[0]
            item = SeenItem(self.desktop, edge_strip((start, 0, *OUTPUT_SIZE), "top"))
            with self.subTest(output=number + 1):
                self.desktop.click(item.position())
                self.popover.wait_for(lambda content: content.rows, "the popover is filled")
                left, _, width, _ = wait_until(lambda: drawn_popover_frame(self.desktop, self.tarn.pid),
                                               "the popover is drawn in its place")
                self.assertTrue(start <= left <= item.position()[0] < left + width <= start + OUTPUT_SIZE[0],
                                (left, width, item.position()))
            self.desktop.press_key("Escape")
            self.popover.wait_until_closed()
