# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""Starts Tarn, and programs for it to measure, on a virtual desktop."""

import os
import shutil
from pathlib import Path

import proc_reader
from menu_bar import MenuBarItem
from popover import Popover
from processes import start, wait_until

HOG_MEGABYTES = 300
FOREIGN_MEGABYTES = 200

# Another run of these tests may be under way on this machine: the programs of each bear names of their own.
HOG = f"Hog {os.getpid()}"
BURNER = f"Burner {os.getpid()}"

# A folder that this user may read: the programs, and room for what they write.
STAGE = Path(os.environ["TARN_STAGE"])
TARN = STAGE / "bin/tarn"

# A sanitized Tarn is to end with a status of its own when it finds something.
SANITIZERS = {name: os.environ[name] for name in ("ASAN_OPTIONS", "UBSAN_OPTIONS", "LSAN_OPTIONS")
              if name in os.environ}


class Tarn:
    """A running Tarn with its item in the panel and its popover. `wrapper` are the words of a program that runs Tarn as
    the same process; `find_item` finds the item, by desktop and pid."""

    def __init__(self, desktop, wrapper=(), environment=None, find_item=MenuBarItem):
        self.process = desktop.start("tarn", [*wrapper, TARN], SANITIZERS | (environment or {}))
        self.pid = self.process.pid
        self.item = find_item(desktop, self.pid)
        self.popover = Popover(desktop, self.pid, self.item)


def application(name, program):
    """The path of a copy of `program` inside an application folder: it belongs to the application `name`."""
    folder = STAGE / "applications" / f"{name}.app"
    folder.mkdir(parents=True, exist_ok=True)
    return shutil.copy2(STAGE / "bin" / program, folder / program)


def start_holder(desktop, log, command):
    """Starts a program that holds memory and waits until it does."""
    holder = desktop.start(log, command)
    wait_until(lambda: "ready" in desktop.log(log), f"{log} holds its memory")
    return holder


def start_hog(desktop, name=HOG, child=None):
    """Starts an application that holds memory: a process that does, and a child of it, usually one with a window."""
    # On a machine full of larger processes it takes more to be among the eight that are listed.
    others = proc_reader.largest_footprints(5)[-1] * 5 // 4 // proc_reader.MEGABYTE
    megabytes = max(HOG_MEGABYTES, others)
    child = child or ["xmessage", "-title", name, "-font", "fixed", f"Holding {megabytes} MB."]
    return start_holder(desktop, "hog", [application(name, "hold_memory"), megabytes, *child])


def start_burner(desktop, name=BURNER):
    """Starts an application of one process that keeps a core busy."""
    return desktop.start("burner", [application(name, "burn_core")])


def foreign_process(desktop):
    """The pid of a process that holds memory and whose executable link this user may not read."""
    if "TARN_FOREIGN_PID" in os.environ:
        return int(os.environ["TARN_FOREIGN_PID"])
    program = shutil.copy2(STAGE / "bin/hold_memory", STAGE / "bin" / f"foreign_memory_{os.getpid()}")
    return start_holder(desktop, "foreign", [program, "--private", FOREIGN_MEGABYTES]).pid


def start_bare(environment, log):
    """Starts Tarn where something that it needs may be missing; what it says on standard error goes to `log`."""
    return start([TARN], environment | SANITIZERS, log)
