# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""Programs on the session bus that mean harm: a watcher, a portal, and whoever calls."""

import time
import unittest

import proc_reader
from desktop_test import DesktopTest
from gi.repository import GLib
from menu_bar import INTERFACE, RegisteredItem
from proc_reader import takes_no_more, takings
from processes import wait_until
from programs import STAGE, Tarn
from virtual_desktop import VirtualDesktop

APPLICATION = "example.tarn.Tarn"
ITEM, MENU = "/StatusNotifierItem", "/StatusNotifierItem/Menu"
APPLICATION_PATH = "/example/tarn/Tarn"
MENU_INTERFACE = "com.canonical.dbusmenu"
PROPERTIES = "org.freedesktop.DBus.Properties"
OPEN = 1  # the menu's entry
LARGEST = 2**31 - 1
UNANSWERED = ("silent", "refusing", "nonsense", "huge")
BOUND = 10  # seconds for an answer: the machine may be busy, and the program sanitized
MANY = 100_000
SLACK = 4 * proc_reader.MEGABYTE


class ItemOnTheBus(RegisteredItem):
    """The item of the session's Tarn, whoever shows it, at a place where no panel is."""

    def _find(self):
        return self._desktop.session.has_owner(APPLICATION) and (APPLICATION, ITEM)

    def click(self):
        self.send("Activate", GLib.Variant("(ii)", (640, 10)))


class HostileService:
    """A program that has the name of a "watcher" or a "portal"; see hostile_service.py."""

    def __init__(self, desktop, kind, manner):
        self._desktop, self._log = desktop, f"{kind}-{manner}-{time.monotonic_ns()}"
        self._process = desktop.start(self._log, ["python3", STAGE / "end_to_end/hostile_service.py", kind, manner])
        wait_until(lambda: "ready" in self.said(), f"the {manner} {kind} is there", timeout=60)

    def said(self):
        return self._desktop.log(self._log).splitlines()

    def stop(self):
        self._process.terminate()
        self._process.wait(timeout=10)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.stop()


def quick_answer(item):
    """The item's title, for which the program takes no longer than it may."""
    start = time.monotonic()
    title = item.title()
    taken = time.monotonic() - start
    if taken > BOUND:
        raise AssertionError(f"an answer took {taken:.1f} seconds")
    return title


class HostileStartTest(unittest.TestCase):
    """What Tarn finds when it starts."""

    def test_under_a_watcher_that_never_answers_well_it_is_within_reach(self):
        for manner in UNANSWERED:
            with self.subTest(manner), VirtualDesktop(STAGE, panel=False) as desktop, \
                    HostileService(desktop, "watcher", manner) as watcher:
                tarn = Tarn(desktop, find_item=ItemOnTheBus)
                tarn.popover.wait_for(lambda content: content.rows, "it has a window of its own", timeout=40)
                self.assertIn("asked RegisterStatusNotifierItem", watcher.said())
                self.assertTrue(quick_answer(tarn.item))
                # The watcher may have the item all the same.
                tarn.popover.wait_for(lambda content: content.rows, "the window stays")
                tarn.item.click()
                wait_until(tarn.popover.read, "a click opens the popover")
                self.assertLess(watcher.said().count("asked RegisterStatusNotifierItem"), 2)
                tarn.process.terminate()
                self.assertEqual(tarn.process.wait(timeout=20), 0, desktop.log("tarn"))

    def test_under_a_portal_that_never_answers_well_it_is_in_the_panel(self):
        for manner in (*UNANSWERED, "flapping", "shouting"):
            with self.subTest(manner), VirtualDesktop(STAGE) as desktop:
                desktop.stop_portal()
                with HostileService(desktop, "portal", manner) as portal:
                    tarn = Tarn(desktop)
                    tarn.popover.open()
                    self.assertIn("asked Read", portal.said())
                    self.assertTrue(quick_answer(tarn.item))
                    tarn.process.terminate()
                    self.assertEqual(tarn.process.wait(timeout=20), 0, desktop.log("tarn"))


