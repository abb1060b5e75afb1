# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""Applications whose desktop files want to block, crash or mislead Tarn, or the person who reads it."""

import os
import shutil
import struct
import zlib
from pathlib import Path

import hostile_files
import proc_reader
from desktop_test import DesktopTest
from programs import STAGE, start_holder

MEGABYTES = 330
SHOWN_NAME = "<b>Bold</b> &amp; <a href='x'>link</a>"


def enormous_picture(path):
    """A picture of a few bytes that would take 14 GB."""

    def chunk(name, data):
        return struct.pack(">I", len(data)) + name + data + struct.pack(">I", zlib.crc32(name + data))

    header = struct.pack(">IIBBBBB", 60_000, 60_000, 8, 6, 0, 0, 0)
    path.write_bytes(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", zlib.compress(bytes(1000)))
                     + chunk(b"IEND", b""))
    return path


def pipe(path):
    os.mkfifo(path)
    return path


class HostileApplicationsTest(DesktopTest):
    """What such applications are shown as."""

    @classmethod
    def start_programs(cls):
        folder = Path(cls.desktop.environment["XDG_DATA_HOME"], "applications")
        hostile_files.write(folder, "xmessage")
        icons = (Path("/dev/zero"), pipe(STAGE / "icon.png"), enormous_picture(STAGE / "large.png"))
        cls.holders = []
        for number, icon in enumerate(icons):
            program = shutil.copy2(STAGE / "bin/hold_memory", STAGE / "bin" / f"hostile-{number}")
            hostile_files.named_application(folder, Path(program), icon)
            cls.holders.append(start_holder(cls.desktop, f"hostile-{number}", [program, MEGABYTES]))

    def test_they_are_rows_like_any_other_with_inert_names(self):
        self.popover.choose_tab("Memory")
        content = self.popover.wait_for(lambda content: len(self.hostile_rows(content)) == len(self.holders),
                                        "all of them show")
        for row in self.hostile_rows(content):
            self.assertNotRegex(row.name, "[\\x00-\\x1f\\u202a-\\u202e\\u2066-\\u2069]")
            self.assert_figure(row.value, *[proc_reader.footprint(self.holders[0].pid)] * 2)
        # Applications of several processes have a second line.
        lowest = min(row.node.extents()[3] for row in content.rows)
        heights = {row.node.extents()[3] for row in self.hostile_rows(content)}
        self.assertEqual(heights, {lowest}, "a name makes no row higher")
        self.assert_alive()

    @staticmethod
    def hostile_rows(content):
        return [row for row in content.rows if row.name.startswith(SHOWN_NAME)]
