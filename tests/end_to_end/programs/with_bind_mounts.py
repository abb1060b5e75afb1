#!/usr/bin/python3
# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""with_bind_mounts.py SOURCE TARGET... -- PROGRAM [ARGUMENT...]: bind-mounts each SOURCE on its TARGET in a separate
mount namespace and runs PROGRAM there. Needs a kernel that permits unprivileged user namespaces."""

import ctypes
import os
import sys
from pathlib import Path

CLONE_NEWNS = 0x00020000
CLONE_NEWUSER = 0x10000000
MS_BIND = 0x1000
MS_REC = 0x4000
MS_PRIVATE = 0x40000

LIBC = ctypes.CDLL(None, use_errno=True)


def check(result, what):
    if result != 0:
        raise OSError(ctypes.get_errno(), f"{what}: {os.strerror(ctypes.get_errno())}")


def enter_namespaces():
    user, group = os.getuid(), os.getgid()
    check(LIBC.unshare(CLONE_NEWUSER | CLONE_NEWNS), "unshare of user and mount namespace")
    Path("/proc/self/setgroups").write_text("deny", encoding="ascii")
    Path("/proc/self/uid_map").write_text(f"{user} {user} 1", encoding="ascii")
    Path("/proc/self/gid_map").write_text(f"{group} {group} 1", encoding="ascii")
    check(LIBC.mount(None, b"/", None, MS_REC | MS_PRIVATE, None), "making mounts private")


def main():
    end = sys.argv.index("--")
    paths, command = sys.argv[1:end], sys.argv[end + 1:]
    enter_namespaces()
    for source, target in zip(paths[::2], paths[1::2], strict=True):
        check(LIBC.mount(os.fsencode(source), os.fsencode(target), None, MS_BIND, None), f"{source} on {target}")
    os.execv(command[0], command)


if __name__ == "__main__":
    main()
