# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""A desktop of its own on a display that nobody sees: X server, session bus, window manager, panel, settings portal."""

import os
import subprocess
import tempfile
from pathlib import Path

from accessibility import AccessibilityBus
from desktop_settings import WALLPAPER, write_settings
from message_bus import MessageBus
from processes import start, wait_until

WATCHER = "org.kde.StatusNotifierWatcher"
PORTAL = "org.freedesktop.portal.Desktop"
SIZE = (1280, 800)
HUMAN_PRESS = 0.12  # seconds between press and release of a person's click


class VirtualDesktop:
    """`folder` takes the desktop's home, runtime files and logs. With `panel` false nothing shows status items; with
    `accessible` false no program describes itself to assistive technology, which costs it memory."""

    def __init__(self, folder, scheme="light", panel=True, accessible=True):
        self._folder = Path(tempfile.mkdtemp(prefix="desktop.", dir=folder))
        self._scheme = scheme
        self._panel = panel
        self._accessible = accessible
        self._children = []
        self.environment = {}
        self.session = None
        self.accessibility = None

    def __enter__(self):
        try:
            self._start()
        except BaseException:
            self.stop()
            raise
        return self

    def __exit__(self, *_):
        self.stop()

    def _start(self):
        home, runtime = self._folder / "home", self._folder / "runtime"
        home.mkdir()
        runtime.mkdir(mode=0o700)
        write_settings(home / ".config", self._scheme)
        self.environment = {
            "PATH": "/usr/local/bin:/usr/bin:/bin", "HOME": str(home), "XDG_RUNTIME_DIR": str(runtime),
            "XDG_CONFIG_HOME": str(home / ".config"), "XDG_CACHE_HOME": str(home / ".cache"),
            "XDG_DATA_HOME": str(home / ".local/share"), "XDG_CURRENT_DESKTOP": "XFCE", "XDG_SESSION_TYPE": "x11",
            # The locale need not be installed: texts and figures must be right all the same.
            "LANG": "en_US.UTF-8", "LC_CTYPE": "C.UTF-8",
            "GSETTINGS_BACKEND": "memory",
        }
        if self._accessible:
            self.environment["QT_LINUX_ACCESSIBILITY_ALWAYS_ON"] = "1"
        self.environment["DISPLAY"] = self._start_display()
        self.environment["DBUS_SESSION_BUS_ADDRESS"] = self._start_session_bus()
        self.session = MessageBus(self.environment["DBUS_SESSION_BUS_ADDRESS"])
        if self._accessible:
            self.accessibility = AccessibilityBus(self.session)
        self._portal = self.start("portal", ["python3", Path(__file__).with_name("settings_portal.py"), self._scheme],
                                  stdin=subprocess.PIPE)
        wait_until(lambda: self.session.has_owner(PORTAL), "the settings portal answers")
        self._show_wallpaper()
        self.start("window-manager", ["xfwm4", "--compositor=off"])
        wait_until(self._is_managed, "the window manager is there")
        if self._panel:
            self.start_panel()

    def start_panel(self):
        """Starts the panel and waits until it takes status items."""
        self._panel = True
        self.start("panel", ["xfce4-panel", "--disable-wm-check"])
        wait_until(lambda: self.session.has_owner(WATCHER), "the panel takes status items")

    def _start_display(self):
        reading, writing = os.pipe()
        self.start("display", ["Xvfb", "-displayfd", writing, "-screen", "0", f"{SIZE[0]}x{SIZE[1]}x24",
                               "-nolisten", "tcp", "-noreset"], pass_fds=(writing,))
        os.close(writing)
        with os.fdopen(reading) as answer:
            number = answer.readline().strip()
        if not number:
            raise RuntimeError(f"no X server: {self.log('display')}")
        return f":{number}"

    def _start_session_bus(self):
        bus = self.start("session-bus", ["dbus-daemon", "--session", "--nofork", "--print-address=1"],
                         stdout=subprocess.PIPE, text=True)
        address = bus.stdout.readline().strip()
        if not address:
            raise RuntimeError(f"no session bus: {self.log('session-bus')}")
        return address

    def _is_managed(self):
        answer = self.run("xprop", "-root", "_NET_SUPPORTING_WM_CHECK")
        return "window id #" in answer

    def _show_wallpaper(self):
        # The exit status says nothing here: it is 1 even when the picture was set.
        self.start("wallpaper", ["display", "-window", "root", "-size", f"{SIZE[0]}x{SIZE[1]}",
                                 WALLPAPER[self._scheme]]).wait(timeout=20)

    def change_scheme(self, scheme):
        """Makes the whole desktop "light" or "dark", as its settings would."""
        self._scheme = scheme
        self._portal.stdin.write(f"{scheme}\n".encode())
        self._portal.stdin.flush()
        if self._panel:
            self.run("xfconf-query", "-c", "xfce4-panel", "-p", "/panels/dark-mode", "-t", "bool", "-n", "-s",
                     "true" if scheme == "dark" else "false")
        self._show_wallpaper()

    def start(self, name, command, environment=None, **options):
        """Starts a program on this desktop; what it says goes to the log `name`."""
        child = start(command, self.environment | (environment or {}), self._folder / f"{name}.log", **options)
        self._children.append(child)
        return child

    def run(self, *command, **options):
        """Runs a program on this desktop to its end and gives what it says. Raises if it fails."""
        return subprocess.run([str(word) for word in command], env=self.environment | {"LC_ALL": "C.UTF-8"},
                              check=True, timeout=60, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, text=True,
                              errors="replace", **options).stdout

    def log(self, name):
        """What the program that was started under `name` said."""
        path = self._folder / f"{name}.log"
        return path.read_text(encoding="utf-8", errors="replace") if path.exists() else ""

    def click(self, position):
        """A person's click: the button stays down for a moment."""
        self.run("xdotool", "mousemove", position[0], position[1], "sleep", "0.05", "mousedown", "1",
                 "sleep", HUMAN_PRESS, "mouseup", "1")

    def active_window_name(self):
        """The title of the window that has the focus; "" without one."""
        return self._ask("xdotool", "getactivewindow", "getwindowname").strip()

    def windows_of(self, pid):
        """The ids of the windows that a process shows."""
        return self._ask("xdotool", "search", "--onlyvisible", "--pid", pid).split()

    def _ask(self, *command):
        """As `run`, for programs that fail when they have nothing to say: "" then."""
        try:
            return self.run(*command, stderr=subprocess.DEVNULL)
        except subprocess.CalledProcessError:
            return ""

    def move_pointer(self, position):
        self.run("xdotool", "mousemove", *position)

    def press_key(self, key):
        self.run("xdotool", "key", key)

    def take_picture(self, path, area=None):
        """Saves the screen, or `area` of it (left, top, width, height), as a PNG."""
        command = ["import", "-silent", "-window", "root"]
        if area:
            left, top, width, height = area
            command += ["-crop", f"{width}x{height}+{left}+{top}", "+repage"]
        self.run(*command, path)

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
