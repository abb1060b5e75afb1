# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""Hostile programs on the session bus: a watcher, a portal, and callers."""

import time

import pytest
from gi.repository import GLib

from harness import proc_reader
from harness.proc_reader import resource_usage, uses_no_more
from harness.processes import wait_until
from harness.programs import Tarn
from harness.shared_desktop import SharedDesktop
from harness.stage import PROGRAMS
from harness.status_item import INTERFACE, RegisteredItem
from harness.virtual_desktop import VirtualDesktop

pytestmark = pytest.mark.faults

APPLICATION = "example.tarn.Tarn"
ITEM, MENU = "/StatusNotifierItem", "/StatusNotifierItem/Menu"
APPLICATION_PATH = "/example/tarn/Tarn"
MENU_INTERFACE = "com.canonical.dbusmenu"
PROPERTIES = "org.freedesktop.DBus.Properties"
OPEN = 1  # id of the menu entry
LARGEST = 2**31 - 1
BAD_REPLIES = ("no-replies", "error-replies", "wrong-types", "large-replies")
MAX_REPLY_TIME = 10  # seconds: the machine may be busy, and the program sanitized
MANY = 100_000
SLACK = 4 * proc_reader.MEGABYTE
EMPTY = GLib.Variant("s", "")


class ItemOnTheBus(RegisteredItem):
    """The item of the only Tarn on the bus, with or without a panel."""

    def _find(self):
        return self._desktop.session.has_owner(APPLICATION) and (APPLICATION, ITEM)

    def click(self):
        self.send("Activate", GLib.Variant("(ii)", (640, 10)))


class HostileService:
    """A program that owns the name of a "watcher" or a "portal"; see hostile_service.py."""

    def __init__(self, desktop, kind, fault):
        self._desktop, self._log = desktop, f"{kind}-{fault}-{time.monotonic_ns()}"
        self._process = desktop.start(self._log, ["python3", PROGRAMS / "hostile_service.py", kind, fault])
        wait_until(lambda: "ready" in self.output(), f"the {fault} {kind} is ready", timeout=60)

    def output(self):
        return self._desktop.log(self._log).splitlines()

    def stop(self):
        self._process.terminate()
        self._process.wait(timeout=10)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.stop()


def title_in_time(item):
    """Reads the item's title. Fails if the reply takes too long."""
    start = time.monotonic()
    title = item.title()
    elapsed = time.monotonic() - start
    if elapsed > MAX_REPLY_TIME:
        raise AssertionError(f"the reply took {elapsed:.1f} seconds")
    return title


@pytest.mark.parametrize("fault", BAD_REPLIES)
def test_it_shows_a_window_when_a_watcher_sends_no_valid_replies(fault):
    with VirtualDesktop(panel=False) as desktop, HostileService(desktop, "watcher", fault) as watcher:
        tarn = Tarn(desktop, find_item=ItemOnTheBus)
        tarn.popover.wait_for(lambda content: content.rows, "Tarn shows its window", timeout=40)
        assert "asked RegisterStatusNotifierItem" in watcher.output()
        assert title_in_time(tarn.item)
        # The watcher may show the item although it sent no valid reply.
        tarn.popover.wait_for(lambda content: content.rows, "the window stays")
        tarn.item.click()
        wait_until(tarn.popover.read, "a click opens the popover")
        assert watcher.output().count("asked RegisterStatusNotifierItem") < 2
        tarn.process.terminate()
        assert tarn.process.wait(timeout=20) == 0, desktop.log("tarn")


@pytest.mark.parametrize("fault", (*BAD_REPLIES, "name-changes", "signal-flood"))
def test_it_is_in_the_panel_when_a_portal_sends_no_valid_replies(fault):
    with VirtualDesktop() as desktop:
        desktop.stop_portal()
        with HostileService(desktop, "portal", fault) as portal:
            tarn = Tarn(desktop)
            tarn.popover.open()
            assert "asked Read" in portal.output()
            assert title_in_time(tarn.item)
            tarn.process.terminate()
            assert tarn.process.wait(timeout=20) == 0, desktop.log("tarn")


