# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""A desktop of its own on a display that nobody sees: X server, session bus, window manager, panel, settings portal."""

import os
import re
import subprocess

from desktop import HUMAN_PRESS, WATCHER, Desktop
from desktop_settings import WALLPAPER, desktop_settings
from hosts import XFCE
from picture import Picture
from processes import wait_until

__all__ = ["SIZE", "WATCHER", "VirtualDesktop", "monitor_name"]

SIZE = (1280, 800)
# Many monitors on a graphics card that there is not, none of the machine's own devices.
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
    """What the X server calls the monitor `number`, counted from 0, where there are several."""
    return f"DUMMY{number}"


class VirtualDesktop(Desktop):
    """A desktop whose screen has `size` pixels, as so many monitors side by side; of the rest, see Desktop."""

    def __init__(self, folder, scheme="light", panel=True, accessible=True, host=XFCE, size=SIZE, monitors=1):
        super().__init__(folder, host, scheme, panel, accessible)
        self.size = size
        self._monitors = monitors

    def _start(self):
        self._make_environment("x11")
        self._write_settings(desktop_settings(self._host, self._scheme))
        self.environment["DISPLAY"] = self._start_display()
        if self._monitors > 1:
            self._arrange_monitors()
        self._start_session()
        self._show_wallpaper()
        self.start("window-manager", ["xfwm4", "--compositor=off"])
        wait_until(self._is_managed, "the window manager is there")

    def _start_display(self):
        reading, writing = os.pipe()
        self.start("display", [*self._server(), "-displayfd", writing, "-nolisten", "tcp", "-noreset"],
                   pass_fds=(writing,))
        os.close(writing)
        with os.fdopen(reading) as answer:
            number = answer.readline().strip()
        if not number:
            raise RuntimeError(f"no X server: {self.log('display')}")
        return f":{number}"

    def _server(self):
        """The words that start an X server which can have as many monitors."""
        if self._monitors == 1:
            return ["Xvfb", "-screen", "0", f"{self.size[0]}x{self.size[1]}x24"]
        configuration = self._folder / "monitors.conf"
        configuration.write_text(MONITORS, encoding="ascii")
        return ["/usr/lib/xorg/Xorg", "-config", configuration, "-logfile", self._folder / "monitors.log",
                "-novtswitch", "-sharevts"]

    def _arrange_monitors(self):
        """Puts the monitors side by side."""
        width, height = self.size[0] // self._monitors, self.size[1]
        mode = f"{width}x{height}"
        for number in range(1, self._monitors):
            self.run("xrandr", "--addmode", monitor_name(number), mode)
        places = [word for number in range(self._monitors)
                  for word in ("--output", monitor_name(number), "--mode", mode, "--pos", f"{number * width}x0")]
        self.run("xrandr", "--fb", f"{self.size[0]}x{height}", *places)
        # The server tells programs that start from now on what it found when it was last asked to look.
        wait_until(lambda: f"Monitors: {self._monitors}\n" in self.run("xrandr", "--listmonitors"),
                   "every monitor is there")

    def _is_managed(self):
        answer = self.run("xprop", "-root", "_NET_SUPPORTING_WM_CHECK")
        return "window id #" in answer

    def _show_wallpaper(self):
        # The exit status says nothing here: it is 1 even when the picture was set.
        self.start("wallpaper", ["display", "-window", "root", "-size", f"{self.size[0]}x{self.size[1]}",
                                 WALLPAPER[self._scheme]]).wait(timeout=20)

    def change_scheme(self, scheme):
        super().change_scheme(scheme)
        if self._panel and self._host == XFCE:
            self.run("xfconf-query", "-c", "xfce4-panel", "-p", "/panels/dark-mode", "-t", "bool", "-n", "-s",
                     "true" if scheme == "dark" else "false")
        self._show_wallpaper()

    def click(self, position):
        """A person's click: the button stays down for a moment."""
        self.run("xdotool", "mousemove", position[0], position[1], "sleep", "0.05", "mousedown", "1",
                 "sleep", HUMAN_PRESS, "mouseup", "1")

    def turn_wheel(self, position, notches):
        """Turns the wheel towards the end of what is at `position`."""
        self.run("xdotool", "mousemove", position[0], position[1], "click", "--repeat", notches, "--delay", "20", "5")

    def active_window_name(self):
        """The title of the window that has the focus; "" without one."""
        return self._ask("xdotool", "getactivewindow", "getwindowname").strip()

    def windows_of(self, pid):
        """The ids of the windows that a process shows."""
        return self._ask("xdotool", "search", "--onlyvisible", "--pid", pid).split()

    def window_frames(self, pid):
        """Left, top, width and height of the windows that a process shows, those embedded in others among them."""
        labels = ("Absolute upper-left X", "Absolute upper-left Y", "Width", "Height")
        descriptions = [self._ask("xwininfo", "-id", window) for window in self.windows_of(pid)]
        return [tuple(int(re.search(rf"{label}: +(-?\d+)", text)[1]) for label in labels)
                for text in descriptions if text]

    def on_screen(self, _pid, position):
        """Where on the screen a position of a process's accessible objects is: there."""
        return position

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

    def picture_of(self, area):
        """The pixels of `area` of the screen (left, top, width, height)."""
        return Picture.from_ppm(self.run_for_bytes(*self._camera(area), "-depth", "8", "ppm:-"))

    def take_picture(self, path, area=None):
        """Saves the screen, or `area` of it (left, top, width, height), as a PNG."""
        self.run(*self._camera(area), path)

    @staticmethod
    def _camera(area):
        command = ["import", "-silent", "-window", "root"]
        if area:
            left, top, width, height = area
            command += ["-crop", f"{width}x{height}+{left}+{top}", "+repage"]
        return command
