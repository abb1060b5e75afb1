# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""A session manager of this user's own, and a small application in a sandbox."""

import os
import shutil
import subprocess
from pathlib import Path

from processes import wait_until
from programs import STAGE

MANAGER = "/usr/lib/systemd/systemd"
PLATFORM, PAINTER = "org.example.Platform", "org.example.Painter"
VERSION = f"{PLATFORM}/{os.uname().machine}/1"
# What the sandboxed application's script needs of the system.
TOOLS = ("/bin/sh", "/bin/sleep", "/usr/bin/setsid")
ORPHAN_AND_CHILD = "#!/bin/sh\nsetsid sleep 1001 &\nsleep 1000\n"


def can_be_started():
    """Whether the harness was started where there can be a session manager."""
    return "TARN_SESSION" in os.environ


def start_manager(desktop):
    """Starts the session manager, with a bus; gives the variables by which programs reach both."""
    runtime = Path(f"/run/user/{os.getuid()}")
    bus = f"unix:path={runtime}/bus"
    # Sandboxes ask services of the whole system, too, and bear it that they are not there, but not without a bus.
    variables = {"XDG_RUNTIME_DIR": str(runtime), "DBUS_SESSION_BUS_ADDRESS": bus, "DBUS_SYSTEM_BUS_ADDRESS": bus}
    desktop.start("session-manager", [MANAGER, "--user", "--unit=basic.target"],
                  variables | {"SYSTEMD_LOG_TARGET": "console"})
    wait_until((runtime / "systemd/private").exists, "the session manager answers")
    wait_until((runtime / "bus").exists, "the session manager's bus answers")
    return variables


def needed_libraries(tools):
    """The libraries of programs, and the loader, by the paths at which they are looked for."""
    answer = subprocess.run(["ldd", *tools], stdout=subprocess.PIPE, text=True, check=True, timeout=30).stdout
    return {word for word in answer.split() if word.startswith("/") and not word.endswith(":")}


def write_platform(folder):
    for tool in TOOLS:
        (folder / "usr/bin").mkdir(parents=True, exist_ok=True)
        shutil.copy(tool, folder / "usr/bin")
    for library in needed_libraries(TOOLS):
        target = folder / f"usr/{library.removeprefix('/usr')}"
        target.parent.mkdir(parents=True, exist_ok=True)
        shutil.copy(library, target)
    (folder / "files").mkdir()
    (folder / "metadata").write_text(f"[Runtime]\nname={PLATFORM}\nruntime={VERSION}\nsdk={VERSION}\n", encoding="ascii")


def write_application(folder):
    program = folder / "files/bin/painter"
    entry = folder / f"export/share/applications/{PAINTER}.desktop"
    for file in (program, entry):
        file.parent.mkdir(parents=True)
    program.write_text(ORPHAN_AND_CHILD, encoding="ascii")
    program.chmod(0o755)
    entry.write_text("[Desktop Entry]\nType=Application\nName=Painter\nExec=painter\n", encoding="ascii")
    (folder / "metadata").write_text(
        f"[Application]\nname={PAINTER}\nruntime={VERSION}\nsdk={VERSION}\ncommand=painter\n", encoding="ascii")


def install_sandboxed(desktop, session):
    """Installs an application in a sandbox for this user; gives its desktop file. It is started by "flatpak run"."""
    folder = STAGE / "sandboxed"
    folder.mkdir()
    write_platform(folder / "platform")
    write_application(folder / "application")
    store = folder / "store"
    for words in (("build-export", "--runtime", store, folder / "platform", "1"),
                  ("build-export", store, folder / "application", "1"),
                  ("--user", "remote-add", "--no-gpg-verify", "local", store),
                  ("--user", "install", "--noninteractive", "local", f"{PLATFORM}//1", f"{PAINTER}//1")):
        desktop.run("env", *(f"{name}={value}" for name, value in session.items()), "flatpak", *words)
    return Path(desktop.environment["XDG_DATA_HOME"], f"flatpak/exports/share/applications/{PAINTER}.desktop")


def install_tree(desktop):
    """Installs an application on a browser's engine below /opt; gives its program and its desktop file."""
    folder = Path("/opt/Paper Clip")
    folder.mkdir()
    for name in ("paperclip", "crash_handler"):
        shutil.copy2(STAGE / "bin/application_tree", folder / name)
    entry = Path(desktop.environment["XDG_DATA_HOME"], "applications/paperclip.desktop")
    entry.parent.mkdir(parents=True, exist_ok=True)
    entry.write_text(f'[Desktop Entry]\nType=Application\nName=Paper Clip\nExec="{folder}/paperclip" --no-sandbox %U\n',
                     encoding="ascii")
    return folder / "paperclip", entry
