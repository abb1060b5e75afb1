# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""A Wayland desktop without hardware: sway, session bus, settings portal, a waybar on every output."""

import json
import time
from pathlib import Path

from harness.desktop import PRESS_SECONDS, Desktop, desktop_settings
from harness.hosts import WAYBAR
from harness.image import Image
from harness.processes import wait_until
from harness.wayland_input import WaylandInput

OUTPUT_SIZE = (1280, 800)
COMPOSITOR = f"""xwayland disable
default_border none
output HEADLESS-1 resolution {OUTPUT_SIZE[0]}x{OUTPUT_SIZE[1]} position 0 0
output HEADLESS-2 resolution {OUTPUT_SIZE[0]}x{OUTPUT_SIZE[1]} position {OUTPUT_SIZE[0]} 0
"""
# Without the machine's devices; the processor renders.
HEADLESS = {"WLR_BACKENDS": "headless", "WLR_LIBINPUT_NO_DEVICES": "1", "WLR_RENDERER": "pixman"}


class WaylandDesktop(Desktop):
    """A desktop with one or two outputs side by side. For the other parameters, see Desktop."""

    def __init__(self, scheme="light", panel=True, accessible=True, host=WAYBAR, outputs=1):
        super().__init__(host, scheme, panel, accessible)
        self._outputs = outputs
        self._input = None
        self.size = (OUTPUT_SIZE[0] * outputs, OUTPUT_SIZE[1])

    def _start(self):
        self._make_environment("wayland")
        self._write_settings(desktop_settings(self._host, self._scheme) | {"sway/config": COMPOSITOR})
        self._start_session_bus()
        self._start_services()
        self._start_compositor()
        for _ in range(1, self._outputs):
            self.run("swaymsg", "create_output")
        wait_until(lambda: len(self._ask("get_outputs")) == self._outputs, "every output is active")

    def _start_compositor(self):
        runtime = Path(self.environment["XDG_RUNTIME_DIR"])
        control = runtime / "sway.sock"
        self.environment |= {"SWAYSOCK": str(control), "XDG_CURRENT_DESKTOP": "sway"}
        self.start("compositor", ["sway"], HEADLESS)
        socket = wait_until(lambda: next(runtime.glob("wayland-?"), None), "the compositor has a socket")
        wait_until(control.exists, "the compositor has an IPC socket")
        self.environment["WAYLAND_DISPLAY"] = socket.name
        self._input = WaylandInput(socket)

    def _ask(self, question):
        return json.loads(self.run("swaymsg", "--raw", "--type", question))

    def click(self, position):
        """Clicks with some time between press and release, as a person does."""
        self.move_pointer(position)
        time.sleep(0.05)
        self._input.press()
        time.sleep(PRESS_SECONDS)
        self._input.release()

    def move_pointer(self, position):
        self._input.move(position, self.size)

    def press_key(self, key):
        self._input.press_key(key)

    def _windows(self):
        """All windows, as sway describes them."""
        windows, nodes = [], [self._ask("get_tree")]
        for node in nodes:  # grows during the loop
            nodes += node["nodes"] + node["floating_nodes"]
            if "pid" in node:
                windows.append(node)
        return windows

    def active_window_name(self):
        """The title of the focused window; "" if none has the focus."""
        return next((window["name"] for window in self._windows() if window["focused"]), "")

    def window_frames(self, pid):
        """Left, top, width and height of the windows of a process, including shadows."""
        return [tuple(window["rect"][key] for key in ("x", "y", "width", "height"))
                for window in self._windows() if window["pid"] == pid]

    def on_screen(self, pid, position):
        """Converts a position from a process's accessible objects, which is relative to its window, to the screen."""
        left, top, _, _ = self.window_frames(pid)[0]
        return left + position[0], top + position[1]

    def image_of(self, area):
        """The pixels of an area of all outputs (left, top, width, height)."""
        return Image.from_ppm(self.run_for_bytes(*self._screenshot_command(area), "-t", "ppm", "-"))

    def take_screenshot(self, path, area=None):
        """Saves all outputs, or an area of them (left, top, width, height), as a PNG."""
        self.run(*self._screenshot_command(area), path)

    @staticmethod
    def _screenshot_command(area):
        if not area:
            return ["grim"]
        left, top, width, height = area
        return ["grim", "-s", "1", "-g", f"{left},{top} {width}x{height}"]

    def stop(self):
        if self._input:
            self._input.close()
        super().stop()
