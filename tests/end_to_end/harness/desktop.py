# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""The common part of the X11 and Wayland desktops: folders, settings, session bus, settings portal, programs."""

import subprocess
import tempfile
from pathlib import Path

from harness.accessibility import AccessibilityBus
from harness.message_bus import MessageBus
from harness.processes import start, wait_until
from harness.stage import PROGRAMS, WORK

WATCHER = "org.kde.StatusNotifierWatcher"
PORTAL = "org.freedesktop.portal.Desktop"
PRESS_SECONDS = 0.12  # between press and release of a click, as when a person clicks
WINDOW_MANAGER = """<?xml version="1.0" encoding="UTF-8"?>
<channel name="xfwm4" version="1.0">
  <property name="general" type="empty">
    <property name="title_font" type="string" value="Inter Semi-Bold 9"/>
    <property name="theme" type="string" value="Default"/>
    <property name="workspace_count" type="int" value="1"/>
    <property name="placement_mode" type="string" value="center"/>
  </property>
</channel>
"""

GTK = """[Settings]
gtk-theme-name=Adwaita
gtk-icon-theme-name=Adwaita
gtk-font-name=Inter 10
"""

FONTS = """<?xml version="1.0"?>
<!DOCTYPE fontconfig SYSTEM "fonts.dtd">
<fontconfig>
  <include ignore_missing="yes">/etc/fonts/fonts.conf</include>
  <alias binding="same">
    <family>sans-serif</family>
    <prefer><family>Inter</family><family>Noto Color Emoji</family></prefer>
  </alias>
</fontconfig>
"""

WALLPAPER = {"light": "gradient:#d6e0ec-#b9c8d9", "dark": "gradient:#26313f-#151c26"}


def desktop_settings(host, scheme):
    """The contents of the settings files, by path below ~/.config."""
    panel = {name: text.replace("@DARK@", "true" if scheme == "dark" else "false")
             for name, text in host.settings.items()}
    return panel | {"xfce4/xfconf/xfce-perchannel-xml/xfwm4.xml": WINDOW_MANAGER,
                    "gtk-3.0/settings.ini": GTK,
                    "fontconfig/fonts.conf": FONTS}


class Desktop:
    """A desktop with the panel `host`. Without `panel` no program shows status items. Without `accessible` there
    is no accessibility bus: accessible objects increase the memory use of every program."""

    def __init__(self, host, scheme="light", panel=True, accessible=True):
        self._folder = Path(tempfile.mkdtemp(prefix="desktop.", dir=WORK))
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
        """Starts everything except the panel."""
        raise NotImplementedError

    def _make_environment(self, kind):
        home, runtime = self._folder / "home", self._folder / "runtime"
        home.mkdir()
        runtime.mkdir(mode=0o700)
        self.environment = {
            "PATH": "/usr/local/bin:/usr/bin:/bin", "HOME": str(home), "XDG_RUNTIME_DIR": str(runtime),
            "XDG_CONFIG_HOME": str(home / ".config"), "XDG_CACHE_HOME": str(home / ".cache"),
            "XDG_DATA_HOME": str(home / ".local/share"), "XDG_CURRENT_DESKTOP": "XFCE", "XDG_SESSION_TYPE": kind,
            # The locale need not be installed: Tarn formats figures with ICU.
            "LANG": "en_US.UTF-8", "LC_CTYPE": "C.UTF-8",
            "GSETTINGS_BACKEND": "memory",
        }
        self.environment.update(self._host.environment)
        if self._accessible:
            self.environment["QT_LINUX_ACCESSIBILITY_ALWAYS_ON"] = "1"

    def _write_settings(self, settings):
        """Writes `settings`: file contents by path below ~/.config."""
        for name, text in settings.items():
            path = Path(self.environment["XDG_CONFIG_HOME"], name)
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_text(text, encoding="utf-8")

    def _start_services(self):
        """Starts the settings portal and the accessibility bus."""
        self._portal = self.start("portal", ["python3", PROGRAMS / "settings_portal.py", self._scheme],
                                  stdin=subprocess.PIPE)
        if self._accessible:
            self.accessibility = AccessibilityBus(self.session)
        wait_until(lambda: self.session.has_owner(PORTAL), "the settings portal is on the bus")

    def _start_session_bus(self):
        address = f"unix:path={self.environment['XDG_RUNTIME_DIR']}/bus"
        self._bus = self.start("session-bus", ["dbus-daemon", "--session", "--nofork", f"--address={address}",
                                               "--print-address=1"], stdout=subprocess.PIPE, text=True)
        if not self._bus.stdout.readline().strip():
            raise RuntimeError(f"no session bus: {self.log('session-bus')}")
        self.environment["DBUS_SESSION_BUS_ADDRESS"] = address
        self.session = MessageBus(address)

    def kill_session_bus(self):
        """Kills the session bus, the panel and the portal."""
        self.session = None
        for child in (self._bus, self._panel_process, self._portal):
            if child:
                self._end(child, kill=True)
        self._panel_process = None

    def restart_session_bus(self, scheme="light"):
        """Starts a session bus at the address of the killed one, and the settings portal, but no panel."""
        self._scheme = scheme
        self._start_session_bus()
        self._start_services()

    def stop_portal(self):
        """Stops the settings portal, so that another program can own its name."""
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
        """Switches the color scheme of the desktop to "light" or "dark"."""
        self._scheme = scheme
        self._portal.stdin.write(f"{scheme}\n".encode())
        self._portal.stdin.flush()

    def start_panel(self):
        """Starts the panel. Waits until it accepts status items, if they are registered over D-Bus."""
        self._panel = True
        self._panel_process = self.start("panel", self._host.command)
        if self._host.has_watcher:
            wait_until(lambda: self.session.has_owner(WATCHER), "the panel accepts status items")

    def stop_panel(self):
        """Stops the panel and waits until its watcher has left the bus."""
        self._panel = False
        self._end(self._panel_process)
        wait_until(lambda: not self.session.has_owner(WATCHER), "the watcher has left the bus")

    def registered_items(self):
        """The names of the status items that are registered with the panel."""
        return self.session.property(WATCHER, "/StatusNotifierWatcher", WATCHER, "RegisteredStatusNotifierItems")

    def start(self, name, command, environment=None, **options):
        """Starts a program on this desktop. Its output goes to the log `name`."""
        child = start(command, self.environment | (environment or {}), self._folder / f"{name}.log", **options)
        self._children.append(child)
        return child

    def run(self, *command, **options):
        """Runs a program on this desktop and returns its output as text. Raises CalledProcessError if it fails."""
        return self.run_for_bytes(*command, text=True, errors="replace", **options)

    def run_for_bytes(self, *command, **options):
        """As `run`, but returns bytes."""
        return subprocess.run([str(word) for word in command], env=self.environment | {"LC_ALL": "C.UTF-8"},
                              check=True, timeout=60, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                              **options).stdout

    def log(self, name):
        """The output of the program that was started as `name`."""
        path = self._folder / f"{name}.log"
        return path.read_text(encoding="utf-8", errors="replace") if path.exists() else ""

    def stop(self):
        for connection in (self.accessibility, self.session):
            if connection:
                try:
                    connection.close()
                except Exception:  # The bus may have ended already.
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
