# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""Reads pixels of an X11 screen through libxcb, which is much faster than starting a program for each screenshot."""

import ctypes

from harness.image import Image

Z_PIXMAP = 2
ALL_PLANES = 0xFFFFFFFF


class ScreenIterator(ctypes.Structure):
    """xcb_screen_iterator_t. The first field of a screen is the id of its root window."""

    _fields_ = [("screen", ctypes.POINTER(ctypes.c_uint32)), ("remaining", ctypes.c_int), ("index", ctypes.c_int)]


class Cookie(ctypes.Structure):
    """xcb_get_image_cookie_t"""

    _fields_ = [("sequence", ctypes.c_uint)]


def load_xcb():
    xcb = ctypes.CDLL("libxcb.so.1")
    for function, result, arguments in (
            (xcb.xcb_connect, ctypes.c_void_p, [ctypes.c_char_p, ctypes.c_void_p]),
            (xcb.xcb_connection_has_error, ctypes.c_int, [ctypes.c_void_p]),
            (xcb.xcb_disconnect, None, [ctypes.c_void_p]),
            (xcb.xcb_get_setup, ctypes.c_void_p, [ctypes.c_void_p]),
            (xcb.xcb_setup_roots_iterator, ScreenIterator, [ctypes.c_void_p]),
            (xcb.xcb_get_image, Cookie, [ctypes.c_void_p, ctypes.c_uint8, ctypes.c_uint32, ctypes.c_int16,
                                         ctypes.c_int16, ctypes.c_uint16, ctypes.c_uint16, ctypes.c_uint32]),
            (xcb.xcb_get_image_reply, ctypes.c_void_p, [ctypes.c_void_p, Cookie, ctypes.c_void_p]),
            (xcb.xcb_get_image_data, ctypes.c_void_p, [ctypes.c_void_p]),
            (xcb.xcb_get_image_data_length, ctypes.c_int, [ctypes.c_void_p])):
        function.restype, function.argtypes = result, arguments
    return xcb


class X11Screen:
    """The first screen of a display. Its pixels have 32 bits: blue, green, red, unused."""

    def __init__(self, display):
        self._xcb = load_xcb()
        self._connection = self._xcb.xcb_connect(display.encode(), None)
        if self._xcb.xcb_connection_has_error(self._connection):
            raise ConnectionError(f"cannot connect to display {display}")
        setup = self._xcb.xcb_get_setup(self._connection)
        self._root = self._xcb.xcb_setup_roots_iterator(setup).screen[0]

    def image_of(self, area):
        """The pixels of an area (left, top, width, height)."""
        left, top, width, height = area
        cookie = self._xcb.xcb_get_image(self._connection, Z_PIXMAP, self._root, left, top, width, height, ALL_PLANES)
        reply = self._xcb.xcb_get_image_reply(self._connection, cookie, None)
        if not reply:
            raise OSError(f"cannot read the pixels of {area}")
        data = ctypes.string_at(self._xcb.xcb_get_image_data(reply), self._xcb.xcb_get_image_data_length(reply))
        ctypes.CDLL(None).free(ctypes.c_void_p(reply))
        pixels = bytearray(width * height * 3)
        pixels[::3], pixels[1::3], pixels[2::3] = data[2::4], data[1::4], data[::4]
        return Image(width, height, bytes(pixels))

    def close(self):
        self._xcb.xcb_disconnect(self._connection)
