# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""Real applications: how each is started, and the group of its processes."""

import os
import shutil
import subprocess
import warnings
from dataclasses import dataclass, field
from pathlib import Path

from harness import systemd_user
from harness.stage import BIN, WORK

SHARED = "/usr/share/applications/"
BUNDLES = "/usr/lib/GNUstep/Applications/"
PLATFORM, PAINTER = "org.example.Platform", "org.example.Painter"
VERSION = f"{PLATFORM}/{os.uname().machine}/1"
# Programs that the Flatpak's script runs.
TOOLS = ("/bin/sh", "/bin/sleep", "/usr/bin/setsid")
ORPHAN_AND_CHILD = "#!/bin/sh\nsetsid sleep 1001 &\nsleep 1000\n"
COMPILE = "while :; do echo 'int main(){return 0;}' | cc -x c -O2 - -o /dev/null; done"


@dataclass(frozen=True)
class Case:
    """An application, its command, and the id of the group that its processes belong to."""

    name: str
    command: tuple
    group: str
    minimum: int = 1  # number of processes after the start
    keeps_starting: bool = False  # it starts short-lived processes continuously
    is_orphan: bool = False  # its parent process ends
    variables: dict = field(default_factory=dict, compare=False)


INSTALLED = (
    Case("Firefox", ("firefox-esr", "--no-remote", "about:about"), SHARED + "firefox-esr.desktop", 4),
    # Runs without network access and without a graphics processor.
    Case("Chromium", ("chromium", "--no-first-run", "--disable-gpu", "--disable-background-networking",
                      "--disable-component-update", "--disable-sync", "about:blank"), SHARED + "chromium.desktop", 4),
    Case("LibreOffice", ("libreoffice", "--norestore", "--nologo"), SHARED + "libreoffice-startcenter.desktop", 2),
    Case("terminal", ("xterm", "-e", "bash", "-c", f"sleep 1000 & {COMPILE}"), SHARED + "debian-xterm.desktop", 3,
         keeps_starting=True),
    Case("second terminal", ("xterm", "-e", "sleep", "1000"), SHARED + "debian-xterm.desktop", 2),
    # After the terminal has ended, only the executable identifies it.
    Case("orphan of a terminal", ("xterm", "-e", "sh", "-c", "setsid mousepad & sleep 5"),
         SHARED + "org.xfce.mousepad.desktop", is_orphan=True),
    Case("GNUstep's TextEdit", ("TextEdit",), BUNDLES + "TextEdit.app"),
    Case("Meld (Python)", ("meld",), SHARED + "org.gnome.Meld.desktop"),
    Case("jEdit (Java)", ("jedit",), SHARED + "jedit.desktop"),
)


def needed_libraries(tools):
    """The paths of the shared libraries of programs and of the dynamic linker."""
    output = subprocess.run(["ldd", *tools], stdout=subprocess.PIPE, text=True, check=True, timeout=30).stdout
    return {word for word in output.split() if word.startswith("/") and not word.endswith(":")}


def write_platform(folder):
    for tool in TOOLS:
        (folder / "usr/bin").mkdir(parents=True, exist_ok=True)
        shutil.copy(tool, folder / "usr/bin")
    for library in needed_libraries(TOOLS):
        target = folder / f"usr/{library.removeprefix('/usr')}"
        target.parent.mkdir(parents=True, exist_ok=True)
        shutil.copy(library, target)
    (folder / "files").mkdir()
    (folder / "metadata").write_text(f"[Runtime]\nname={PLATFORM}\nruntime={VERSION}\nsdk={VERSION}\n",
                                     encoding="ascii")


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


def install_flatpak(desktop, session):
    """Installs a Flatpak for this user. Returns its desktop file."""
    folder = WORK / "sandboxed"
    folder.mkdir()
    write_platform(folder / "platform")
    write_application(folder / "application")
    store = folder / "store"
    for arguments in (("build-export", "--runtime", store, folder / "platform", "1"),
                      ("build-export", store, folder / "application", "1"),
                      ("--user", "remote-add", "--no-gpg-verify", "local", store),
                      ("--user", "install", "--noninteractive", "local", f"{PLATFORM}//1", f"{PAINTER}//1")):
        desktop.run("env", *(f"{name}={value}" for name, value in session.items()), "flatpak", *arguments)
    return Path(desktop.environment["XDG_DATA_HOME"], f"flatpak/exports/share/applications/{PAINTER}.desktop")


def install_browser_application(desktop):
    """Installs an application with the process tree of a browser below /opt. Returns program and desktop file."""
    folder = Path("/opt/Paper Clip")
    folder.mkdir()
    for name in ("paperclip", "crash_handler"):
        shutil.copy2(BIN / "application_tree", folder / name)
    entry = Path(desktop.environment["XDG_DATA_HOME"], "applications/paperclip.desktop")
    entry.parent.mkdir(parents=True, exist_ok=True)
    entry.write_text(f'[Desktop Entry]\nType=Application\nName=Paper Clip\nExec="{folder}/paperclip" --no-sandbox %U\n',
                     encoding="ascii")
    return folder / "paperclip", entry


def session_cases(desktop):
    """Cases that need a systemd user instance: a scope, a Flatpak, and an application below /opt."""
    session = systemd_user.start_instance(desktop)
    painter = install_flatpak(desktop, session)
    paperclip, entry = install_browser_application(desktop)
    unit = rf"--unit=app-gnome-debian\x2dxterm-{os.getpid()}.scope"
    return (
        # Processes: the launcher, the bus proxy, and those in the sandbox.
        Case("Flatpak", ("flatpak", "run", painter.stem), str(painter), 6, variables=session),
        # The scope identifies an orphan whose executable belongs to no application.
        Case("orphan in a scope", ("systemd-run", "--user", "--scope", unit, "sh", "-c", "setsid sleep 1000 & sleep 3"),
             SHARED + "debian-xterm.desktop", is_orphan=True, variables=session),
        Case("engine of a browser", (paperclip,), str(entry), 6),
    )


def all_cases(desktop):
    """Every case that this system can start."""
    if systemd_user.can_be_started():
        return INSTALLED + session_cases(desktop)
    warnings.warn("NOT TESTED: Flatpak, scope, application below /opt: they need root, writable cgroups and mounts")
    return INSTALLED
