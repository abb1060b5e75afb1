# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""Tries what an ordinary user's program may do unless something forbids it; prints what came of each attempt, "done" or
the kernel's refusal."""

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
NEW_USER_NAMESPACE = 0x10000000
UNAME_OF_OLD = 0x0020000
KEYCTL = {"x86_64": 250, "aarch64": 219}[os.uname().machine]
GET_KEYRING, PROCESS_KEYRING = 0, -2


def call(function, *arguments):
    """Calls a function of the C library that gives -1 when it is refused."""
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
        "a socket to this machine": lambda: socket.socket(socket.AF_UNIX).close(),
        "a socket to the network": lambda: socket.socket(socket.AF_INET).close(),
        "a datagram to the network": lambda: socket.socket(socket.AF_INET, socket.SOCK_DGRAM).close(),
        "a socket to the network, newer kind": lambda: socket.socket(socket.AF_INET6).close(),
        "a socket to the kernel": lambda: socket.socket(socket.AF_NETLINK, socket.SOCK_RAW).close(),
        "to be connected to": lambda: listen(folder),
        "memory to write and execute": write_and_execute,
        "a set-group-ID program": lambda: set_group_id(folder),
        "a file's owner": lambda: os.chown(folder, os.getuid(), os.getgid()),
        "a pipe with a name": lambda: os.mkfifo(f"{folder}/pipe"),
        "another scheduler": lambda: os.sched_setscheduler(0, os.SCHED_BATCH, os.sched_param(0)),
        "another priority": lambda: os.nice(1),
        "memory that stays": lambda: call(LIBC.mlock, ctypes.create_string_buffer(1), 1),
        "a keyring": lambda: call(LIBC.syscall, KEYCTL, GET_KEYRING, PROCESS_KEYRING, 1),
        "another personality": lambda: call(LIBC.personality, UNAME_OF_OLD),
        "a user name space": lambda: call(LIBC.unshare, NEW_USER_NAMESPACE),
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
