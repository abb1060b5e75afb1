# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""Starts real applications and compares the groups of all their processes, which list_groups prints, with the expected
ones, beside desktop files that try to mislead it."""

import os
import time
from pathlib import Path

import pytest

from harness import hostile_files
from harness.applications import all_cases
from harness.processes import parent_of, wait_until
from harness.stage import LIST_GROUPS, RESULTS
from harness.virtual_desktop import VirtualDesktop

pytestmark = [pytest.mark.applications, pytest.mark.timeout(600)]

MARK = "TARN_APPLICATION"  # environment variable
# Daemons of GNUstep, shared by several applications: they belong to none.
SHARED_SERVICES = {"gdnc", "gdomap", "gpbs"}

STARTED = {}  # the pid that each case was started with


def processes_of(case):
    """The pids of all processes of a case: the started one, those with the case's environment variable, and all their
    descendants. (Some programs overwrite their environment, and some make it unreadable.)"""
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
    while children := {pid for pid, parent in parents.items() if parent in own and pid not in own}:
        own |= children
    return own & parents.keys()


def wait_until_started(desktop, case, timeout=90):
    """Waits until the application has its processes and no more start."""
    deadline = time.monotonic() + timeout
    before, since = set(), time.monotonic()
    while time.monotonic() < deadline:
        now = processes_of(case)
        if now != before:
            before, since = now, time.monotonic()
        if len(now) >= case.least and (time.monotonic() - since > 3 or case.never_rests):
            return
        time.sleep(0.3)
    raise TimeoutError(f"{case.name} has not started: {[describe(pid) for pid in before]}\n"
                       f"{desktop.log(case.name)[-2000:]}")


def has_ended(pid):
    """Whether a process has ended. Zombies have."""
    try:
        stat = Path(f"/proc/{pid}/stat").read_text(errors="replace")
    except OSError:
        return True
    return stat[stat.rindex(")") + 2] == "Z"


def groups(desktop):
    """The group's id and name of every process."""
    lines = (line.split("\t") for line in desktop.run(LIST_GROUPS).splitlines())
    return {int(pid): (group, name) for pid, group, name in lines}


def describe(pid):
    try:
        command = Path(f"/proc/{pid}/cmdline").read_bytes().replace(b"\0", b" ").decode(errors="replace")
    except OSError:
        command = "(ended)"
    return f"{pid} {command[:90]}"


def mistakes(desktop, cases):
    """Writes a table to applications.txt. Returns the processes that are missing in their group or in a wrong one."""
    # Processes that start or end between the two readings are ignored.
    before = {case: processes_of(case) for case in cases}
    found = groups(desktop)
    expected = {}
    for case in cases:
        for pid in before[case] & processes_of(case) & found.keys():
            expected[pid] = case.group
    wanted = {case.group for case in cases}
    hits = {pid for pid, group in expected.items() if found[pid][0] == group}
    strangers = {pid for pid, (group, _) in found.items() if group in wanted and pid not in expected
                 and not has_ended(pid) and not any(pid in processes_of(case) for case in cases)}
    wrong = {pid for pid in expected if found[pid][0] in wanted and pid not in hits} | strangers
    table = []
    for case in cases:
        own = {pid for pid in before[case] if pid in expected}
        names = {found[pid][1] for pid in own & hits}
        table.append(f"{case.name:26} {len(own & hits):3} of {len(own):3} in {', '.join(sorted(names))}")
    recall = 100 * len(hits) / len(expected)
    precision = 100 * len(hits) / (len(hits) + len(wrong)) if hits else 0
    table.append(f"{len(expected)} processes: precision {precision:.1f} %, recall {recall:.1f} %")
    (RESULTS / "applications.txt").write_text("\n".join(table) + "\n", encoding="utf-8")
    missed = [f"missed: {describe(pid)} is in {found[pid][0]}, not in {expected[pid]}"
              for pid in sorted(expected.keys() - hits)]
    return missed + [f"wrong: {describe(pid)} is in {found[pid][0]}" for pid in sorted(strangers)]


def test_every_process_is_in_the_group_of_its_application():
    if not LIST_GROUPS.exists():
        pytest.skip("NOT TESTED: there is no program list_groups; build the tests in C++")
    with VirtualDesktop() as desktop:
        hostile_files.write(Path(desktop.environment["XDG_DATA_HOME"], "applications"), "xterm")
        cases = all_cases(desktop)
        for case in cases:
            variables = {**case.variables, MARK: case.name}
            STARTED[case.name] = desktop.start(case.name, case.command, variables).pid
        for case in cases:
            wait_until_started(desktop, case)
        wait_until(lambda: all(has_ended(STARTED[case.name]) for case in cases if case.is_orphan),
                   "the parents of the orphans have ended", timeout=20)
        found = mistakes(desktop, cases)
        desktop.take_screenshot(RESULTS / "applications.png")
    assert not found
