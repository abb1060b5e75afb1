# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""What every desktop of the tests has, whatever shows its windows: folders, session bus, settings portal, programs."""

import subprocess
import tempfile
from pathlib import Path

from accessibility import AccessibilityBus
from message_bus import MessageBus
from processes import start, wait_until

WATCHER = "org.kde.StatusNotifierWatcher"
PORTAL = "org.freedesktop.portal.Desktop"
HUMAN_PRESS = 0.12  # seconds between press and release of a person's click


class Desktop:
    """`folder` takes the desktop's home, runtime files and logs; `host` is its panel. With `panel` false nothing shows
    status items; with `accessible` false no program describes itself to assistive technology, which costs it memory."""

    def __init__(self, folder, host, scheme="light", panel=True, accessible=True):
        self._folder = Path(tempfile.mkdtemp(prefix="desktop.", dir=folder))
        self._host = host
        self._scheme = scheme
        self._panel = panel
        self._panel_process = None
        self._bus = None
        self._portal = None
        self._accessible = accessible
        self._children = []
        self.environment = {}
        self.session = None
        self.accessibility = None

    def __enter__(self):
        try:
            self._start()
            if self._panel:
                self.start_panel()
        except BaseException:
            self.stop()
            raise
        return self

    def __exit__(self, *_):
        self.stop()

    def _start(self):
        """Starts all but the panel."""
        raise NotImplementedError

    def _make_environment(self, kind):
        home, runtime = self._folder / "home", self._folder / "runtime"
        home.mkdir()
        runtime.mkdir(mode=0o700)
        self.environment = {
            "PATH": "/usr/local/bin:/usr/bin:/bin", "HOME": str(home), "XDG_RUNTIME_DIR": str(runtime),
            "XDG_CONFIG_HOME": str(home / ".config"), "XDG_CACHE_HOME": str(home / ".cache"),
            "XDG_DATA_HOME": str(home / ".local/share"), "XDG_CURRENT_DESKTOP": "XFCE", "XDG_SESSION_TYPE": kind,
            # The locale need not be installed: texts and figures must be right all the same.
            "LANG": "en_US.UTF-8", "LC_CTYPE": "C.UTF-8",
            "GSETTINGS_BACKEND": "memory",
        }
        self.environment.update(self._host.environment)
        if self._accessible:
            self.environment["QT_LINUX_ACCESSIBILITY_ALWAYS_ON"] = "1"

    def _write_settings(self, settings):
        """Writes `settings`, texts by the names of their files below ~/.config."""
        for name, text in settings.items():
            path = Path(self.environment["XDG_CONFIG_HOME"], name)
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_text(text, encoding="utf-8")

    def _start_session(self):
        """Starts the session bus, and what programs ask over it."""
        self._start_session_bus()
        if self._accessible:
            self.accessibility = AccessibilityBus(self.session)
        self._start_portal()

    def _start_portal(self):
        self._portal = self.start("portal", ["python3", Path(__file__).with_name("settings_portal.py"), self._scheme],
                                  stdin=subprocess.PIPE)
        wait_until(lambda: self.session.has_owner(PORTAL), "the settings portal answers")

    def _start_session_bus(self):
        address = f"unix:path={self.environment['XDG_RUNTIME_DIR']}/bus"
        self._bus = self.start("session-bus", ["dbus-daemon", "--session", "--nofork", f"--address={address}",
                                               "--print-address=1"], stdout=subprocess.PIPE, text=True)
        if not self._bus.stdout.readline().strip():
            raise RuntimeError(f"no session bus: {self.log('session-bus')}")
        self.environment["DBUS_SESSION_BUS_ADDRESS"] = address
        self.session = MessageBus(address)

    def kill_session_bus(self):
        """Ends the session bus as a crash would, and the panel and the portal with it."""
        self.session = None
        for child in (self._bus, self._panel_process, self._portal):
            if child:
                self._end(child, kill=True)
        self._panel_process = None

    def restart_session_bus(self, scheme="light"):
        """Starts a session bus where the killed one was, and the settings portal; not the panel."""
        self._scheme = scheme
        self._start_session_bus()
        self._start_portal()

    def stop_portal(self):
        """Ends the settings portal: another program can have its name."""
        self._end(self._portal)

    def _end(self, child, kill=False):
        if kill:
            child.kill()
        else:
            child.terminate()
        child.wait(timeout=10)
        for pipe in (child.stdin, child.stdout):
            if pipe:
                pipe.close()
        self._children.remove(child)

    def change_scheme(self, scheme):
        """Makes the whole desktop "light" or "dark", as its settings would."""
        self._scheme = scheme
        self._portal.stdin.write(f"{scheme}\n".encode())
        self._portal.stdin.flush()

    def start_panel(self):
        """Starts the panel and waits until it takes status items, if it is of the kind that says so."""
        self._panel = True
        self._panel_process = self.start("panel", self._host.command)
        if self._host.has_watcher:
            wait_until(lambda: self.session.has_owner(WATCHER), "the panel takes status items")

    def stop_panel(self):
        """Ends the panel and waits until nothing of it takes status items."""
        self._panel = False
        self._end(self._panel_process)
        wait_until(lambda: not self.session.has_owner(WATCHER), "the panel takes status items no more")

    def registered_items(self):
        """The status items that the panel knows, as the names that it gives them."""
        return self.session.property(WATCHER, "/StatusNotifierWatcher", WATCHER, "RegisteredStatusNotifierItems")

    def start(self, name, command, environment=None, **options):
        """Starts a program on this desktop; what it says goes to the log `name`."""
        child = start(command, self.environment | (environment or {}), self._folder / f"{name}.log", **options)
        self._children.append(child)
        return child

    def run(self, *command, **options):
        """Runs a program on this desktop to its end and gives what it says. Raises if it fails."""
        return self.run_for_bytes(*command, text=True, errors="replace", **options)

    def run_for_bytes(self, *command, **options):
        """As `run`, for programs that do not say it in words."""
        return subprocess.run([str(word) for word in command], env=self.environment | {"LC_ALL": "C.UTF-8"},
                              check=True, timeout=60, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                              **options).stdout

    def log(self, name):
        """What the program that was started under `name` said."""
        path = self._folder / f"{name}.log"
        return path.read_text(encoding="utf-8", errors="replace") if path.exists() else ""

    def stop(self):
        for connection in (self.accessibility, self.session):
            if connection:
                try:
                    connection.close()
                except Exception:  # The bus may be gone already, which is what we are after.
                    pass
        for child in reversed(self._children):
            child.terminate()
        for child in reversed(self._children):
            try:
                child.wait(timeout=3)
            except subprocess.TimeoutExpired:
                child.kill()
                child.wait()
            for pipe in (child.stdin, child.stdout):
                if pipe:
                    pipe.close()
