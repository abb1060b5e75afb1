# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""Applications whose desktop files try to block, crash or mislead Tarn or its users."""

import os
import re
import shutil
import struct
import zlib
from pathlib import Path

import pytest

from harness import hostile_files, proc_reader
from harness.programs import start_holder
from harness.shared_desktop import SharedDesktop, assert_figure
from harness.stage import BIN, WORK

pytestmark = pytest.mark.desktop

MEGABYTES = 330
SHOWN_NAME = "<b>Bold</b> &amp; <a href='x'>link</a>"


def enormous_image(path):
    """Writes a small image file that takes 14 GB when decoded. Returns its path."""

    def chunk(name, data):
        return struct.pack(">I", len(data)) + name + data + struct.pack(">I", zlib.crc32(name + data))

    header = struct.pack(">IIBBBBB", 60_000, 60_000, 8, 6, 0, 0, 0)
    path.write_bytes(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", zlib.compress(bytes(1000)))
                     + chunk(b"IEND", b""))
    return path


def pipe(path):
    os.mkfifo(path)
    return path


class TestHostileApplications(SharedDesktop):
    @pytest.fixture(scope="class")
    def programs(self, request, desktop):
        folder = Path(desktop.environment["XDG_DATA_HOME"], "applications")
        hostile_files.write(folder, "xmessage")
        icons = (Path("/dev/zero"), pipe(WORK / "icon.png"), enormous_image(WORK / "large.png"))
        request.cls.holders = []
        for number, icon in enumerate(icons):
            program = shutil.copy2(BIN / "hold_memory", WORK / f"hostile-{number}")
            hostile_files.named_application(folder, Path(program), icon)
            request.cls.holders.append(start_holder(desktop, f"hostile-{number}", [program, MEGABYTES]))

    def test_they_have_normal_rows_with_plain_text(self):
        self.popover.choose_tab("Memory")
        content = self.popover.wait_for(lambda content: len(self.hostile_rows(content)) == len(self.holders),
                                        "the list shows all of them")
        for row in self.hostile_rows(content):
            assert not re.search("[\\x00-\\x1f\\u202a-\\u202e\\u2066-\\u2069]", row.name)
            assert_figure(row.value, *[proc_reader.footprint(self.holders[0].pid)] * 2)
        # Rows of applications with several processes have a second line and are higher.
        minimum = min(row.node.extents()[3] for row in content.rows)
        heights = {row.node.extents()[3] for row in self.hostile_rows(content)}
        assert heights == {minimum}, "no name makes a row higher"
        self.assert_alive()

    @staticmethod
    def hostile_rows(content):
        return [row for row in content.rows if row.name.startswith(SHOWN_NAME)]
