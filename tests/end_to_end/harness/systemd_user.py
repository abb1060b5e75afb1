# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""A systemd user instance, Tarn as its unit, and other programs with the same restrictions."""

import os
import re
import tempfile
from pathlib import Path

from harness.popover import Popover
from harness.processes import wait_until
from harness.programs import SANITIZERS, tarn_program
from harness.stage import BIN, WORK
from harness.status_item import PanelItem

SYSTEMD = "/usr/lib/systemd/systemd"
UNIT_TEMPLATE = BIN / "tarn.service.in"
# LeakSanitizer stops the program by ptrace, which the unit forbids.
WITHOUT_LEAK_CHECK = {"ASAN_OPTIONS": "detect_leaks=0"}


def can_be_started():
    """Whether scripts/in_namespaces.sh could prepare what a systemd user instance needs."""
    return "TARN_SESSION" in os.environ


def start_instance(desktop):
    """Starts a systemd user instance with a bus. Returns the environment variables with which programs find both."""
    runtime = Path(f"/run/user/{os.getuid()}")
    bus = f"unix:path={runtime}/bus"
    # Flatpak needs a system bus, but not the services on it.
    variables = {"XDG_RUNTIME_DIR": str(runtime), "DBUS_SESSION_BUS_ADDRESS": bus, "DBUS_SYSTEM_BUS_ADDRESS": bus}
    desktop.start("systemd", [SYSTEMD, "--user", "--unit=basic.target"], variables | {"SYSTEMD_LOG_TARGET": "console"})
    wait_until((runtime / "systemd/private").exists, "the systemd user instance answers")
    wait_until((runtime / "bus").exists, "its bus answers")
    return variables


def unit_text(command, environment):
    """Tarn's unit with another command and with these environment variables."""
    lines = [f"ExecStart={' '.join(map(str, command))}",
             *(f'Environment="{name}={value}"' for name, value in environment.items())]
    text, count = re.subn(r"^ExecStart=.*$", lambda _: "\n".join(lines), UNIT_TEMPLATE.read_text(encoding="utf-8"),
                          flags=re.MULTILINE)
    assert count == 1, "the unit has one ExecStart"
    return text


class UserUnits:
    """Units of the systemd user instance that the environment variables `session` name."""

    def __init__(self, desktop, session):
        self._desktop = desktop
        self._systemctl = ["env", *(f"{name}={value}" for name, value in session.items()), "systemctl", "--user"]
        self._folder = Path(desktop.environment["XDG_CONFIG_HOME"], "systemd/user")
        self._folder.mkdir(parents=True)
        self._environment = SANITIZERS | WITHOUT_LEAK_CHECK | {
            name: desktop.environment[name] for name in ("DBUS_SESSION_BUS_ADDRESS", "XDG_RUNTIME_DIR")}

    def systemctl(self, *arguments):
        return self._desktop.run(*self._systemctl, *arguments)

    def _write(self, name, text):
        (self._folder / name).write_text(text, encoding="utf-8")
        self.systemctl("daemon-reload")

    def run_restricted(self, *command):
        """Runs a program with the settings of Tarn's unit. Returns its output."""
        with tempfile.NamedTemporaryFile(dir=WORK, prefix="output.") as output:
            text = unit_text(command, self._environment).replace(
                "[Service]", f"[Service]\nType=oneshot\nStandardOutput=file:{output.name}")
            self._write("tarn-probe.service", text.replace("Restart=on-failure", "Restart=no"))
            self.systemctl("start", "tarn-probe.service")
            return Path(output.name).read_text(encoding="utf-8")

    def start_tarn(self):
        self._write("tarn.service", unit_text([tarn_program()], self._environment))
        self.systemctl("start", "tarn.service")
        return UnitTarn(self._desktop, self)


class UnitTarn:
    """Tarn as a systemd user unit, with its item in the panel and its popover."""

    def __init__(self, desktop, units):
        self._units = units
        self.pid = wait_until(self.main_pid, "the unit runs")
        self.item = PanelItem(desktop, self.pid)
        self.popover = Popover(desktop, self.pid, self.item)

    def main_pid(self):
        """The pid of the unit's process; 0 while there is none."""
        return int(self._units.systemctl("show", "--property=MainPID", "--value", "tarn.service"))

    def restart(self, desktop):
        """Restarts the unit. Returns the new process when the panel shows its item."""
        self._units.systemctl("restart", "tarn.service")
        return UnitTarn(desktop, self._units)

    def stop(self):
        self._units.systemctl("stop", "tarn.service")
