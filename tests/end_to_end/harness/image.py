# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""Pixels of the screen, and Tarn's item among them."""

import colorsys
import re
from collections import Counter
from dataclasses import dataclass

TINTS = {"green": 152, "orange": 25, "red": 357}  # degrees of hue
HUE_REACH = 14  # degrees; between orange and red there are 28
STRONG = 60  # from the least to the largest part of a strong colour
INK = 30  # in any part of a colour: what is not the ground
LEAST_CIRCLE = 20  # pixels
WIDEST_GAP = 12  # pixels between the circle and what belongs to it


def tint_of(colour):
    """Which of the circle's colours a colour is, alone or blended with a grey; None for any other."""
    if max(colour) - min(colour) < STRONG:
        return None
    hue = colorsys.rgb_to_hsv(*(part / 255 for part in colour))[0] * 360
    for name, middle in TINTS.items():
        if abs((hue - middle + 180) % 360 - 180) <= HUE_REACH:
            return name
    return None


@dataclass(frozen=True)
class Picture:
    """`width` times `height` pixels: red, green and blue bytes, rows from the top."""

    width: int
    height: int
    pixels: bytes

    @staticmethod
    def from_ppm(data):
        header = re.match(rb"P6\s+(\d+)\s+(\d+)\s+255\s", data)
        return Picture(int(header[1]), int(header[2]), data[header.end():])

    def row(self, line):
        """The colours of a row."""
        start = line * self.width * 3
        parts = self.pixels[start:start + self.width * 3]
        return list(zip(parts[::3], parts[1::3], parts[2::3]))

    def circle(self):
        """The circle in this picture; None without one."""
        tinted = [(across, down, tint) for down in range(self.height) for across, colour in enumerate(self.row(down))
                  if (tint := tint_of(colour))]
        if len(tinted) < LEAST_CIRCLE:
            return None
        columns, lines = [across for across, _, _ in tinted], [down for _, down, _ in tinted]
        tint = Counter(name for _, _, name in tinted).most_common(1)[0][0]
        return Circle(tint, min(columns), min(lines), max(columns) + 1, max(lines) + 1)

    def inked_columns(self, top, bottom):
        """The columns that show anything on the ground between two lines."""
        inked = set()
        for line in range(top, bottom):
            colours = self.row(line)
            ground = Counter(colours).most_common(1)[0][0]
            inked |= {across for across, colour in enumerate(colours)
                      if max(abs(part - other) for part, other in zip(colour, ground)) > INK}
        return inked


@dataclass(frozen=True)
class Circle:
    """The circle's colour, and where its pixels are; `right` and `bottom` are the first beyond it."""

    tint: str
    left: int
    top: int
    right: int
    bottom: int

    @property
    def width(self):
        return self.right - self.left

    @property
    def height(self):
        return self.bottom - self.top

    def centre(self):
        return (self.left + self.right) // 2, (self.top + self.bottom) // 2

    def width_with_text(self, picture):
        """The width of the circle and all that stands to the right of it, close together, in its picture."""
        inked = picture.inked_columns(self.top, self.bottom)
        end = self.right
        while beyond := [column for column in range(end, end + WIDEST_GAP) if column in inked]:
            end = beyond[-1] + 1
        return end - self.left
