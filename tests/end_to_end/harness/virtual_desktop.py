# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""An X11 desktop without hardware: X server, session bus, window manager, panel, settings portal."""

import os
import re
import subprocess

from harness.desktop import PRESS_SECONDS, WALLPAPER, Desktop, desktop_settings
from harness.hosts import XFCE
from harness.processes import wait_until
from harness.x11_screen import X11Screen

SIZE = (1280, 800)
# The dummy video driver with several monitors, without the machine's input devices.
MONITORS = """Section "ServerFlags"
  Option "AutoAddDevices" "false"
  Option "DontVTSwitch" "true"
EndSection
Section "Device"
  Identifier "card"
  Driver "dummy"
  VideoRam 65536
EndSection
Section "Monitor"
  Identifier "any"
  HorizSync 5-1000
  VertRefresh 5-200
EndSection
Section "Screen"
  Identifier "screen"
  Device "card"
  Monitor "any"
  DefaultDepth 24
  SubSection "Display"
    Modes "1280x800"
  EndSubSection
EndSection
"""


def monitor_name(number):
    """The X server's name of a monitor (numbers start at 0) when it has several monitors."""
    return f"DUMMY{number}"


class VirtualDesktop(Desktop):
    """A desktop on a screen of `size` pixels, with `monitors` monitors side by side. See also Desktop."""

    def __init__(self, scheme="light", panel=True, accessible=True, host=XFCE, size=SIZE, monitors=1):
        super().__init__(host, scheme, panel, accessible)
        self.size = size
        self._monitors = monitors
        self._screen = None

    def _start(self):
        self._make_environment("x11")
        self._write_settings(desktop_settings(self._host, self._scheme))
        self.environment["DISPLAY"] = self._start_display()
        if self._monitors > 1:
            self._arrange_monitors()
        self._screen = X11Screen(self.environment["DISPLAY"])
        self._start_session_bus()
        # These programs start in parallel.
        self.start("window-manager", ["xfwm4", "--compositor=off"])
        wallpaper = self._start_wallpaper()
        self._start_services()
        wallpaper.wait(timeout=20)
        wait_until(self._is_managed, "the window manager runs")

    def _start_display(self):
        reading, writing = os.pipe()
        self.start("display", [*self._server(), "-displayfd", writing, "-nolisten", "tcp", "-noreset"],
                   pass_fds=(writing,))
        os.close(writing)
        with os.fdopen(reading) as output:
            number = output.readline().strip()
        if not number:
            raise RuntimeError(f"no X server: {self.log('display')}")
        return f":{number}"

    def _server(self):
        """The command that starts an X server with the requested number of monitors."""
        if self._monitors == 1:
            return ["Xvfb", "-screen", "0", f"{self.size[0]}x{self.size[1]}x24"]
        configuration = self._folder / "monitors.conf"
        configuration.write_text(MONITORS, encoding="ascii")
        return ["/usr/lib/xorg/Xorg", "-config", configuration, "-logfile", self._folder / "monitors.log",
                "-novtswitch", "-sharevts"]

    def _arrange_monitors(self):
        """Places the monitors side by side."""
        width, height = self.size[0] // self._monitors, self.size[1]
        mode = f"{width}x{height}"
        for number in range(1, self._monitors):
            self.run("xrandr", "--addmode", monitor_name(number), mode)
        places = [word for number in range(self._monitors)
                  for word in ("--output", monitor_name(number), "--mode", mode, "--pos", f"{number * width}x0")]
        self.run("xrandr", "--fb", f"{self.size[0]}x{height}", *places)
        # Listing the monitors makes the server update what it reports to programs.
        wait_until(lambda: f"Monitors: {self._monitors}\n" in self.run("xrandr", "--listmonitors"),
                   "every monitor is active")

    def _is_managed(self):
        return "window id #" in self.run("xprop", "-root", "_NET_SUPPORTING_WM_CHECK")

    def _start_wallpaper(self):
        # The exit status is 1 even if the image was set.
        return self.start("wallpaper", ["display", "-window", "root", "-size", f"{self.size[0]}x{self.size[1]}",
                                        WALLPAPER[self._scheme]])

    def change_scheme(self, scheme):
        super().change_scheme(scheme)
        if self._panel and self._host == XFCE:
            self.run("xfconf-query", "-c", "xfce4-panel", "-p", "/panels/dark-mode", "-t", "bool", "-n", "-s",
                     "true" if scheme == "dark" else "false")
        self._start_wallpaper().wait(timeout=20)

    def click(self, position):
        """Clicks with some time between press and release, as a person does."""
        self.run("xdotool", "mousemove", position[0], position[1], "sleep", "0.05", "mousedown", "1",
                 "sleep", PRESS_SECONDS, "mouseup", "1")

    def turn_wheel(self, position, notches):
        """Turns the mouse wheel down at `position`."""
        self.run("xdotool", "mousemove", position[0], position[1], "click", "--repeat", notches, "--delay", "20", "5")

    def active_window_name(self):
        """The title of the focused window; "" if none has the focus."""
        return self._ask("xdotool", "getactivewindow", "getwindowname").strip()

    def windows_of(self, pid):
        """The ids of the visible windows of a process."""
        return self._ask("xdotool", "search", "--onlyvisible", "--pid", pid).split()

    def window_frames(self, pid):
        """Left, top, width and height of the visible windows of a process, including embedded ones."""
        labels = ("Absolute upper-left X", "Absolute upper-left Y", "Width", "Height")
        descriptions = [self._ask("xwininfo", "-id", window) for window in self.windows_of(pid)]
        return [tuple(int(re.search(rf"{label}: +(-?\d+)", text)[1]) for label in labels)
                for text in descriptions if text]

    def on_screen(self, _pid, position):
        """Converts a position from a process's accessible objects to the screen: on X11 they are equal."""
        return position

    def _ask(self, *command):
        """As `run`, but returns "" if the program fails."""
        try:
            return self.run(*command, stderr=subprocess.DEVNULL)
        except subprocess.CalledProcessError:
            return ""

    def move_pointer(self, position):
        self.run("xdotool", "mousemove", *position)

    def press_key(self, key):
        self.run("xdotool", "key", key)

    def image_of(self, area):
        """The pixels of the part of an area (left, top, width, height) that is on the screen."""
        left, top, width, height = area
        right, bottom = min(left + width, self.size[0]), min(top + height, self.size[1])
        left, top = max(left, 0), max(top, 0)
        return self._screen.image_of((left, top, right - left, bottom - top))

    def take_screenshot(self, path, area=None):
        """Saves the screen, or an area of it (left, top, width, height), as a PNG."""
        left, top, width, height = area or (0, 0, *self.size)
        self.run("import", "-silent", "-window", "root", "-crop", f"{width}x{height}+{left}+{top}", "+repage", path)

    def stop(self):
        if self._screen:
            self._screen.close()
        super().stop()
