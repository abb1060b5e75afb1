# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""What Tarn accesses from start to end: no network, no files except its preferences, no other program."""

import re
import tempfile
from pathlib import Path

import pytest

from harness.call_trace import EXECUTIONS, PRIVILEGED, SOCKETS, CallTrace
from harness.popover import TABS
from harness.programs import Tarn, tarn_program
from harness.shared_desktop import SharedDesktop
from harness.stage import WORK
from harness.status_item import PanelItem, VisibleItem, edge_strip
from harness.wayland_desktop import WaylandDesktop

# A PSI trigger is registered by writing to this file.
PRESSURE = "/proc/pressure/memory"
# LeakSanitizer does not work in a traced process.
TRACED = {"ASAN_OPTIONS": "detect_leaks=0"}
FAMILY = re.compile(r"AF_\w+|0x\w+|\d+")
ADDRESS = re.compile(r'sun_path=@?"([^"]*)"')


class PrivilegesTests:
    """Uses each function of Tarn once, and examines the system calls after Tarn has ended."""

    @pytest.fixture(scope="class")
    def tarn(self, request, desktop):
        with tempfile.NamedTemporaryFile(dir=WORK, prefix="calls.") as log:
            request.cls.trace = CallTrace(log.name)
            tarn = Tarn(desktop, request.cls.trace.wrapper, TRACED, self.find_item)
            self.use_everything(desktop, tarn)
            yield tarn

    @staticmethod
    def use_everything(desktop, tarn):
        popover = tarn.popover
        for tab in (*TABS[1:], TABS[0]):
            popover.click_until(lambda content, tab=tab: content.tabs[tab],
                                lambda tab=tab: popover.shows(lambda content: content.tab == tab),
                                f"the tab {tab} shows")
        popover.wait_for(lambda content: content.rows, "the list is filled")
        popover.click_until(lambda content: content.rows[0].node,
                            lambda: popover.shows(lambda content: any(row.expanded for row in content.rows)),
                            "a row opens")
        preference = Path(desktop.environment["XDG_CONFIG_HOME"], "tarn/tarn.conf")
        # The first change creates the file, the second replaces it.
        for value in ("true", "false"):
            popover.click_until(lambda content: content.toggle, lambda line=f"={value}\n": preference.exists()
                                and line in preference.read_text("utf-8"), f"the choice is stored as {value}")
        popover.click_until(lambda content: content.link,
                            lambda: re.search(r"^opened https://\S+$", desktop.log("portal"), re.MULTILINE),
                            "the portal opens the page")
        popover.click_until(lambda content: content.quit, lambda: tarn.process.poll() is not None, "it ends")

    def _configuration(self):
        return Path(self.desktop.environment["XDG_CONFIG_HOME"])

    def test_it_ends_with_success(self):
        assert self.tarn.process.poll() == 0, self.desktop.log("tarn")

    def test_its_sockets_connect_to_the_desktop_only(self):
        calls = self.trace.calls(SOCKETS)
        assert {FAMILY.match(call.arguments)[0] for call in calls if call.name == "socket"} == {"AF_UNIX"}
        assert {call.name for call in calls} == {"socket", "connect"}
        addresses = [match[1] if (match := ADDRESS.search(call.arguments)) else call.arguments
                     for call in calls if call.name == "connect"]
        runtime = self.desktop.environment["XDG_RUNTIME_DIR"]
        bus = re.search(r"unix:(?:path|abstract)=([^,]*)", self.desktop.environment["DBUS_SESSION_BUS_ADDRESS"])[1]
        expected = {bus, *self.display_addresses()}
        unexpected = [path for path in addresses
                      if path not in expected and not path.startswith(f"{runtime}/at-spi/bus")]
        assert unexpected == []
        assert bus in addresses

    def test_it_writes_its_preferences_only(self):
        folder = re.escape(str(self._configuration() / "tarn"))
        # Qt writes a temporary file, with a name or without, and renames it. A lock file excludes other programs.
        preferences = re.compile(rf"{folder}(/tarn\.conf(\.lock|\.\w{{6}})?)?|{folder}/#\d+|/proc/self/fd/\d+")
        # fontconfig writes a cache if the system's cache is out of date.
        fonts = re.compile(re.escape(self.desktop.environment["XDG_CACHE_HOME"]) + r"(/fontconfig(/[^/]+)?)?")
        writes = self.trace.writes()
        unexpected = [call for call in writes
                      if call.texts() != [PRESSURE] and not all(preferences.fullmatch(text) for text in call.texts())
                      and not all(fonts.fullmatch(text) for text in call.texts())
                      and not self._is_runtime_directory(call)]
        assert unexpected == []
        assert any(text.endswith("/tarn.conf") for call in writes for text in call.texts()), writes

    def _is_runtime_directory(self, call):
        """Whether a call makes the runtime directory, which Qt does although it exists."""
        return call.name == "mkdir" and call.texts() == [self.desktop.environment["XDG_RUNTIME_DIR"]]

    def test_it_leaves_its_preference_file_only(self):
        folder = self._configuration() / "tarn"
        assert [path.name for path in folder.iterdir()] == ["tarn.conf"]

    def test_it_starts_no_other_program(self):
        assert [call.texts()[0] for call in self.trace.calls(EXECUTIONS)] == [str(tarn_program())]

    def test_it_makes_no_privileged_calls(self):
        assert self.trace.calls(PRIVILEGED) == []


@pytest.mark.desktop
class TestPrivilegesOnX11(PrivilegesTests, SharedDesktop):
    @staticmethod
    def find_item(desktop, pid):
        return PanelItem(desktop, pid)

    def display_addresses(self):
        return {f"/tmp/.X11-unix/X{self.desktop.environment['DISPLAY'].removeprefix(':')}"}


@pytest.mark.hosts
@pytest.mark.release_build
class TestPrivilegesOnWayland(PrivilegesTests, SharedDesktop):
    @pytest.fixture(scope="class")
    def desktop(self):
        with WaylandDesktop() as desktop:
            yield desktop

    @staticmethod
    def find_item(desktop, _pid):
        return VisibleItem(desktop, edge_strip((0, 0, *desktop.size), "top"))

    def display_addresses(self):
        """The sockets of the compositor: one for windows, one for IPC."""
        environment = self.desktop.environment
        return {f"{environment['XDG_RUNTIME_DIR']}/{environment['WAYLAND_DISPLAY']}", environment["SWAYSOCK"]}
