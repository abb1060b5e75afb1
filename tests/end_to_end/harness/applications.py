# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""The applications that are started, how, and what the groups of their processes are to be known by."""

import os
from dataclasses import dataclass, field

import managed_session

SHARED = "/usr/share/applications/"
BUNDLES = "/usr/lib/GNUstep/Applications/"
COMPILE = "while :; do echo 'int main(){return 0;}' | cc -x c -O2 - -o /dev/null; done"


@dataclass(frozen=True)
class Case:
    """An application, how it is started, and what its group is to be known by."""

    name: str
    command: tuple
    group: str
    least: int = 1  # processes that it has once it is up
    never_rests: bool = False  # it starts processes all the time
    is_orphan: bool = False  # who starts it ends
    variables: dict = field(default_factory=dict, compare=False)


INSTALLED = (
    Case("Firefox", ("firefox-esr", "--no-remote", "about:about"), SHARED + "firefox-esr.desktop", 4),
    # Without a network, and without a processor for pictures.
    Case("Chromium", ("chromium", "--no-first-run", "--disable-gpu", "--disable-background-networking",
                      "--disable-component-update", "--disable-sync", "about:blank"), SHARED + "chromium.desktop", 4),
    Case("LibreOffice", ("libreoffice", "--norestore", "--nologo"), SHARED + "libreoffice-startcenter.desktop", 2),
    Case("terminal", ("xterm", "-e", "bash", "-c", f"sleep 1000 & {COMPILE}"), SHARED + "debian-xterm.desktop", 3,
         never_rests=True),
    Case("second terminal", ("xterm", "-e", "sleep", "1000"), SHARED + "debian-xterm.desktop", 2),
    # Once the terminal is gone, nothing but its own executable tells what it is.
    Case("orphan of a terminal", ("xterm", "-e", "sh", "-c", "setsid mousepad & sleep 5"),
         SHARED + "org.xfce.mousepad.desktop", is_orphan=True),
    Case("GNUstep's TextEdit", ("TextEdit",), BUNDLES + "TextEdit.app"),
    Case("Meld (Python)", ("meld",), SHARED + "org.gnome.Meld.desktop"),
    Case("jEdit (Java)", ("jedit",), SHARED + "jedit.desktop"),
)


def session_cases(desktop):
    """Those that take a session manager: its units, an application in a sandbox, and one that we install."""
    session = managed_session.start_manager(desktop)
    painter = managed_session.install_sandboxed(desktop, session)
    paperclip, entry = managed_session.install_tree(desktop)
    unit = rf"--unit=app-gnome-debian\x2dxterm-{os.getpid()}.scope"
    return (
        # Its launcher, the proxy of its bus and what is within the sandbox.
        Case("Flatpak", ("flatpak", "run", painter.stem), str(painter), 6, variables=session),
        # A scope tells where an orphan came from, though its program belongs to none.
        Case("orphan in a scope", ("systemd-run", "--user", "--scope", unit, "sh", "-c", "setsid sleep 1000 & sleep 3"),
             SHARED + "debian-xterm.desktop", is_orphan=True, variables=session),
        Case("engine of a browser", (paperclip,), str(entry), 6),
    )


def all_cases(desktop):
    """Every case that can be started here; says which can not."""
    if managed_session.can_be_started():
        return INSTALLED + session_cases(desktop)
    print("Left out: a sandbox, a unit of the session manager and an application below /opt. They take root, control "
          "groups that can be written, and mounts of their own.", flush=True)
    return INSTALLED
