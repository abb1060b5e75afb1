# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""Tarn for those who hear it, or use the keyboard alone."""

import re
import time

from desktop_test import DesktopTest
from popover import BUTTONS, ROW, TABS
from processes import wait_until
from programs import HOG, STAGE, start_hog
from sentences import STATUS_TEXTS

ROLES_OF_CONTROLS = {"push button", "button", "radio button", "check box", "link"}
EGYPTIAN_BYTES = "[٠-٩]+(?:٬[٠-٩]+)*(?:٫[٠-٩]+)? (?:bytes|KB|MB|GB)"
EGYPTIAN_PERCENT = "[٠-٩]+(?:٬[٠-٩]+)*٪\u061c?"


def is_control(node):
    return {"showing", "focusable", "sensitive"} <= node.states


def is_row(node):
    return "showing" in node.states and node.role in BUTTONS and node.name != "Quit"


def has_focus(node):
    return {"showing", "focused"} <= node.states


class KeyboardTest(DesktopTest):
    @classmethod
    def start_programs(cls):
        cls.hog = start_hog(cls.desktop)

    def tree(self):
        return self.desktop.accessibility.tree_of(self.tarn.pid)

    def open_anew(self, tab):
        """Opens the popover on a tab, with nothing ringed yet."""
        self.popover.choose_tab(tab)
        self.desktop.press_key("Escape")
        self.popover.wait_until_closed()
        # Elsewhere, so that nothing in the popover is under the pointer.
        self.popover.open()
        self.desktop.move_pointer((20, 700))
        self.popover.wait_for(lambda content: content.tab == tab, f"the tab {tab} shows")

    @staticmethod
    def stops(tree):
        """The controls that Tab stops at, in the order in which they are read."""
        return [node for node in tree.walk() if is_control(node)
                and (node.role != "radio button" or "checked" in node.states)]

    def focused(self):
        """The control that has the focus, and all that Tab stops at; the control is None where it is none of them."""
        stops = self.stops(self.tree())
        return next((node for node in stops if has_focus(node)), None), stops

    def press_tab(self, before):
        """Presses Tab; gives the control that has the focus then, and all stops."""
        self.desktop.press_key("Tab")

        def moved():
            now, stops = self.focused()
            return (now, stops) if now and (not before or now.path != before.path) else None

        return wait_until(moved, f"Tab moves the focus on from {before and before.name!r}", timeout=5)

    def press_tab_until(self, condition):
        """Presses Tab until a control for which `condition` holds has the focus; gives that."""
        now, stops = self.focused()
        for _ in range(2 * len(stops)):
            if now and condition(now):
                return now
            now, stops = self.press_tab(now)
        self.fail("Tab does not get there")

    def assert_follows(self, later, earlier, *readings):
        """`later` is the stop after `earlier` in one of the readings: the ranking may have changed in between."""
        successors = []
        for stops in readings:
            paths = [node.path for node in stops]
            if earlier.path in paths:
                successors.append(paths[(paths.index(earlier.path) + 1) % len(paths)])
        self.assertIn(later.path, successors, f"Tab went from {earlier.name!r} to {later.name!r}")

    def test_tab_goes_through_every_control_in_reading_order_and_round_again(self):
        for tab in TABS:
            with self.subTest(tab=tab):
                self.open_anew(tab)
                first, stops = self.press_tab(None)
                self.assertEqual((first.name, first.role), (tab, "radio button"))
                now, seen = first, []
                while True:
                    earlier, earlier_stops = now, stops
                    seen.append(earlier.name)
                    now, stops = self.press_tab(earlier)
                    self.assert_follows(now, earlier, earlier_stops, stops)
                    if now.path == first.path:
                        break
                    self.assertLess(len(seen), 40, seen)
                self.assertEqual(any(", " in name for name in seen), tab != "System", seen)
                self.assertTrue({"Quit", "Show frontmost app in menu bar"} <= set(seen), seen)

    def out_of_order(self):
        """The first two controls of which the later one does not lie below the earlier one or to its right."""
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
            # The ranking may change while it is read.
            findings = [self.out_of_order() for _ in range(4)]
            self.assertIn(None, findings, tab)

    def test_shift_tab_goes_back(self):
        self.open_anew("System")
        first, stops = self.press_tab(None)
        self.desktop.press_key("shift+Tab")
        last = wait_until(lambda: (now := self.focused()[0]) and now.path != first.path and now, "the focus moves back")
        self.assertEqual(last.path, stops[-1].path)

    def test_space_and_return_open_and_close_a_row(self):
        self.open_anew("Memory")
        self.press_tab_until(lambda node: node.name.startswith(f"{HOG}, "))
        for key, expanded in (("space", True), ("Return", False), ("Return", True), ("space", False)):
            self.desktop.press_key(key)
            self.popover.wait_for(lambda content: content.row(HOG).expanded == expanded,
                                  f"{key} makes the row {'open' if expanded else 'closed'}", timeout=5)
            self.assertTrue(self.focused()[0].name.startswith(f"{HOG}, "))

    def test_arrows_choose_the_tab(self):
        self.open_anew("Memory")
        self.press_tab(None)
        for key, tab in (("Right", "CPU"), ("Right", "System"), ("Left", "CPU"), ("Left", "Memory")):
            self.desktop.press_key(key)
            self.popover.wait_for(lambda content: content.tab == tab, f"{key} chooses {tab}", timeout=5)
            self.assertEqual(self.focused()[0].name, tab)

    def test_space_ticks_the_box_and_unticks_it(self):
        self.open_anew("System")
        self.press_tab_until(lambda node: node.role == "check box")
        for ticked in (True, False):
            self.desktop.press_key("space")
            self.popover.wait_for(lambda content: ("checked" in content.toggle.states) == ticked,
                                  f"space makes the box {'ticked' if ticked else 'empty'}", timeout=5)

    def picture(self, name):
        path = STAGE / f"{name}.png"
        self.desktop.take_picture(path)
        return path

    def changed_pixels(self, before, after, area):
        """How many pixels of `area` are clearly another colour in the second picture."""
        left, top, width, height = area
        share = self.desktop.run("convert", before, after, "-crop", f"{width}x{height}+{left}+{top}", "+repage",
                                 "-compose", "difference", "-composite", "-colorspace", "gray", "-threshold", "10%",
                                 "-format", "%[fx:mean]", "info:")
        return round(float(share) * width * height)

    @staticmethod
    def area_of_focus(frame, is_row):
        left, top, width, height = frame
        # The figure of a row may change at any time: beside the row there is its highlight alone.
        return (left - 6, top - 1, 6, height + 2) if is_row else tuple(frame)

    def test_the_focus_can_be_seen_wherever_it_is(self):
        kinds = {"radio button", "row", "check box", "push button", "link"}
        for scheme in ("dark", "light"):
            self.desktop.change_scheme(scheme)
            self.open_anew("Memory")
            time.sleep(1.5)  # it is painted in the other scheme
            now, frame, seen = None, None, set()
            for _ in range(40):
                before = self.picture("before")
                earlier = frame
                now, _ = self.press_tab(now)
                frame = now.extents()
                kind = "row" if ", " in now.name else now.role
                area = self.area_of_focus(frame, kind == "row")
                try:
                    wait_until(lambda: self.changed_pixels(before, self.picture("after"), area) > 20,
                               f"{now.name!r} looks different with the focus in the {scheme} scheme", timeout=3)
                except TimeoutError:
                    # Unless the rows were arranged anew, and it is where the ring was before or is not any more.
                    if frame != earlier and now.extents() == frame:
                        raise
                    continue
                seen.add(kind)
                if seen == kinds:
                    break
            self.assertEqual(seen, kinds, scheme)

