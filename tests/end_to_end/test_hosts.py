# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""Tarn's item and popover on panels of every kind."""

import contextlib
import re
import time

import pytest

from harness import hosts, proc_reader
from harness.processes import wait_until
from harness.programs import HOG, Tarn, start_hog
from harness.shared_desktop import SharedDesktop
from harness.stage import RESULTS
from harness.status_item import RegisteredItem, VisibleItem, drawn_popover_frame, edge_strip, popover_frame
from harness.sweeps import SweepWatch
from harness.texts import BYTES, DETAIL, parse_bytes, tint_for
from harness.virtual_desktop import VirtualDesktop
from harness.wayland_desktop import OUTPUT_SIZE, WaylandDesktop

pytestmark = [pytest.mark.hosts, pytest.mark.release_build]

SCREENSHOT_SIZE = (480, 560)
FIGURE_SCREENSHOT_SIZE = (240, 40)
RESTARTS = 20
MAX_DISTANCE = 12  # pixels from the panel to the popover
REOPEN_GUARD = 0.5  # seconds after which a click on the item opens the popover again
DELAYED_CALL = 1  # seconds in which a delayed call of the panel would open the popover again


class HostTests:
    """Tests for the panel `host`, which is at the top of the screen and shows only Tarn's item."""

    host = None

    @pytest.fixture(scope="class")
    def desktop(self):
        with VirtualDesktop(host=self.host) as desktop:
            yield desktop

    @pytest.fixture(scope="class")
    def programs(self, desktop):
        start_hog(desktop)
        wait_until(lambda: desktop.active_window_name() == HOG, "Hog's window has the focus")

    @pytest.fixture(scope="class")
    def tarn(self, desktop, programs):
        strip = edge_strip((0, 0, *desktop.size), "top")
        return Tarn(desktop, find_item=lambda *_: VisibleItem(desktop, strip))

    @pytest.fixture(autouse=True)
    def closed_popover(self, shared):
        self.item = self.tarn.item
        self.leave_item()
        yield
        if self.popover.read():
            self.desktop.press_key("Escape")
            self.popover.wait_until_closed()

    def leave_item(self):
        """Moves the pointer away from the item: panels may highlight the item under the pointer."""
        self.desktop.move_pointer((OUTPUT_SIZE[0] // 4, OUTPUT_SIZE[1] - 60))

    def registered(self):
        return RegisteredItem(self.desktop, self.tarn.pid)

    def frame(self):
        """Waits until the popover is painted. Returns its position and size on the screen."""
        return wait_until(lambda: drawn_popover_frame(self.desktop, self.tarn.pid), "the popover is painted")

    def tool_tip(self):
        """The sentence and the figures of the tooltip."""
        return wait_until(lambda: (texts := self.registered().tool_tip())[1] and texts, "the tooltip has figures")

    def title_figure(self):
        """The figure in the item's title; None if there is none."""
        match = re.search(BYTES, self.registered().title())
        return match and match[0]

    def toggle(self):
        """Switches the figure in the panel on or off by a click, and closes the popover."""
        self.popover.open()
        self.frame()
        content = self.popover.read()
        self.desktop.click(self.desktop.on_screen(self.tarn.pid, content.toggle.centre()))
        self.popover.wait_for(lambda now: now.toggle.states != content.toggle.states, "the toggle changes")
        self.desktop.press_key("Escape")
        self.popover.wait_until_closed()
        self.leave_item()

    @contextlib.contextmanager
    def figure_shown(self):
        """Shows the figure in the panel for the `with` block."""
        self.toggle()
        try:
            yield
        finally:
            self.toggle()

    def take_screenshot(self, name, size):
        """Saves a screenshot of the area around and below the item."""
        x, _ = self.item.position()
        start = min(max(x - size[0] // 2, 0), OUTPUT_SIZE[0] - size[0])
        self.desktop.take_screenshot(RESULTS / f"{name}.png", (start, 0, *size))

    def item_count(self):
        """The number of items in the panel."""
        return len(self.desktop.registered_items())

    def test_the_circle_has_the_colour_of_the_memory_state(self):
        wait_until(lambda: self.item.tint() == tint_for(self.tool_tip()[0]), "colour and sentence agree")

    def test_the_tooltip_is_the_status_sentence_and_the_figures(self):
        sentence, figures = self.tool_tip()
        assert tint_for(sentence) is not None, sentence
        assert re.search(rf"\A{DETAIL}\Z", figures)

    def test_a_click_opens_the_popover_beside_the_item(self):
        x, _ = self.item.position()
        self.popover.open()
        left, top, width, height = self.frame()
        self.take_screenshot(f"host-{self.host.name}", SCREENSHOT_SIZE)
        assert left <= x < left + width, (left, width, x)
        assert hosts.PANEL_DEPTH <= top <= hosts.PANEL_DEPTH + MAX_DISTANCE, top
        assert left + width <= self.desktop.size[0]
        assert top + height <= self.desktop.size[1]

    def test_a_second_click_closes_it(self):
        self.popover.open()
        self.desktop.click(self.item.position())
        self.popover.wait_until_closed()
        time.sleep(DELAYED_CALL)
        assert self.popover.read() is None
        assert popover_frame(self.desktop, self.tarn.pid) is None

    def test_escape_closes_it(self):
        self.popover.open()
        self.desktop.press_key("Escape")
        self.popover.wait_until_closed()
        assert popover_frame(self.desktop, self.tarn.pid) is None

    def test_the_frontmost_figure_is_in_title_tooltip_and_wide_icons(self):
        circle, before = self.item.circle_width(), self.item.width()
        assert before < 2 * circle
        with self.figure_shown():
            wait_until(self.title_figure, "the item's title contains a figure")
            assert re.search(rf"\A{DETAIL}\nFrontmost application: {BYTES}\Z", self.tool_tip()[1])
            if self.host.keeps_proportions:
                wait_until(lambda: self.item.width() > 3 * circle, "the figure is beside the circle")
                self.take_screenshot(f"host-{self.host.name}-figure", FIGURE_SCREENSHOT_SIZE)
            assert self.item.circle_width() == pytest.approx(circle, abs=2)

    def test_one_item_is_left_after_many_restarts_of_the_panel(self):
        for _ in range(RESTARTS):
            self.desktop.stop_panel()
            self.desktop.start_panel()
            wait_until(self.item.is_visible, "the new panel shows the circle")
        assert self.item_count() == 1
        self.assert_alive()


class TestXfce(HostTests, SharedDesktop):
    host = hosts.XFCE_ALONE


class TestLxqt(HostTests, SharedDesktop):
    host = hosts.LXQT


class TestMate(HostTests, SharedDesktop):
    host = hosts.MATE


class TestTrayer(HostTests, SharedDesktop):
    """A tray that embeds windows (XEmbed). The tooltip is a window of Tarn."""

    host = hosts.TRAYER

    def tool_tip(self):
        x, y = self.item.position()
        for step in (-2, 0):
            self.desktop.move_pointer((x + step, y))
        tip = wait_until(self._tip, "the tooltip shows")
        self.leave_item()
        sentence, _, figures = tip.name.partition("\n")
        return sentence, figures

    def _tip(self):
        tree = self.desktop.accessibility.tree_of(self.tarn.pid)
        return next((node for node in tree.walk() if node.role == "tool tip" and "showing" in node.states), None)

    def title_figure(self):
        return re.search(BYTES, self.tool_tip()[1])

    def item_count(self):
        return len([frame for frame in self.desktop.window_frames(self.tarn.pid) if frame[3] <= hosts.PANEL_DEPTH])


class TestWaybar(HostTests, SharedDesktop):
    """On Wayland, where programs cannot choose the position of their windows."""

    host = hosts.WAYBAR

    @pytest.fixture(scope="class")
    def desktop(self):
        with WaylandDesktop() as desktop:
            yield desktop

    @pytest.fixture(scope="class")
    def programs(self, request, desktop):
        request.cls.window = desktop.start("window", ["foot", "--title", HOG, "sleep", "infinity"])
        wait_until(lambda: desktop.active_window_name() == HOG, "a window has the focus")

    def test_the_popover_itself_is_never_the_frontmost_application(self):
        with self.figure_shown():
            self.popover.open()
            with SweepWatch(self.tarn.pid) as watch:
                watch.wait_for_sweeps(2, since=time.monotonic(), timeout=20)
            self.desktop.press_key("Escape")
            self.popover.wait_until_closed()
            figure = parse_bytes(wait_until(self.title_figure, "the item's title contains a figure"))
            expected = sum(map(proc_reader.footprint, [self.window.pid, *proc_reader.children(self.window.pid)]))
            assert figure.value == pytest.approx(expected, abs=expected / 5 + figure.rounding)

    def test_a_click_on_another_window_closes_it(self):
        self.popover.open()
        self.desktop.click((OUTPUT_SIZE[0] // 4, OUTPUT_SIZE[1] // 2))
        self.popover.wait_until_closed()
        assert popover_frame(self.desktop, self.tarn.pid) is None
        # Shortly after the popover lost the focus, Tarn ignores a click on the item.
        time.sleep(REOPEN_GUARD)


class TestTwoOutputs(SharedDesktop):
    """A bar on each of two outputs, both with Tarn's item."""

    @pytest.fixture(scope="class")
    def desktop(self):
        with WaylandDesktop(outputs=2) as desktop:
            yield desktop

    @pytest.fixture(scope="class")
    def tarn(self, desktop):
        strip = edge_strip((0, 0, *OUTPUT_SIZE), "top")
        return Tarn(desktop, find_item=lambda *_: VisibleItem(desktop, strip))

    def test_the_popover_opens_where_the_item_was_clicked(self):
        for number in (1, 0, 1):
            start = number * OUTPUT_SIZE[0]
            item = VisibleItem(self.desktop, edge_strip((start, 0, *OUTPUT_SIZE), "top"))
            self.desktop.click(item.position())
            self.popover.wait_for(lambda content: content.rows, "the popover is filled")
            left, _, width, _ = wait_until(lambda: drawn_popover_frame(self.desktop, self.tarn.pid),
                                           "the popover is painted")
            x, _ = item.position()
            assert start <= left <= x < left + width <= start + OUTPUT_SIZE[0], f"output {number + 1}"
            self.desktop.press_key("Escape")
            self.popover.wait_until_closed()
