# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""Tarn's unit in the session manager, and other programs under its settings."""

import re
import tempfile
from pathlib import Path

from menu_bar import MenuBarItem
from popover import Popover
from processes import wait_until
from programs import SANITIZERS, STAGE, TARN

TEMPLATE = STAGE / "bin/tarn.service.in"
# What looks for leaks would have to stop the program, which is among what is forbidden.
TRACELESS = {"ASAN_OPTIONS": "detect_leaks=0"}


def unit_text(command, environment):
    """The unit as it is installed, with another command and these variables, the desktop's bus among them."""
    lines = [f"ExecStart={' '.join(map(str, command))}",
             *(f'Environment="{name}={value}"' for name, value in environment.items())]
    text, count = re.subn(r"^ExecStart=.*$", lambda _: "\n".join(lines), TEMPLATE.read_text(encoding="utf-8"),
                          flags=re.MULTILINE)
    assert count == 1, "the unit starts one program"
    return text


class SessionUnits:
    """Units of the session manager, which `session` are the variables to reach it by."""

    def __init__(self, desktop, session):
        self._desktop = desktop
        self._words = ["env", *(f"{name}={value}" for name, value in session.items()), "systemctl", "--user"]
        self._folder = Path(desktop.environment["XDG_CONFIG_HOME"], "systemd/user")
        self._folder.mkdir(parents=True)
        self._environment = SANITIZERS | TRACELESS | {
            name: desktop.environment[name] for name in ("DBUS_SESSION_BUS_ADDRESS", "XDG_RUNTIME_DIR")}

    def ask(self, *words):
        return self._desktop.run(*self._words, *words)

    def _write(self, name, text):
        (self._folder / name).write_text(text, encoding="utf-8")
        self.ask("daemon-reload")

    def say_under_settings(self, *command):
        """Runs a program to its end under the settings of Tarn's unit, and gives what it says."""
        with tempfile.NamedTemporaryFile(dir=STAGE, prefix="said.") as said:
            text = unit_text(command, self._environment).replace(
                "[Service]", f"[Service]\nType=oneshot\nStandardOutput=file:{said.name}")
            self._write("tarn-probe.service", text.replace("Restart=on-failure", "Restart=no"))
            self.ask("start", "tarn-probe.service")
            return Path(said.name).read_text(encoding="utf-8")

    def start_tarn(self):
        self._write("tarn.service", unit_text([TARN], self._environment))
        self.ask("start", "tarn.service")
        return UnitTarn(self._desktop, self)


class UnitTarn:
    """Tarn as the session manager's unit, with its item in the panel and its popover."""

    def __init__(self, desktop, units):
        self._units = units
        self.pid = wait_until(self.main_process, "the unit runs")
        self.item = MenuBarItem(desktop, self.pid)
        self.popover = Popover(desktop, self.pid, self.item)

    def main_process(self):
        """The pid of its process; 0 while there is none."""
        return int(self._units.ask("show", "--property=MainPID", "--value", "tarn.service"))

    def restart(self, desktop):
        """Another one in its place, once the panel shows it."""
        self._units.ask("restart", "tarn.service")
        return UnitTarn(desktop, self._units)

    def stop(self):
        self._units.ask("stop", "tarn.service")