class HostileCallersTest(DesktopTest):
    """What befalls a Tarn that runs, without a panel but for the hostile one."""

    @classmethod
    def make_desktop(cls):
        return VirtualDesktop(STAGE, panel=False)

    @classmethod
    def start_tarn(cls):
        return Tarn(cls.desktop, find_item=ItemOnTheBus)

    def assert_takes_no_more(self, before):
        wait_until(lambda: takes_no_more(self.tarn.pid, before, SLACK), "it takes no more than before", timeout=40)

    def wait_for_window(self):
        self.popover.wait_for(lambda content: content.rows, "it has a window of its own", timeout=40)

    def assert_one_click_is_one_opening(self):
        """The panel's window is gone; a click opens the popover, which stays."""
        wait_until(lambda: self.popover.read() is None, "the window leaves for the panel")
        self.tarn.item.click()
        self.popover.wait_for(lambda content: content.rows, "the popover opens")
        time.sleep(1)  # a second opening would have closed it
        self.assertIsNotNone(self.popover.read())
        self.desktop.press_key("Escape")
        self.popover.wait_until_closed()

    def befall(self, misfortune):
        """Has it twice, the first time for what is made once; then all is as it was."""
        self.wait_for_window()
        misfortune()
        self.wait_for_window()
        before = takings(self.tarn.pid)
        misfortune()
        self.wait_for_window()
        self.assert_takes_no_more(before)
        self.assert_alive()

    def under_watcher(self, manner):
        with HostileService(self.desktop, "watcher", manner) as watcher:
            self.assertTrue(quick_answer(self.tarn.item))
            self.assert_one_click_is_one_opening()
            return watcher.said()

    def test_a_watcher_whose_name_flaps_gets_the_item_in_the_end(self):
        def misfortune():
            items = [line for line in self.under_watcher("flapping") if line.startswith("item ")]
            self.assertEqual(len(set(items)), 1, "always the same item")

        self.befall(misfortune)

    def test_a_watcher_that_shouts_is_asked_one_thing_at_a_time(self):
        def misfortune():
            said = self.under_watcher("shouting")
            self.assertEqual(len([line for line in said if line.startswith("item ")]), 1)

        self.befall(misfortune)

    def call(self, path, interface, method, arguments):
        return self.desktop.session.call(APPLICATION, path, interface, method, arguments, timeout=60)

    def flood(self, count, path, interface, method, arguments):
        """Sends so many calls that want an answer, and waits until they are dealt with."""
        for _ in range(count):
            self.desktop.session.send_for_reply(APPLICATION, path, interface, method, arguments)
        self.desktop.session.flush()
        wait_until(lambda: self.tarn.item.property("Id") == "tarn", "it answers", timeout=60)

    def test_calls_without_end_leave_nothing_behind(self):
        self.wait_for_window()
        for path, interface, method, arguments in (
                (ITEM, PROPERTIES, "GetAll", GLib.Variant("(s)", (INTERFACE,))),
                (MENU, PROPERTIES, "GetAll", GLib.Variant("(s)", (MENU_INTERFACE,))),
                (ITEM, PROPERTIES, "Set", GLib.Variant("(ssv)", (INTERFACE, "Title", GLib.Variant("s", "x" * 1_000)))),
                (ITEM, "org.freedesktop.DBus.Introspectable", "Introspect", None),
                (MENU, MENU_INTERFACE, "GetLayout", GLib.Variant("(iias)", (0, -1, []))),
                (MENU, MENU_INTERFACE, "NoSuchMethod", GLib.Variant("(s)", ("x" * 1_000,)))):
            with self.subTest(method):
                self.flood(500, path, interface, method, arguments)
                before = takings(self.tarn.pid)
                self.flood(2_000, path, interface, method, arguments)
                self.assertTrue(quick_answer(self.tarn.item))
                self.assert_takes_no_more(before)

    def test_absurd_entries_of_the_menu_are_refused_or_ignored(self):
        nothing = GLib.Variant("s", "")
        for method, arguments in (
                ("Event", GLib.Variant("(isvu)", (LARGEST, "clicked", nothing, 0))),
                ("Event", GLib.Variant("(isvu)", (-LARGEST - 1, "clicked", nothing, 0))),
                ("GetProperty", GLib.Variant("(is)", (LARGEST, "label"))),
                ("GetProperty", GLib.Variant("(is)", (OPEN, "x" * MANY))),
                ("GetLayout", GLib.Variant("(iias)", (-1, LARGEST, []))),
                ("AboutToShow", GLib.Variant("(i)", (LARGEST,)))):
            with self.subTest(method), self.assertRaises(GLib.Error):
                self.call(MENU, MENU_INTERFACE, method, arguments)
        many = list(range(-MANY, MANY))
        self.call(MENU, MENU_INTERFACE, "Event", GLib.Variant("(isvu)", (OPEN, "x" * MANY, nothing, LARGEST)))
        self.assertEqual(len(self.call(MENU, MENU_INTERFACE, "GetGroupProperties",
                                       GLib.Variant("(aias)", (many, ["label"] * MANY)))[0]), 3)
        self.assertEqual(len(self.call(MENU, MENU_INTERFACE, "AboutToShowGroup", GLib.Variant("(ai)", (many,)))[1]),
                         len(many) - 3)
        self.assertEqual(len(self.call(MENU, MENU_INTERFACE, "GetLayout",
                                       GLib.Variant("(iias)", (0, LARGEST, ["label"] * MANY)))), 2)
        unknown = GLib.Variant("(a(isvu))", ([(number, "clicked", nothing, 0) for number in range(3, MANY)],))
        self.assertEqual(len(self.call(MENU, MENU_INTERFACE, "EventGroup", unknown)[0]), MANY - 3)
        self.assertTrue(quick_answer(self.tarn.item))
        self.assert_alive()

    def test_choosing_open_without_end_opens_once(self):
        nothing = GLib.Variant("s", "")
        group = GLib.Variant("(a(isvu))", ([(OPEN, "clicked", nothing, 0)] * MANY,))
        for path, interface, method, arguments, count in (
                (MENU, MENU_INTERFACE, "EventGroup", group, 1),
                (APPLICATION_PATH, "org.freedesktop.Application", "Activate", GLib.Variant("(a{sv})", ({},)), 5_000)):
            with self.subTest(method):
                started = time.monotonic()
                self.flood(count, path, interface, method, arguments)
                self.assertTrue(quick_answer(self.tarn.item))
                self.assertLess(time.monotonic() - started, BOUND)
                self.assertIsNotNone(self.popover.read())
