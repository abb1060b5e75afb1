# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""Starts real applications as a person would, and compares the groups of all their processes with what is expected.

The program under test is list_groups, which prints one sweep. Fails unless every process is in its application's group
and no other process is."""

import os
import subprocess
import sys
import time
from dataclasses import dataclass
from pathlib import Path

from processes import adopt_orphans, end_descendants, end_on_signal, parent_of, wait_until
from programs import STAGE, TARN
from virtual_desktop import VirtualDesktop

MARK = "TARN_APPLICATION"
SHARED = "/usr/share/applications/"
BUNDLES = "/usr/lib/GNUstep/Applications/"
# Daemons that the first application of a kind starts for all that follow: they belong to none.
SHARED_SERVICES = {"gdnc", "gdomap", "gpbs"}
COMPILE = "while :; do echo 'int main(){return 0;}' | cc -x c -O2 - -o /dev/null; done"

STARTED = {}  # the pid that each case was started with


@dataclass(frozen=True)
class Case:
    """An application, how it is started, and what its group is to be known by."""

    name: str
    command: tuple
    group: str
    least: int = 1  # processes that it has once it is up


CASES = (
    Case("Firefox", ("firefox-esr", "--no-remote", "about:about"), SHARED + "firefox-esr.desktop", 4),
    # Without a network, and without a processor for pictures.
    Case("Chromium", ("chromium", "--no-first-run", "--disable-gpu", "--disable-background-networking",
                      "--disable-component-update", "--disable-sync", "about:blank"), SHARED + "chromium.desktop", 4),
    Case("LibreOffice", ("libreoffice", "--norestore", "--nologo"), SHARED + "libreoffice-startcenter.desktop", 2),
    Case("terminal", ("xterm", "-e", "bash", "-c", f"sleep 1000 & {COMPILE}"), SHARED + "debian-xterm.desktop", 3),
    Case("second terminal", ("xterm", "-e", "sleep", "1000"), SHARED + "debian-xterm.desktop", 2),
    # Once the terminal is gone, nothing but its own executable tells what it is.
    Case("orphan of a terminal", ("xterm", "-e", "sh", "-c", "setsid mousepad & sleep 5"),
         SHARED + "org.xfce.mousepad.desktop"),
    Case("GNUstep's TextEdit", ("TextEdit",), BUNDLES + "TextEdit.app"),
    Case("Meld (Python)", ("meld",), SHARED + "org.gnome.Meld.desktop"),
    Case("jEdit (Java)", ("jedit",), SHARED + "jedit.desktop"),
)


def processes_of(case):
    """The pids of all processes of a case: the one that was started, those that bear its mark, wherever they are now, and
    all below them. (Some programs write over their environment, and some hide it.)"""
    mark = f"{MARK}={case.name}".encode()
    own, parents = {STARTED[case.name]}, {}
    for entry in os.listdir("/proc"):
        if not entry.isdigit():
            continue
        pid = int(entry)
        try:
            stat = Path(f"/proc/{pid}/stat").read_text(errors="replace")
            if stat[stat.rindex(")") + 2] == "Z" or stat[stat.index("(") + 1:stat.rindex(")")] in SHARED_SERVICES:
                continue
            parents[pid] = parent_of(pid)
            if mark in Path(f"/proc/{pid}/environ").read_bytes().split(b"\0"):
                own.add(pid)
        except OSError:
            continue
    while below := {pid for pid, parent in parents.items() if parent in own and pid not in own}:
        own |= below
    return own & parents.keys()


def wait_until_up(desktop, case, patience=90):
    """Waits until the application has the processes that it is to have, and until none came for a while."""
    deadline = time.monotonic() + patience
    before, since = set(), time.monotonic()
    while time.monotonic() < deadline:
        now = processes_of(case)
        if now != before:
            before, since = now, time.monotonic()
        if len(now) >= case.least and (time.monotonic() - since > 3 or case.name == "terminal"):
            return
        time.sleep(0.3)
    raise TimeoutError(f"{case.name} is not up: {[describe(pid) for pid in before]}\n{desktop.log(case.name)[-2000:]}")


def ended(pid):
    """Whether a child of ours has ended, be it or not that its status was taken."""
    try:
        stat = Path(f"/proc/{pid}/stat").read_text(errors="replace")
    except OSError:
        return True
    return stat[stat.rindex(")") + 2] == "Z"


def groups():
    """The group's id and name of every process."""
    answer = subprocess.run([TARN], stdout=subprocess.PIPE, text=True, check=True, timeout=60).stdout
    lines = (line.split("\t") for line in answer.splitlines())
    return {int(pid): (group, name) for pid, group, name in lines}


def describe(pid):
    try:
        words = Path(f"/proc/{pid}/cmdline").read_bytes().replace(b"\0", b" ").decode(errors="replace")
    except OSError:
        words = "(gone)"
    return f"{pid} {words[:90]}"


def judge(cases):
    """Prints the table; gives the number of processes that are missing in a group or wrong in one."""
    # What starts or ends between the two looks is left out.
    before = {case: processes_of(case) for case in cases}
    found = groups()
    expected = {}
    for case in cases:
        for pid in before[case] & processes_of(case) & found.keys():
            expected[pid] = case.group
    wanted = {case.group for case in cases}
    hits = {pid for pid, group in expected.items() if found[pid][0] == group}
    strangers = {pid for pid, (group, _) in found.items() if group in wanted and pid not in expected
                 and Path(f"/proc/{pid}").exists() and not any(pid in processes_of(case) for case in cases)}
    wrong = {pid for pid in expected if found[pid][0] in wanted and pid not in hits} | strangers
    for case in cases:
        own = {pid for pid in before[case] if pid in expected}
        names = {found[pid][1] for pid in own & hits}
        print(f"{case.name:22} {len(own & hits):3} of {len(own):3} in {', '.join(sorted(names))}")
    for pid in sorted(set(expected) - hits):
        print(f"  missed: {describe(pid)} is in {found[pid][0]}, not in {expected[pid]}")
    for pid in sorted(strangers):
        print(f"  wrong: {describe(pid)} is in {found[pid][0]}")
    recall = 100 * len(hits) / len(expected)
    precision = 100 * len(hits) / (len(hits) + len(wrong)) if hits else 0
    print(f"{len(expected)} processes: precision {precision:.1f} %, recall {recall:.1f} %", flush=True)
    return len(expected) - len(hits) + len(wrong)


def main():
    adopt_orphans()
    end_on_signal()
    try:
        with VirtualDesktop(STAGE) as desktop:
            chosen = [case for case in CASES if not sys.argv[1:] or case.name in sys.argv[1:]]
            for case in chosen:
                STARTED[case.name] = desktop.start(case.name, case.command, {MARK: case.name}).pid
            for case in chosen:
                wait_until_up(desktop, case)
            wait_until(lambda: all(ended(STARTED[case.name]) for case in chosen if case.name.startswith("orphan")),
                       "the orphan's terminal is gone", timeout=20)
            mistakes = judge(chosen)
            if (STAGE / "pictures").exists() or not (STAGE / "pictures").mkdir():
                desktop.take_picture(STAGE / "pictures/applications.png")
    finally:
        end_descendants()
    (STAGE / "counts").write_text(f"{len(CASES) if not mistakes else 0} {mistakes}\n", encoding="ascii")
    return 1 if mistakes else 0


if __name__ == "__main__":
    sys.exit(main())
