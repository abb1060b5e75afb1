# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""Desktop files that try to block, crash or mislead their readers."""

import os

HEAD = "[Desktop Entry]\nType=Application\n"
LARGE = 50 << 20  # bytes
NAME = "<b>Bold</b> &amp; <a href='x'>link</a>\u202egnol\u0007"


def write(folder, claimed):
    """Writes invalid desktop files to a folder. Most of them start the program `claimed`."""
    folder.mkdir(parents=True, exist_ok=True)
    claim = f"{HEAD}Exec={claimed}\nName=Stolen\n"
    os.mkfifo(folder / "a-pipe.desktop")
    (folder / "a-loop.desktop").symlink_to("a-loop.desktop")
    (folder / "a-loop").symlink_to(".", target_is_directory=True)
    (folder / "a-device.desktop").symlink_to("/dev/zero")
    (folder / "a-directory.desktop").mkdir()
    with open(folder / "a-large.desktop", "wb") as file:
        file.write(claim.encode())
        file.truncate(LARGE)
    (folder / "a-zero.desktop").write_bytes(f"{HEAD}Exec={claimed}\0 x\nName=Stolen\n".encode())
    (folder / "a-words.desktop").write_text(f"{HEAD}Exec={claimed} {'word ' * 10_000}\nName=Stolen\n", encoding="ascii")
    (folder / "a-quote.desktop").write_text(f'{HEAD}Exec="{claimed}\nName=Stolen\n', encoding="ascii")
    (folder / "a-bytes.desktop").write_bytes(HEAD.encode() + b"Exec=" + bytes(range(128, 256)) + b"\nName=\xff\xfe\n")


def named_application(folder, program, icon):
    """Writes a valid desktop file for `program` with a misleading name and a hostile icon. Returns its path."""
    folder.mkdir(parents=True, exist_ok=True)
    file = folder / f"hostile-{program.name}.desktop"
    file.write_text(f"{HEAD}Exec={program}\nName={NAME}\nIcon={icon}\n", encoding="utf-8")
    return file
