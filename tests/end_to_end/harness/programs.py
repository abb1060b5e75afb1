# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""Starts Tarn, and programs with a known use of memory and processor, on a virtual desktop."""

import os
import shutil
from pathlib import Path

from harness import proc_reader
from harness.popover import Popover
from harness.processes import start, wait_until
from harness.stage import BIN, TARN, WORK
from harness.status_item import PanelItem

HOG_MEGABYTES = 300
FOREIGN_MEGABYTES = 200
BACKGROUND_PROCESSES = 10
BACKGROUND_MEGABYTES = 16

# Without PID namespaces the processes of another test run are visible, so each run has unique names.
HOG = f"Hog {os.getpid()}"
BURNER = f"Burner {os.getpid()}"

# The sanitizers' options reach Tarn, so that Tarn exits with the sanitizer's status when a sanitizer reports an error.
SANITIZERS = {name: os.environ[name] for name in ("ASAN_OPTIONS", "UBSAN_OPTIONS", "LSAN_OPTIONS")
              if name in os.environ}

_program = Path(os.environ.get("TARN_PROGRAM", TARN))


def choose_program(path):
    """Makes `path` the program that `Tarn` and `start_bare` start from now on."""
    global _program
    _program = path


def tarn_program():
    return _program


class Tarn:
    """A running Tarn with its item in the panel and its popover. `wrapper` is a command prefix that runs Tarn in the
    same process. `find_item` finds the item by desktop and pid."""

    def __init__(self, desktop, wrapper=(), environment=None, find_item=PanelItem):
        self.process = desktop.start("tarn", [*wrapper, tarn_program()], SANITIZERS | (environment or {}))
        self.pid = self.process.pid
        self.item = find_item(desktop, self.pid)
        self.popover = Popover(desktop, self.pid, self.item)


def start_bare(environment, log):
    """Starts Tarn in an environment where a service may be missing. Its output goes to the file `log`."""
    return start([tarn_program()], environment | SANITIZERS, log)


def application(name, program):
    """Copies `program` to an application folder, so that it belongs to the application `name`. Returns the copy."""
    folder = WORK / "applications" / f"{name}.app"
    folder.mkdir(parents=True, exist_ok=True)
    return shutil.copy2(BIN / program, folder / program)


def start_holder(desktop, log, command):
    """Starts a program that holds memory and waits until it holds the memory."""
    holder = desktop.start(log, command)
    wait_until(lambda: "ready" in desktop.log(log), f"{log} holds its memory")
    return holder


def start_hog(desktop, name=HOG, child=None):
    """Starts an application of two processes: one holds memory; its child, by default, shows a window."""
    # The popover lists eight applications. Among large processes the hog needs more memory to be listed.
    others = proc_reader.largest_footprints(5)[-1] * 5 // 4 // proc_reader.MEGABYTE
    megabytes = max(HOG_MEGABYTES, others)
    child = child or ["xmessage", "-title", name, "-font", "fixed", f"Holding {megabytes} MB."]
    return start_holder(desktop, "hog", [application(name, "hold_memory"), megabytes, *child])


def start_burner(desktop, name=BURNER):
    """Starts an application of one process that keeps a core busy."""
    return desktop.start("burner", [application(name, "burn_core")])


def start_background(environment):
    """Starts idle processes, so that even in an empty PID namespace the list of applications is full and stable."""
    folder = WORK / "background"
    folder.mkdir(exist_ok=True)
    for number in range(BACKGROUND_PROCESSES):
        program = shutil.copy2(BIN / "hold_memory", folder / f"background-{number}")
        start([program, BACKGROUND_MEGABYTES + number], environment, WORK / "background.log")


def foreign_process(desktop):
    """The pid of a process that holds memory and whose executable link this user may not read: a process of root if
    root started the tests."""
    if "TARN_FOREIGN_PID" in os.environ:
        return int(os.environ["TARN_FOREIGN_PID"])
    program = shutil.copy2(BIN / "hold_memory", WORK / f"foreign_memory_{os.getpid()}")
    return start_holder(desktop, "foreign", [program, "--private", FOREIGN_MEGABYTES]).pid
