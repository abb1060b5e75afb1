# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""Keyboard operation, accessible objects, and the user's locale."""

import re
import time

import pytest

from harness.popover import BUTTONS, ROW, TABS
from harness.processes import wait_until
from harness.programs import HOG, start_hog
from harness.shared_desktop import SharedDesktop
from harness.texts import STATUS_TEXTS

pytestmark = pytest.mark.desktop

ROLES_OF_CONTROLS = {"push button", "button", "radio button", "check box", "link"}
EGYPTIAN_BYTES = "[٠-٩]+(?:٬[٠-٩]+)*(?:٫[٠-٩]+)? (?:bytes|KB|MB|GB)"
EGYPTIAN_PERCENT = "[٠-٩]+(?:٬[٠-٩]+)*٪\u061c?"


def is_control(node):
    return {"showing", "focusable", "sensitive"} <= node.states


def is_row(node):
    return "showing" in node.states and node.role in BUTTONS and node.name != "Quit"


def has_focus(node):
    return {"showing", "focused"} <= node.states


class KeyboardTests(SharedDesktop):
    @pytest.fixture(scope="class")
    def programs(self, desktop):
        start_hog(desktop)

    def tree(self):
        return self.desktop.accessibility.tree_of(self.tarn.pid)

    def reopen(self, tab):
        """Closes the popover and opens it on a tab, so that no control has a focus ring."""
        self.popover.choose_tab(tab)
        self.desktop.press_key("Escape")
        self.popover.wait_until_closed()
        # Move the pointer away: a control under it is highlighted.
        self.popover.open()
        self.desktop.move_pointer((20, 700))
        self.popover.wait_for(lambda content: content.tab == tab, f"the tab {tab} shows")

    @staticmethod
    def stops(tree):
        """The controls that the Tab key focuses, in reading order."""
        return [node for node in tree.walk() if is_control(node)
                and (node.role != "radio button" or "checked" in node.states)]

    def focused(self):
        """The focused control, None if it is no tab stop, and all tab stops."""
        stops = self.stops(self.tree())
        return next((node for node in stops if has_focus(node)), None), stops

    def press_tab(self, before):
        """Presses Tab. Returns the focused control and all tab stops."""
        self.desktop.press_key("Tab")

        def moved():
            now, stops = self.focused()
            return (now, stops) if now and (not before or now.path != before.path) else None

        return wait_until(moved, f"Tab moves the focus from {before and before.name!r}", timeout=5)

    def press_tab_until(self, condition):
        """Presses Tab until `condition` holds for the focused control. Returns the control."""
        now, stops = self.focused()
        for _ in range(2 * len(stops)):
            if now and condition(now):
                return now
            now, stops = self.press_tab(now)
        pytest.fail("Tab does not reach the control")

    def screenshot(self):
        return self.desktop.image_of((0, 0, *self.desktop.size))


@pytest.mark.long
class TestKeyboard(KeyboardTests):
    def assert_follows(self, later, earlier, *readings):
        """`later` is the tab stop after `earlier` in one of the readings, between which the list may be reordered."""
        successors = []
        for stops in readings:
            paths = [node.path for node in stops]
            if earlier.path in paths:
                successors.append(paths[(paths.index(earlier.path) + 1) % len(paths)])
        assert later.path in successors, f"Tab went from {earlier.name!r} to {later.name!r}"

    @pytest.mark.parametrize("tab", TABS)
    def test_tab_visits_every_control_in_reading_order_and_wraps_around(self, tab):
        self.reopen(tab)
        first, stops = self.press_tab(None)
        assert (first.name, first.role) == (tab, "radio button")
        now, seen = first, []
        while True:
            earlier, earlier_stops = now, stops
            seen.append(earlier.name)
            now, stops = self.press_tab(earlier)
            self.assert_follows(now, earlier, earlier_stops, stops)
            if now.path == first.path:
                break
            assert len(seen) < 40, seen
        assert any(", " in name for name in seen) == (tab != "System"), seen
        assert {"Quit", "Show frontmost app in menu bar"} <= set(seen), seen

    def out_of_order(self):
        """The first two consecutive tab stops in wrong order: the second is neither below nor to the right."""
        frames = [(node.extents(), node.name) for node in self.stops(self.tree())]
        for (frame, name), (later, later_name) in zip(frames, frames[1:]):
            is_below = later[1] >= frame[1] + frame[3]
            is_beside = later[0] >= frame[0] + frame[2] and later[1] + later[3] > frame[1]
            if not is_below and not is_beside:
                return name, frame, later_name, later
        return None

    def test_reading_order_is_from_top_to_bottom(self):
        for tab in TABS:
            self.popover.choose_tab(tab)
            # The list may be reordered while it is read.
            findings = [self.out_of_order() for _ in range(4)]
            assert None in findings, tab

    def test_shift_tab_goes_back(self):
        self.reopen("System")
        first, stops = self.press_tab(None)
        self.desktop.press_key("shift+Tab")
        last = wait_until(lambda: (now := self.focused()[0]) and now.path != first.path and now, "the focus moves back")
        assert last.path == stops[-1].path

    def test_space_and_return_open_and_close_a_row(self):
        self.reopen("Memory")
        self.press_tab_until(lambda node: node.name.startswith(f"{HOG}, "))
        for key, expanded in (("space", True), ("Return", False), ("Return", True), ("space", False)):
            self.desktop.press_key(key)
            self.popover.wait_for(lambda content: content.row(HOG).expanded == expanded,
                                  f"{key} makes the row {'open' if expanded else 'closed'}", timeout=5)
            assert self.focused()[0].name.startswith(f"{HOG}, ")

    def test_arrows_choose_the_tab(self):
        self.reopen("Memory")
        self.press_tab(None)
        for key, tab in (("Right", "CPU"), ("Right", "System"), ("Left", "CPU"), ("Left", "Memory")):
            self.desktop.press_key(key)
            self.popover.wait_for(lambda content: content.tab == tab, f"{key} chooses {tab}", timeout=5)
            assert self.focused()[0].name == tab

    def test_space_ticks_the_box_and_unticks_it(self):
        self.reopen("System")
        self.press_tab_until(lambda node: node.role == "check box")
        for ticked in (True, False):
            self.desktop.press_key("space")
            self.popover.wait_for(lambda content: ("checked" in content.toggle.states) == ticked,
                                  f"space makes the box {'ticked' if ticked else 'empty'}", timeout=5)


