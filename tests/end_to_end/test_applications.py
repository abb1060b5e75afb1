# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""Starts real applications and compares the groups of their processes, which list_groups prints, with the
expected ones. Invalid and misleading desktop files are installed at the same time."""

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

CASE_VARIABLE = "TARN_APPLICATION"  # environment variable that contains the name of the case
# Daemons of GNUstep, shared by several applications: they belong to none.
SHARED_SERVICES = {"gdnc", "gdomap", "gpbs"}

STARTED_PIDS = {}  # case name: pid of the process that the test started


def processes_of(case):
    """The pids of all processes of a case: the started one, those with the case's environment variable, and all their
    descendants. (Some programs overwrite their environment, and some make it unreadable.)"""
    variable = f"{CASE_VARIABLE}={case.name}".encode()
    pids, parents = {STARTED_PIDS[case.name]}, {}
    for entry in os.listdir("/proc"):
        if not entry.isdigit():
            continue
        pid = int(entry)
        try:
            stat = Path(f"/proc/{pid}/stat").read_text(errors="replace")
            if stat[stat.rindex(")") + 2] == "Z" or stat[stat.index("(") + 1:stat.rindex(")")] in SHARED_SERVICES:
                continue
            parents[pid] = parent_of(pid)
            if variable in Path(f"/proc/{pid}/environ").read_bytes().split(b"\0"):
                pids.add(pid)
        except OSError:
            continue
    while children := {pid for pid, parent in parents.items() if parent in pids and pid not in pids}:
        pids |= children
    return pids & parents.keys()


def wait_until_started(desktop, case, timeout=90):
    """Waits until the application has its minimum number of processes, and none has started or ended for 3 s."""
    deadline = time.monotonic() + timeout
    previous, changed_at = set(), time.monotonic()
    while time.monotonic() < deadline:
        now = processes_of(case)
        if now != previous:
            previous, changed_at = now, time.monotonic()
        if len(now) >= case.minimum and (time.monotonic() - changed_at > 3 or case.keeps_starting):
            return
        time.sleep(0.3)
    raise TimeoutError(f"{case.name} has not started: {[describe(pid) for pid in previous]}\n"
                       f"{desktop.log(case.name)[-2000:]}")


def has_ended(pid):
    """Whether a process has ended. A zombie has ended."""
    try:
        stat = Path(f"/proc/{pid}/stat").read_text(errors="replace")
    except OSError:
        return True
    return stat[stat.rindex(")") + 2] == "Z"


def groups(desktop):
    """Returns {pid: (group id, group name)} for every process."""
    lines = (line.split("\t") for line in desktop.run(LIST_GROUPS).splitlines())
    return {int(pid): (group, name) for pid, group, name in lines}


def describe(pid):
    try:
        command = Path(f"/proc/{pid}/cmdline").read_bytes().replace(b"\0", b" ").decode(errors="replace")
    except OSError:
        command = "(ended)"
    return f"{pid} {command[:90]}"


def find_misgrouped(desktop, cases):
    """Writes a table to applications.txt. Returns a text for each process that is missing in its group, or that
    belongs to no case and is in the group of one."""
    # Processes that start or end between the two readings are ignored.
    before = {case: processes_of(case) for case in cases}
    actual = groups(desktop)
    expected = {}
    for case in cases:
        for pid in before[case] & processes_of(case) & actual.keys():
            expected[pid] = case.group
    expected_groups = {case.group for case in cases}
    correct = {pid for pid, group in expected.items() if actual[pid][0] == group}
    unrelated = {pid for pid, (group, _) in actual.items() if group in expected_groups and pid not in expected
                 and not has_ended(pid) and not any(pid in processes_of(case) for case in cases)}
    wrong = {pid for pid in expected if actual[pid][0] in expected_groups and pid not in correct} | unrelated
    table = []
    for case in cases:
        pids = {pid for pid in before[case] if pid in expected}
        names = {actual[pid][1] for pid in pids & correct}
        table.append(f"{case.name:26} {len(pids & correct):3} of {len(pids):3} in {', '.join(sorted(names))}")
    recall = 100 * len(correct) / len(expected)
    precision = 100 * len(correct) / (len(correct) + len(wrong)) if correct else 0
    table.append(f"{len(expected)} processes: precision {precision:.1f} %, recall {recall:.1f} %")
    (RESULTS / "applications.txt").write_text("\n".join(table) + "\n", encoding="utf-8")
    missed = [f"missed: {describe(pid)} is in {actual[pid][0]}, not in {expected[pid]}"
              for pid in sorted(expected.keys() - correct)]
    return missed + [f"wrong: {describe(pid)} is in {actual[pid][0]}" for pid in sorted(unrelated)]


def test_every_process_is_in_the_group_of_its_application():
    if not LIST_GROUPS.exists():
        pytest.skip("NOT TESTED: there is no program list_groups; build the C++ tests")
    with VirtualDesktop() as desktop:
        hostile_files.write(Path(desktop.environment["XDG_DATA_HOME"], "applications"), "xterm")
        cases = all_cases(desktop)
        for case in cases:
            variables = {**case.variables, CASE_VARIABLE: case.name}
            STARTED_PIDS[case.name] = desktop.start(case.name, case.command, variables).pid
        for case in cases:
            wait_until_started(desktop, case)
        wait_until(lambda: all(has_ended(STARTED_PIDS[case.name]) for case in cases if case.is_orphan),
                   "the parents of the orphans have ended", timeout=20)
        misgrouped = find_misgrouped(desktop, cases)
        desktop.take_screenshot(RESULTS / "applications.png")
    assert not misgrouped
