# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""Attempts operations that an ordinary program may do unless a systemd unit forbids them. Prints the
result of each attempt as JSON: "done" or the name of the error."""

import ctypes
import errno
import json
import mmap
import os
import socket
import stat
import tempfile
from pathlib import Path

LIBC = ctypes.CDLL(None, use_errno=True)
CLONE_NEWUSER = 0x10000000
UNAME26 = 0x0020000
KEYCTL = {"x86_64": 250, "aarch64": 219}[os.uname().machine]
GET_KEYRING, PROCESS_KEYRING = 0, -2


def call(function, *arguments):
    """Calls a C function that returns -1 on failure."""
    if function(*arguments) == -1:
        raise OSError(ctypes.get_errno(), "refused")


def listen(folder):
    with socket.socket(socket.AF_UNIX) as server:
        server.bind(f"{folder}/socket")


def set_group_id(folder):
    path = Path(folder, "program")
    path.touch()
    path.chmod(0o755 | stat.S_ISGID)


def write_and_execute():
    mmap.mmap(-1, mmap.PAGESIZE, prot=mmap.PROT_READ | mmap.PROT_WRITE | mmap.PROT_EXEC).close()


def attempts(folder):
    return {
        "AF_UNIX socket": lambda: socket.socket(socket.AF_UNIX).close(),
        "AF_INET stream socket": lambda: socket.socket(socket.AF_INET).close(),
        "AF_INET datagram socket": lambda: socket.socket(socket.AF_INET, socket.SOCK_DGRAM).close(),
        "AF_INET6 socket": lambda: socket.socket(socket.AF_INET6).close(),
        "AF_NETLINK socket": lambda: socket.socket(socket.AF_NETLINK, socket.SOCK_RAW).close(),
        "bind": lambda: listen(folder),
        "writable and executable memory": write_and_execute,
        "chmod of a set-group-ID program": lambda: set_group_id(folder),
        "chown": lambda: os.chown(folder, os.getuid(), os.getgid()),
        "mkfifo": lambda: os.mkfifo(f"{folder}/pipe"),
        "sched_setscheduler": lambda: os.sched_setscheduler(0, os.SCHED_BATCH, os.sched_param(0)),
        "nice": lambda: os.nice(1),
        "mlock": lambda: call(LIBC.mlock, ctypes.create_string_buffer(1), 1),
        "keyctl": lambda: call(LIBC.syscall, KEYCTL, GET_KEYRING, PROCESS_KEYRING, 1),
        "personality": lambda: call(LIBC.personality, UNAME26),
        "unshare of the user namespace": lambda: call(LIBC.unshare, CLONE_NEWUSER),
    }


def outcome(attempt):
    try:
        attempt()
    except OSError as refusal:
        return errno.errorcode[refusal.errno]
    return "done"


def main():
    with tempfile.TemporaryDirectory() as folder:
        print(json.dumps({name: outcome(attempt) for name, attempt in attempts(folder).items()}))


if __name__ == "__main__":
    main()