@pytest.mark.long
class TestFocusRing(KeyboardTests):
    @staticmethod
    def area_of_focus(frame, is_row):
        left, top, width, height = frame
        # The figure of a row may change at any time. The strip to its left shows only the focus ring.
        return (left - 6, top - 1, 6, height + 2) if is_row else tuple(frame)

    @pytest.mark.parametrize("scheme", ("dark", "light"))
    def test_the_focused_control_is_highlighted(self, scheme):
        kinds = {"radio button", "row", "check box", "push button", "link"}
        self.desktop.change_scheme(scheme)
        self.reopen("Memory")
        time.sleep(1.5)  # the popover is repainted
        now, frame, seen = None, None, set()
        for _ in range(40):
            before = self.screenshot()
            earlier = frame
            now, _ = self.press_tab(now)
            frame = now.extents()
            kind = "row" if ", " in now.name else now.role
            area = self.area_of_focus(frame, kind == "row")
            try:
                wait_until(lambda: self.screenshot().changed_pixels(before, area) > 20,
                           f"{now.name!r} looks different with the focus in the {scheme} scheme", timeout=3)
            except TimeoutError:
                # If the list was reordered, the control moved, or is where the ring was before. Then try the next one.
                if frame != earlier and now.extents() == frame:
                    raise
                continue
            seen.add(kind)
            if seen == kinds:
                break
        assert seen == kinds, scheme


class TestDescription(SharedDesktop):
    @pytest.fixture(scope="class")
    def programs(self, desktop):
        start_hog(desktop)

    def shown(self):
        return [node for node in self.desktop.accessibility.tree_of(self.tarn.pid).walk() if "showing" in node.states]

    def test_every_control_has_a_name_and_a_role_in_every_tab(self):
        for tab in TABS:
            self.popover.choose_tab(tab)
            controls = [node for node in self.shown() if "focusable" in node.states]
            assert len(controls) >= (4 if tab == "System" else 12), tab
            for node in controls:
                assert node.name.strip(), (tab, node.role, node.path)
                assert node.role in ROLES_OF_CONTROLS, (tab, node.name)
            for node in self.shown():
                if "focused" in node.states:
                    assert node.role in ROLES_OF_CONTROLS | {"dialog"}, (tab, node.name)

    def test_every_row_has_its_name_its_figure_and_its_expanded_state(self):
        for tab in ("Memory", "CPU"):
            content = self.popover.choose_tab(tab)
            for node in self.shown():
                if is_row(node):
                    assert re.search(ROW, node.name)
            assert len(content.rows) >= 8
            for row in content.rows:
                can_open = row.name != "Everything else"
                assert ("sensitive" in row.node.states) == can_open, row
                states = row.node.states & {"expandable", "expanded", "collapsed"}
                assert states == ({"expandable", "collapsed"} if can_open else set()), row

    def test_texts_contain_no_no_break_spaces(self):
        for tab in TABS:
            content = self.popover.choose_tab(tab)
            for text in content.texts:
                assert "\u00a0" not in text, "screen readers may not support this space"

    def test_the_item_has_an_accessible_description(self):
        sentence = self.popover.choose_tab("Memory").text_matching("|".join(map(re.escape, STATUS_TEXTS)))
        assert sentence is not None
        assert self.tarn.item.property("IconAccessibleDesc") == STATUS_TEXTS[sentence[0]]


class TestLocale(SharedDesktop):
    """Texts are English. Figures follow the user's locale."""

    @pytest.fixture(scope="class")
    def programs(self, desktop):
        desktop.environment["LANG"] = "ar_EG.UTF-8"

    def assert_rows_have(self, figure, detail):
        """The line below the list matches `detail`, and at least eight rows end with `figure`."""
        self.popover.wait_for(lambda content: content.text_matching(detail), f"a line is {detail}")
        rows = [node.name for node in self.desktop.accessibility.tree_of(self.tarn.pid).walk()
                if is_row(node) and re.fullmatch(f".+, {figure}", node.name, re.DOTALL)]
        assert len(rows) >= 8

    def test_figures_have_the_digits_and_marks_of_the_locale(self):
        self.desktop.click(self.tarn.item.position())
        parts = [rf"{name} {EGYPTIAN_BYTES}" for name in ("Wired", "Compressed", "Cached files", "Swap")]
        self.assert_rows_have(EGYPTIAN_BYTES, " · ".join(parts))
        self.desktop.click(self.popover.read().tabs["CPU"].centre())
        self.assert_rows_have(EGYPTIAN_PERCENT, rf"{EGYPTIAN_PERCENT} of .+ cores in use · .+")
