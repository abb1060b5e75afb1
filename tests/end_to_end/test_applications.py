# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""Starts real applications as a person would, and compares the groups of all their processes with what is expected.

The program under test is list_groups, which prints one sweep. Fails unless every process is in its application's group
and no other process is, among desktop files that want to mislead it."""

import os
import sys
import time
from pathlib import Path

import hostile_files
from application_cases import all_cases
from processes import adopt_orphans, end_descendants, end_on_signal, parent_of, wait_until
from programs import STAGE, TARN
from virtual_desktop import VirtualDesktop

MARK = "TARN_APPLICATION"
# Daemons that the first application of a kind starts for all that follow: they belong to none.
SHARED_SERVICES = {"gdnc", "gdomap", "gpbs"}

STARTED = {}  # the pid that each case was started with


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
        if len(now) >= case.least and (time.monotonic() - since > 3 or case.never_rests):
            return
        time.sleep(0.3)
    raise TimeoutError(f"{case.name} is not up: {[describe(pid) for pid in before]}\n{desktop.log(case.name)[-2000:]}")


def ended(pid):
    """Whether a process has ended, be it or not that its status was taken."""
    try:
        stat = Path(f"/proc/{pid}/stat").read_text(errors="replace")
    except OSError:
        return True
    return stat[stat.rindex(")") + 2] == "Z"


def groups(desktop):
    """The group's id and name of every process."""
    answer = desktop.run(TARN)
    lines = (line.split("\t") for line in answer.splitlines())
    return {int(pid): (group, name) for pid, group, name in lines}


def describe(pid):
    try:
        words = Path(f"/proc/{pid}/cmdline").read_bytes().replace(b"\0", b" ").decode(errors="replace")
    except OSError:
        words = "(gone)"
    return f"{pid} {words[:90]}"


def judge(desktop, cases):
    """Prints the table; gives the number of processes that are missing in a group or wrong in one."""
    # What starts or ends between the two looks is left out.
    before = {case: processes_of(case) for case in cases}
    found = groups(desktop)
    expected = {}
    for case in cases:
        for pid in before[case] & processes_of(case) & found.keys():
            expected[pid] = case.group
    wanted = {case.group for case in cases}
    hits = {pid for pid, group in expected.items() if found[pid][0] == group}
    strangers = {pid for pid, (group, _) in found.items() if group in wanted and pid not in expected
                 and not ended(pid) and not any(pid in processes_of(case) for case in cases)}
    wrong = {pid for pid in expected if found[pid][0] in wanted and pid not in hits} | strangers
    for case in cases:
        own = {pid for pid in before[case] if pid in expected}
        names = {found[pid][1] for pid in own & hits}
        print(f"{case.name:26} {len(own & hits):3} of {len(own):3} in {', '.join(sorted(names))}")
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
            hostile_files.write(Path(desktop.environment["XDG_DATA_HOME"], "applications"), "xterm")
            chosen = [case for case in all_cases(desktop) if not sys.argv[1:] or case.name in sys.argv[1:]]
            for case in chosen:
                variables = {**case.variables, MARK: case.name}
                STARTED[case.name] = desktop.start(case.name, case.command, variables).pid
            for case in chosen:
                wait_until_up(desktop, case)
            wait_until(lambda: all(ended(STARTED[case.name]) for case in chosen if case.is_orphan),
                       "who started the orphans is gone", timeout=20)
            mistakes = judge(desktop, chosen)
            if (STAGE / "pictures").exists() or not (STAGE / "pictures").mkdir():
                desktop.take_picture(STAGE / "pictures/applications.png")
    finally:
        end_descendants()
    (STAGE / "counts").write_text(f"{len(chosen) if not mistakes else 0} {mistakes}\n", encoding="ascii")
    return 1 if mistakes else 0


if __name__ == "__main__":
    sys.exit(main())
