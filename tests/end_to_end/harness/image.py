# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""An image of the screen, and the detection of Tarn's circle in it."""

import colorsys
import re
from collections import Counter
from dataclasses import dataclass

TINTS = {"green": 152, "orange": 25, "red": 357}  # degrees of hue
HUE_TOLERANCE = 14  # degrees; half of the distance between orange and red
SATURATED = 60  # minimum difference between the largest and the smallest component
CONTRAST = 30  # minimum difference from the background in any component
MIN_CIRCLE = 20  # pixels
MAX_GAP = 12  # pixels between the circle and the text beside it


def tint_of(colour):
    """The name of the circle's colour, also if it is blended with grey; None for other colours."""
    if max(colour) - min(colour) < SATURATED:
        return None
    hue = colorsys.rgb_to_hsv(*(component / 255 for component in colour))[0] * 360
    for name, middle in TINTS.items():
        if abs((hue - middle + 180) % 360 - 180) <= HUE_TOLERANCE:
            return name
    return None


def is_clearly_different(colour, other):
    """Whether the difference of two colours has more than a tenth of the luma of white (Rec. 709)."""
    red, green, blue = (abs(component - other_component) for component, other_component in zip(colour, other))
    return 0.2126 * red + 0.7152 * green + 0.0722 * blue > 25.5


@dataclass(frozen=True)
class Image:
    """`width` times `height` pixels: red, green and blue bytes, rows from top to bottom."""

    width: int
    height: int
    pixels: bytes

    @staticmethod
    def from_ppm(data):
        header = re.match(rb"P6\s+(\d+)\s+(\d+)\s+255\s", data)
        return Image(int(header[1]), int(header[2]), data[header.end():])

    def row(self, line):
        """The colours of a row."""
        start = line * self.width * 3
        parts = self.pixels[start:start + self.width * 3]
        return list(zip(parts[::3], parts[1::3], parts[2::3]))

    def changed_pixels(self, other, area):
        """The number of pixels in an area (left, top, width, height) that differ clearly from another image."""
        left, top, width, height = area
        return sum(is_clearly_different(colour, other_colour) for line in range(max(top, 0), top + height)
                   for colour, other_colour in zip(self.row(line)[max(left, 0):left + width],
                                                   other.row(line)[max(left, 0):left + width]))

    def circle(self):
        """The circle in this image; None if there is none."""
        tinted = [(x, y, tint) for y in range(self.height) for x, colour in enumerate(self.row(y))
                  if (tint := tint_of(colour))]
        if len(tinted) < MIN_CIRCLE:
            return None
        columns, lines = [x for x, _, _ in tinted], [y for _, y, _ in tinted]
        tint = Counter(name for _, _, name in tinted).most_common(1)[0][0]
        return Circle(tint, min(columns), min(lines), max(columns) + 1, max(lines) + 1)

    def foreground_columns(self, top, bottom):
        """The columns that have a pixel other than background from line `top` to above line `bottom`."""
        foreground = set()
        for line in range(top, bottom):
            colours = self.row(line)
            background = Counter(colours).most_common(1)[0][0]
            foreground |= {x for x, colour in enumerate(colours)
                           if max(abs(component - other) for component, other in zip(colour, background)) > CONTRAST}
        return foreground


@dataclass(frozen=True)
class Circle:
    """The circle's colour and bounds. `right` and `bottom` are the first column and line outside of it."""

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

    def width_with_text(self, image):
        """The width of the circle and the text to its right."""
        foreground = image.foreground_columns(self.top, self.bottom)
        end = self.right
        while next_columns := [column for column in range(end, end + MAX_GAP) if column in foreground]:
            end = next_columns[-1] + 1
        return end - self.left
