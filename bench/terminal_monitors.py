# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""Measures the CPU time of one refresh of terminal monitors, in seconds."""

import os
import pty
import resource
import select
import signal
import struct
import subprocess
import tempfile
import termios
import time
from fcntl import ioctl
from pathlib import Path

REFRESHES = 5
GAP = 0.06  # seconds without output that separate two refreshes
WATCHED = 2.5  # seconds for which a monitor is watched


def children_time():
    """CPU time of all child processes that have exited."""
    used = resource.getrusage(resource.RUSAGE_CHILDREN)
    return used.ru_utime + used.ru_stime


def cost_of(*command):
    """CPU time of a program from its start to its exit."""
    before = children_time()
    subprocess.run(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, check=True, timeout=60,
                   env={**os.environ, "TERM": "xterm-256color"})
    return children_time() - before


def refresh_of_ps():
    return cost_of("ps", "-eo", "pid,ppid,uid,rss,cputimes,comm")


def refresh_of_top():
    """Compares a run of one refresh with a run of several, to exclude the cost of starting the program."""
    once = cost_of("top", "-b", "-d", "0.1", "-n", "1")
    return (cost_of("top", "-b", "-d", "0.1", "-n", str(1 + REFRESHES)) - once) / REFRESHES


def refresh_on_terminal(command, environment):
    """CPU time per refresh of a full-screen terminal program. Each refresh is one burst of output."""
    pid, terminal = pty.fork()
    if pid == 0:
        os.environ.update(environment)
        os.execvp(command[0], command)
    ioctl(terminal, termios.TIOCSWINSZ, struct.pack("HHHH", 50, 160, 0, 0))
    try:
        _bursts(terminal, 1.5)  # start-up
        clock = ~pid << 3 | 2  # the process's CPU clock, as clock_getcpuclockid(3) returns it
        before = time.clock_gettime(clock)
        bursts = _bursts(terminal, WATCHED)
        return (time.clock_gettime(clock) - before) / bursts
    finally:
        os.kill(pid, signal.SIGKILL)
        os.waitpid(pid, 0)
        os.close(terminal)


def _bursts(terminal, seconds):
    """Reads output for that time. Returns the number of bursts, at least 1."""
    count, last = 0, 0.0
    end = time.monotonic() + seconds
    while (left := end - time.monotonic()) > 0:
        if not select.select([terminal], [], [], left)[0]:
            break
        os.read(terminal, 1 << 16)
        now = time.monotonic()
        count += now - last > GAP
        last = now
    return max(count, 1)


def refresh_of_htop():
    return refresh_on_terminal(("htop", "-d", "3"), {"TERM": "xterm-256color", "HOME": "/nonexistent"})


def refresh_of_btop():
    with tempfile.TemporaryDirectory() as home:
        settings = Path(home, "btop/btop.conf")
        settings.parent.mkdir()
        settings.write_text("#? Config file for btop v. 1.2.13\nupdate_ms = 300\nshow_battery = False\n",
                            encoding="ascii")
        return refresh_on_terminal(("btop", "--utf-force"), {"TERM": "xterm-256color", "XDG_CONFIG_HOME": home})


REFRESH = {"ps": refresh_of_ps, "top": refresh_of_top, "htop": refresh_of_htop, "btop": refresh_of_btop}
