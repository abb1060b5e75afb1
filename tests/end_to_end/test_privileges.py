# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""What Tarn reaches for from its start to its end, while it is used: no network, no file but its preference's, no other
program."""

import re
import tempfile
from pathlib import Path

from call_trace import EXECUTIONS, POWERS, SOCKETS, CallTrace
from desktop_test import DesktopTest
from menu_bar import MenuBarItem
from popover import TABS
from processes import wait_until
from programs import STAGE, TARN, Tarn

# The kernel wants to be told, by writing, of which shortage of memory it is to tell.
PRESSURE = "/proc/pressure/memory"
# A process that is traced can not be looked through for leaks.
TRACED = {"ASAN_OPTIONS": "detect_leaks=0"}
FAMILY = re.compile(r"AF_\w+|0x\w+|\d+")
ADDRESS = re.compile(r'sun_path=@?"([^"]*)"')


class PrivilegesTests:
    """One use of everything that there is to use, of which the calls are judged when it is over."""

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.use_everything()

    @classmethod
    def start_tarn(cls):
        log = tempfile.NamedTemporaryFile(dir=STAGE, prefix="calls.")
        cls.addClassCleanup(log.close)
        cls.trace = CallTrace(log.name)
        return Tarn(cls.desktop, cls.trace.wrapper, TRACED, cls.find_item)

    @classmethod
    def use_everything(cls):
        popover = cls.popover
        for tab in (*TABS[1:], TABS[0]):
            popover.click_until(lambda content, tab=tab: content.tabs[tab],
                                lambda tab=tab: popover.shows(lambda content: content.tab == tab),
                                f"the tab {tab} shows")
        popover.wait_for(lambda content: content.rows, "the list is filled")
        popover.click_until(lambda content: content.rows[0].node,
                            lambda: popover.shows(lambda content: any(row.expanded for row in content.rows)),
                            "a row opens")
        preference = cls._configuration() / "tarn/tarn.conf"
        # The file is made by the first choice, and replaced by the second.
        for value in ("true", "false"):
            popover.click_until(lambda content: content.toggle, lambda line=f"={value}\n": preference.exists()
                                and line in preference.read_text("utf-8"), f"the choice is stored as {value}")
        popover.click_until(lambda content: content.link,
                            lambda: re.search(r"^opened https://\S+$", cls.desktop.log("portal"), re.MULTILINE),
                            "the portal opens the page")
        popover.click_until(lambda content: content.quit, lambda: cls.tarn.process.poll() is not None, "it ends")

    @classmethod
    def _configuration(cls):
        return Path(cls.desktop.environment["XDG_CONFIG_HOME"])

    def test_it_ends_with_success(self):
        self.assertEqual(self.tarn.process.poll(), 0, self.desktop.log("tarn"))

    def test_its_sockets_reach_the_desktop_and_nothing_else(self):
        calls = self.trace.calls(SOCKETS)
        self.assertEqual({FAMILY.match(call.arguments)[0] for call in calls if call.name == "socket"}, {"AF_UNIX"})
        self.assertEqual({call.name for call in calls}, {"socket", "connect"})
        reached = [match[1] if (match := ADDRESS.search(call.arguments)) else call.arguments
                   for call in calls if call.name == "connect"]
        runtime = self.desktop.environment["XDG_RUNTIME_DIR"]
        bus = re.search(r"unix:(?:path|abstract)=([^,]*)", self.desktop.environment["DBUS_SESSION_BUS_ADDRESS"])[1]
        expected = {bus, *self.display_addresses()}
        strangers = [path for path in reached if path not in expected and not path.startswith(f"{runtime}/at-spi/bus")]
        self.assertEqual(strangers, [])
        self.assertIn(bus, reached)

    def test_it_writes_its_preference_and_nothing_else(self):
        folder = re.escape(str(self._configuration() / "tarn"))
        # A file is written under a name of its own, or none, and then gets the one that is wanted. The lock keeps two
        # programs from doing so at once.
        own = re.compile(rf"{folder}(/tarn\.conf(\.lock|\.\w{{6}})?)?|{folder}/#\d+|/proc/self/fd/\d+")
        # What the toolkit's font library makes where the system's own list of fonts is out of date.
        fonts = re.compile(re.escape(self.desktop.environment["XDG_CACHE_HOME"]) + r"(/fontconfig(/[^/]+)?)?")
        writes = self.trace.writes()
        strangers = [call for call in writes
                     if call.texts() != [PRESSURE] and not all(own.fullmatch(text) for text in call.texts())
                     and not all(fonts.fullmatch(text) for text in call.texts()) and not self._is_there_already(call)]
        self.assertEqual(strangers, [])
        self.assertTrue(any(text.endswith("/tarn.conf") for call in writes for text in call.texts()), writes)

    def _is_there_already(self, call):
        """Whether a call is to make a folder that every session has; the toolkit does so to be sure."""
        return call.name == "mkdir" and call.texts() == [self.desktop.environment["XDG_RUNTIME_DIR"]]

    def test_it_leaves_no_file_but_its_preference(self):
        folder = self._configuration() / "tarn"
        self.assertEqual([path.name for path in folder.iterdir()], ["tarn.conf"])

    def test_it_starts_no_other_program(self):
        self.assertEqual([call.texts()[0] for call in self.trace.calls(EXECUTIONS)], [str(TARN)])

    def test_it_uses_no_power_over_others(self):
        self.assertEqual(self.trace.calls(POWERS), [])


class PrivilegesOnX11Test(PrivilegesTests, DesktopTest):
    @classmethod
    def find_item(cls, desktop, pid):
        return MenuBarItem(desktop, pid)

    def display_addresses(self):
        return {f"/tmp/.X11-unix/X{self.desktop.environment['DISPLAY'].removeprefix(':')}"}
