# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""Child processes of the harness: started so that none outlives it."""

import ctypes
import os
import signal
import subprocess
import sys
import time
from pathlib import Path

PR_SET_CHILD_SUBREAPER = 36


def adopt_orphans():
    """Makes this process the parent of every descendant whose own parent ends, so that it can end them all."""
    if ctypes.CDLL(None, use_errno=True).prctl(PR_SET_CHILD_SUBREAPER, 1, 0, 0, 0) != 0:
        raise OSError(ctypes.get_errno(), "cannot become the parent of orphaned processes")


def parent_of(pid):
    """The parent's pid, or None when the process is gone."""
    try:
        stat = Path(f"/proc/{pid}/stat").read_bytes()
    except OSError:
        return None
    return int(stat[stat.rindex(b")") + 2:].split()[1])


def descendants(ancestor):
    """Every process below `ancestor`, nearest first."""
    children = {}
    for entry in os.listdir("/proc"):
        if entry.isdigit():
            children.setdefault(parent_of(int(entry)), []).append(int(entry))
    found = list(children.get(ancestor, []))
    for pid in found:
        found.extend(children.get(pid, []))
    return found


def end_descendants(grace=3.0):
    """Ends every descendant of this process: politely, then by force."""
    for signal_number, patience in ((signal.SIGTERM, grace), (signal.SIGKILL, 5.0)):
        deadline = time.monotonic() + patience
        remaining = descendants(os.getpid())
        for pid in remaining:
            try:
                os.kill(pid, signal_number)
            except ProcessLookupError:
                pass
        while remaining and time.monotonic() < deadline:
            reap()
            remaining = descendants(os.getpid())
            time.sleep(0.05)
        if not remaining:
            return


def reap():
    """Takes the exit status of every descendant that has ended."""
    try:
        while os.waitpid(-1, os.WNOHANG)[0] != 0:
            pass
    except ChildProcessError:
        pass


def start(command, environment, log, **options):
    """Starts `command`, which ends with the harness; what it says goes to the file `log`."""
    with open(log, "ab") as output:
        return subprocess.Popen(["setpriv", "--pdeathsig", "TERM", "--", *map(str, command)], env=environment,
                                stdout=options.pop("stdout", output), stderr=options.pop("stderr", output),
                                stdin=options.pop("stdin", subprocess.DEVNULL), start_new_session=True, **options)


def wait_until(condition, what, timeout=15.0, interval=0.05):
    """Waits until `condition()` gives something true and returns that; fails with `what` in words."""
    deadline = time.monotonic() + timeout
    while True:
        result = condition()
        if result:
            return result
        if time.monotonic() > deadline:
            raise TimeoutError(f"waited {timeout:g} seconds in vain until {what}")
        time.sleep(interval)


def end_on_signal():
    """Lets SIGTERM and SIGHUP unwind the program as SIGINT does, so that it cleans up."""
    for signal_number in (signal.SIGTERM, signal.SIGHUP):
        signal.signal(signal_number, lambda number, _frame: sys.exit(128 + number))
