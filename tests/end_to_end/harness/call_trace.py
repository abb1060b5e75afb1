# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""System calls of a program that access other processes, files or sockets, also those that fail, read with strace."""

import re
from dataclasses import dataclass
from pathlib import Path

SOCKETS = ("socket", "connect", "bind", "listen", "accept", "accept4")
OPENINGS = ("open", "openat", "openat2", "creat")
CHANGES = ("mkdir", "mkdirat", "rmdir", "mknod", "mknodat", "link", "linkat", "symlink", "symlinkat", "unlink",
           "unlinkat", "rename", "renameat", "renameat2", "truncate", "chmod", "fchmodat", "chown", "lchown",
           "fchownat", "utime", "utimes", "futimesat", "utimensat", "setxattr", "lsetxattr", "removexattr",
           "lremovexattr")
EXECUTIONS = ("execve", "execveat")
PRIVILEGED = ("ptrace", "process_vm_readv", "process_vm_writev", "mount", "umount2", "pivot_root", "chroot", "setns",
              "unshare", "setuid", "setgid", "setresuid", "setresgid", "setgroups", "capset", "bpf", "perf_event_open",
              "init_module", "finit_module", "keyctl", "add_key", "io_uring_setup", "swapon", "settimeofday", "mq_open")
WRITING = re.compile(r"O_(WRONLY|RDWR|CREAT|TRUNC|APPEND|TMPFILE)")
LINE = re.compile(r"\d+ +(?P<name>\w+)\((?P<arguments>.*)")
QUOTED = re.compile(r'"((?:[^"\\]|\\.)*)"')


@dataclass(frozen=True)
class Call:
    """A system call: its name and the rest of its line."""

    name: str
    arguments: str

    def texts(self):
        """The quoted strings among its arguments, for example paths."""
        return QUOTED.findall(self.arguments)


class CallTrace:
    """Traces a program that is started with the command prefix `wrapper`, and its child processes, to the file `log`.
    The program keeps its pid."""

    def __init__(self, log):
        self._log = Path(log)
        self.wrapper = ("strace", "-D", "-f", "--seccomp-bpf", "-qq", "-s", "4096", "-e", "signal=none", "-e",
                        f"trace={','.join(SOCKETS + OPENINGS + CHANGES + EXECUTIONS + PRIVILEGED)}", "-o", self._log)

    def calls(self, names):
        """The calls so far with one of these names, in order."""
        matches = map(LINE.match, self._log.read_text(encoding="utf-8", errors="replace").splitlines())
        return [Call(match["name"], match["arguments"]) for match in matches if match and match["name"] in names]

    def writes(self):
        """The calls so far that open files for writing, create files or change their metadata."""
        return [call for call in self.calls(OPENINGS + CHANGES)
                if call.name not in OPENINGS or call.name == "creat" or WRITING.search(call.arguments)]