class TestHostileCallers(SharedDesktop):
    """A running Tarn without a panel."""

    @pytest.fixture(scope="class")
    def desktop(self):
        with VirtualDesktop(panel=False) as desktop:
            yield desktop

    @pytest.fixture(scope="class")
    def tarn(self, desktop):
        return Tarn(desktop, find_item=ItemOnTheBus)

    def assert_uses_no_more(self, before):
        wait_until(lambda: uses_no_more(self.tarn.pid, before, SLACK), "Tarn uses no more than before", timeout=40)

    def wait_for_window(self):
        self.popover.wait_for(lambda content: content.rows, "Tarn shows its window", timeout=40)

    def assert_one_click_is_one_opening(self):
        """Tarn's window closes because there is a watcher. A click opens the popover, which stays open."""
        wait_until(lambda: self.popover.read() is None, "the window closes")
        self.tarn.item.click()
        self.popover.wait_for(lambda content: content.rows, "the popover opens")
        time.sleep(1)  # a second opening would have closed it
        assert self.popover.read() is not None
        self.desktop.press_key("Escape")
        self.popover.wait_until_closed()

    def check_leaks(self, fault):
        """Causes a fault twice. The first may allocate caches; after the second Tarn uses no more than before."""
        self.wait_for_window()
        fault()
        self.wait_for_window()
        before = resource_usage(self.tarn.pid)
        fault()
        self.wait_for_window()
        self.assert_uses_no_more(before)
        self.assert_alive()

    def output_of_watcher(self, fault):
        with HostileService(self.desktop, "watcher", fault) as watcher:
            assert title_in_time(self.tarn.item)
            self.assert_one_click_is_one_opening()
            return watcher.output()

    def test_a_watcher_that_comes_and_goes_gets_the_item(self):
        def fault():
            items = [line for line in self.output_of_watcher("name-changes") if line.startswith("item ")]
            assert len(set(items)) == 1, "always the same item"

        self.check_leaks(fault)

    def test_a_watcher_that_floods_signals_gets_one_registration(self):
        def fault():
            output = self.output_of_watcher("signal-flood")
            assert len([line for line in output if line.startswith("item ")]) == 1

        self.check_leaks(fault)

    def call(self, path, interface, method, arguments):
        return self.desktop.session.call(APPLICATION, path, interface, method, arguments, timeout=60)

    def flood(self, count, path, interface, method, arguments):
        """Sends `count` calls that request a reply, and waits until they are handled."""
        for _ in range(count):
            self.desktop.session.send_for_reply(APPLICATION, path, interface, method, arguments)
        self.desktop.session.flush()
        wait_until(lambda: self.tarn.item.property("Id") == "tarn", "it answers", timeout=60)

    @pytest.mark.parametrize("path, interface, method, arguments", (
        pytest.param(ITEM, PROPERTIES, "GetAll", GLib.Variant("(s)", (INTERFACE,)), id="item_GetAll"),
        pytest.param(MENU, PROPERTIES, "GetAll", GLib.Variant("(s)", (MENU_INTERFACE,)), id="menu_GetAll"),
        pytest.param(ITEM, PROPERTIES, "Set",
                     GLib.Variant("(ssv)", (INTERFACE, "Title", GLib.Variant("s", "x" * 1_000))), id="Set"),
        pytest.param(ITEM, "org.freedesktop.DBus.Introspectable", "Introspect", None, id="Introspect"),
        pytest.param(MENU, MENU_INTERFACE, "GetLayout", GLib.Variant("(iias)", (0, -1, [])), id="GetLayout"),
        pytest.param(MENU, MENU_INTERFACE, "NoSuchMethod", GLib.Variant("(s)", ("x" * 1_000,)), id="NoSuchMethod")))
    def test_floods_of_calls_leak_nothing(self, path, interface, method, arguments):
        self.wait_for_window()
        self.flood(500, path, interface, method, arguments)
        before = resource_usage(self.tarn.pid)
        self.flood(2_000, path, interface, method, arguments)
        assert title_in_time(self.tarn.item)
        self.assert_uses_no_more(before)

    @pytest.mark.parametrize("method, arguments", (
        pytest.param("Event", GLib.Variant("(isvu)", (LARGEST, "clicked", EMPTY, 0)), id="Event_largest"),
        pytest.param("Event", GLib.Variant("(isvu)", (-LARGEST - 1, "clicked", EMPTY, 0)), id="Event_smallest"),
        pytest.param("GetProperty", GLib.Variant("(is)", (LARGEST, "label")), id="GetProperty_of_unknown_entry"),
        pytest.param("GetProperty", GLib.Variant("(is)", (OPEN, "x" * MANY)), id="GetProperty_with_unknown_name"),
        pytest.param("GetLayout", GLib.Variant("(iias)", (-1, LARGEST, [])), id="GetLayout"),
        pytest.param("AboutToShow", GLib.Variant("(i)", (LARGEST,)), id="AboutToShow")))
    def test_calls_about_unknown_menu_entries_are_refused(self, method, arguments):
        with pytest.raises(GLib.Error):
            self.call(MENU, MENU_INTERFACE, method, arguments)

    def test_unknown_menu_entries_in_long_lists_are_ignored(self):
        many = list(range(-MANY, MANY))
        self.call(MENU, MENU_INTERFACE, "Event", GLib.Variant("(isvu)", (OPEN, "x" * MANY, EMPTY, LARGEST)))
        properties, = self.call(MENU, MENU_INTERFACE, "GetGroupProperties",
                                GLib.Variant("(aias)", (many, ["label"] * MANY)))
        assert len(properties) == 3
        _, unknown = self.call(MENU, MENU_INTERFACE, "AboutToShowGroup", GLib.Variant("(ai)", (many,)))
        assert len(unknown) == len(many) - 3
        layout = self.call(MENU, MENU_INTERFACE, "GetLayout", GLib.Variant("(iias)", (0, LARGEST, ["label"] * MANY)))
        assert len(layout) == 2
        unknown = GLib.Variant("(a(isvu))", ([(number, "clicked", EMPTY, 0) for number in range(3, MANY)],))
        assert len(self.call(MENU, MENU_INTERFACE, "EventGroup", unknown)[0]) == MANY - 3
        assert title_in_time(self.tarn.item)
        self.assert_alive()

    @pytest.mark.parametrize("is_one_message", (True, False), ids=("EventGroup", "Activate"))
    def test_activating_it_many_times_opens_it_once(self, is_one_message):
        group = GLib.Variant("(a(isvu))", ([(OPEN, "clicked", EMPTY, 0)] * MANY,))
        started = time.monotonic()
        if is_one_message:
            self.flood(1, MENU, MENU_INTERFACE, "EventGroup", group)
        else:
            self.flood(5_000, APPLICATION_PATH, "org.freedesktop.Application", "Activate",
                       GLib.Variant("(a{sv})", ({},)))
        assert title_in_time(self.tarn.item)
        assert time.monotonic() - started < MAX_REPLY_TIME
        assert self.popover.read() is not None
