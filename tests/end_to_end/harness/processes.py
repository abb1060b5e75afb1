# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""Starts and ends child processes, so that all of them end with the tests."""

import contextlib
import ctypes
import os
import signal
import subprocess
import sys
import threading
import time
from pathlib import Path

from harness import stage

PR_SET_CHILD_SUBREAPER = 36


def adopt_orphans():
    """Makes orphaned descendants children of this process (man 2 prctl, PR_SET_CHILD_SUBREAPER)."""
    if ctypes.CDLL(None, use_errno=True).prctl(PR_SET_CHILD_SUBREAPER, 1, 0, 0, 0) != 0:
        raise OSError(ctypes.get_errno(), "PR_SET_CHILD_SUBREAPER")


def parent_of(pid):
    """The parent's pid; None if the process has ended."""
    try:
        stat = Path(f"/proc/{pid}/stat").read_bytes()
    except OSError:
        return None
    return int(stat[stat.rindex(b")") + 2:].split()[1])


def descendants(ancestor):
    """The descendants of a process, children before grandchildren."""
    children = {}
    for entry in os.listdir("/proc"):
        if entry.isdigit():
            children.setdefault(parent_of(int(entry)), []).append(int(entry))
    pids = list(children.get(ancestor, []))
    for pid in pids:  # grows during the loop
        pids.extend(children.get(pid, []))
    return pids


def end_descendants(grace=3.0):
    """Ends every descendant of this process: by SIGTERM, then by SIGKILL."""
    for signal_number, seconds in ((signal.SIGTERM, grace), (signal.SIGKILL, 5.0)):
        deadline = time.monotonic() + seconds
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
    """Removes the zombies among the children."""
    try:
        while os.waitpid(-1, os.WNOHANG)[0] != 0:
            pass
    except ChildProcessError:
        pass


def start(command, environment, log, **options):
    """Starts `command`. It gets SIGTERM when this process ends. Its output goes to the file `log`."""
    with open(log, "ab") as output:
        return subprocess.Popen(["setpriv", "--pdeathsig", "TERM", "--", *map(str, command)], env=environment,
                                stdout=options.pop("stdout", output), stderr=options.pop("stderr", output),
                                stdin=options.pop("stdin", subprocess.DEVNULL), start_new_session=True, **options)


def wait_until(condition, what, timeout=15.0, interval=0.05):
    """Waits until `condition()` returns a true value, and returns that value. `what` is for the error message."""
    deadline = time.monotonic() + timeout
    while True:
        result = condition()
        if result:
            return result
        if time.monotonic() > deadline:
            raise TimeoutError(f"waited {timeout:g} seconds until {what}")
        time.sleep(interval)


def end_on_signal():
    """Makes SIGTERM and SIGHUP raise SystemExit, so that the process cleans up."""
    for signal_number in (signal.SIGTERM, signal.SIGHUP):
        signal.signal(signal_number, lambda number, _frame: sys.exit(128 + number))


@contextlib.contextmanager
def all_ended_afterwards():
    """Ends all descendants of this process at the end of the `with` block, also after a signal."""
    stage.make_folders()
    adopt_orphans()
    # execnet may run a pytest worker in another thread.
    if threading.current_thread() is threading.main_thread():
        end_on_signal()
    try:
        yield
    finally:
        # When process 1 of a PID namespace ends, the kernel ends all others in it.
        if os.getpid() != 1:
            end_descendants()
