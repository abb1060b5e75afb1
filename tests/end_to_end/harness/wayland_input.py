# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""A virtual pointer and keyboard for a Wayland compositor, by the protocols wlr-virtual-pointer-unstable-v1 and
virtual-keyboard-unstable-v1."""

import array
import os
import socket
import struct
import time

# Object id, request and event numbers, and values of the Wayland protocols.
DISPLAY = 1
DISPLAY_SYNC, DISPLAY_GET_REGISTRY = 0, 1
DISPLAY_ERROR, REGISTRY_GLOBAL = 0, 0
REGISTRY_BIND = 0
CREATE = 0  # number of the create request of both managers
POINTER_MOTION_ABSOLUTE, POINTER_BUTTON, POINTER_FRAME = 1, 2, 4
KEYBOARD_KEYMAP, KEYBOARD_KEY = 0, 1
KEYMAP_FORMAT = 1
RELEASED, PRESSED = 0, 1
LEFT_BUTTON = 0x110
KEYS = {"Escape": 1, "Tab": 15}  # evdev codes
KEYMAP = b"""xkb_keymap {
  xkb_keycodes { include "evdev+aliases(qwerty)" };
  xkb_types { include "complete" };
  xkb_compat { include "complete" };
  xkb_symbols { include "pc+us+inet(evdev)" };
};\0"""


def unsigned(*numbers):
    return struct.pack(f"={len(numbers)}I", *numbers)


def text(value):
    data = value.encode() + b"\0"
    return unsigned(len(data)) + data + bytes(-len(data) % 4)


def now():
    return int(time.monotonic() * 1000) & 0xFFFFFFFF


class WaylandInput:
    """A pointer and a keyboard of the compositor with the socket `path`, until `close`. Every method returns after the
    compositor has handled the events."""

    def __init__(self, path):
        self._socket = socket.socket(socket.AF_UNIX)
        self._socket.settimeout(10)
        self._socket.connect(str(path))
        self._received = b""
        self._last_object = DISPLAY
        self._globals = {}
        self._registry = self._new_object()
        self._request(DISPLAY, DISPLAY_GET_REGISTRY, unsigned(self._registry))
        self._round_trip()
        seat = self._bind("wl_seat")
        self._pointer = self._create("zwlr_virtual_pointer_manager_v1", seat)
        self._keyboard = self._create("zwp_virtual_keyboard_manager_v1", seat)
        self._set_keymap()

    def move(self, position, size):
        """Moves the pointer. `size` is the size of all outputs together, in pixels."""
        self._request(self._pointer, POINTER_MOTION_ABSOLUTE, unsigned(now(), *position, *size))
        self._end_of_frame()

    def press(self):
        self._button(PRESSED)

    def release(self):
        self._button(RELEASED)

    def press_key(self, name):
        """Presses and releases the key."""
        for state in (PRESSED, RELEASED):
            self._request(self._keyboard, KEYBOARD_KEY, unsigned(now(), KEYS[name], state))
        self._round_trip()

    def close(self):
        self._socket.close()

    def _button(self, state):
        self._request(self._pointer, POINTER_BUTTON, unsigned(now(), LEFT_BUTTON, state))
        self._end_of_frame()

    def _end_of_frame(self):
        self._request(self._pointer, POINTER_FRAME)
        self._round_trip()

    def _set_keymap(self):
        file = os.memfd_create("keymap")
        try:
            os.write(file, KEYMAP)
            self._request(self._keyboard, KEYBOARD_KEYMAP, unsigned(KEYMAP_FORMAT, len(KEYMAP)), file)
            self._round_trip()
        finally:
            os.close(file)

    def _new_object(self):
        self._last_object += 1
        return self._last_object

    def _create(self, manager, seat):
        bound = self._bind(manager)
        created = self._new_object()
        self._request(bound, CREATE, unsigned(seat, created))
        return created

    def _bind(self, interface):
        if interface not in self._globals:
            raise RuntimeError(f"the compositor does not offer {interface}")
        bound, version = self._new_object(), 1
        self._request(self._registry, REGISTRY_BIND,
                      unsigned(self._globals[interface]) + text(interface) + unsigned(version, bound))
        return bound

    def _request(self, target, opcode, arguments=b"", file=None):
        message = unsigned(target, 8 + len(arguments) << 16 | opcode) + arguments
        ancillary = [] if file is None else [(socket.SOL_SOCKET, socket.SCM_RIGHTS, array.array("i", [file]))]
        self._socket.sendmsg([message], ancillary)

    def _round_trip(self):
        """Waits until the compositor has handled all requests. Raises RuntimeError after a protocol error."""
        callback = self._new_object()
        self._request(DISPLAY, DISPLAY_SYNC, unsigned(callback))
        while True:
            sender, opcode, arguments = self._event()
            if sender == callback:
                return
            if sender == DISPLAY and opcode == DISPLAY_ERROR:
                raise RuntimeError(f"protocol error: {arguments[12:].rstrip(bytes(1)).decode()}")
            if sender == self._registry and opcode == REGISTRY_GLOBAL:
                name, length = struct.unpack_from("=II", arguments)
                self._globals[arguments[8:8 + length - 1].decode()] = name

    def _event(self):
        sender, size_and_opcode = struct.unpack("=II", self._receive(8))
        return sender, size_and_opcode & 0xFFFF, self._receive((size_and_opcode >> 16) - 8)

    def _receive(self, count):
        while len(self._received) < count:
            data = self._socket.recv(65536)
            if not data:
                raise ConnectionError("the compositor closed the connection")
            self._received += data
        data, self._received = self._received[:count], self._received[count:]
        return data