class DescriptionTest(DesktopTest):
    @classmethod
    def start_programs(cls):
        cls.hog = start_hog(cls.desktop)

    def shown(self):
        return [node for node in self.desktop.accessibility.tree_of(self.tarn.pid).walk() if "showing" in node.states]

    def test_every_control_has_a_name_and_a_role_in_every_tab(self):
        for tab in TABS:
            self.popover.choose_tab(tab)
            controls = [node for node in self.shown() if "focusable" in node.states]
            self.assertGreaterEqual(len(controls), 4 if tab == "System" else 12, tab)
            for node in controls:
                self.assertTrue(node.name.strip(), (tab, node.role, node.path))
                self.assertIn(node.role, ROLES_OF_CONTROLS, (tab, node.name))
            for node in self.shown():
                if "focused" in node.states:
                    self.assertIn(node.role, ROLES_OF_CONTROLS | {"dialog"}, (tab, node.name))

    def test_every_row_tells_its_name_its_figure_and_whether_it_is_open(self):
        for tab in ("Memory", "CPU"):
            content = self.popover.choose_tab(tab)
            for node in self.shown():
                if is_row(node):
                    self.assertRegex(node.name, ROW)
            self.assertGreaterEqual(len(content.rows), 8)
            for row in content.rows:
                can_open = row.name != "Everything else"
                self.assertEqual("sensitive" in row.node.states, can_open, row)
                states = row.node.states & {"expandable", "expanded", "collapsed"}
                self.assertEqual(states, {"expandable", "collapsed"} if can_open else set(), row)

    def test_texts_are_readable_one_by_one(self):
        for tab in TABS:
            content = self.popover.choose_tab(tab)
            for text in content.texts:
                self.assertNotIn("\u00a0", text, "a space that a reader may not know")

    def test_the_item_says_its_status_in_words(self):
        sentence = self.popover.choose_tab("Memory").text_matching("|".join(map(re.escape, STATUS_TEXTS)))
        self.assertIsNotNone(sentence)
        self.assertEqual(self.tarn.item.property("IconAccessibleDesc"), STATUS_TEXTS[sentence[0]])


class LocaleTest(DesktopTest):
    """Texts are English, and figures as the user writes them."""

    @classmethod
    def start_programs(cls):
        cls.desktop.environment["LANG"] = "ar_EG.UTF-8"

    def assert_rows_have(self, figure, detail):
        """The line below the list matches `detail`, and at least eight rows end with a `figure`."""
        self.popover.wait_for(lambda content: content.text_matching(detail), f"a line says {detail}")
        rows = [node.name for node in self.desktop.accessibility.tree_of(self.tarn.pid).walk()
                if is_row(node) and re.fullmatch(f".+, {figure}", node.name, re.DOTALL)]
        self.assertGreaterEqual(len(rows), 8)

    def test_figures_have_the_digits_and_marks_of_the_locale(self):
        self.desktop.click(self.tarn.item.position())
        parts = [rf"{name} {EGYPTIAN_BYTES}" for name in ("Wired", "Compressed", "Cached files", "Swap")]
        self.assert_rows_have(EGYPTIAN_BYTES, " · ".join(parts))
        self.desktop.click(self.popover.read().tabs["CPU"].centre())
        self.assert_rows_have(EGYPTIAN_PERCENT, rf"{EGYPTIAN_PERCENT} of .+ cores in use · .+")
