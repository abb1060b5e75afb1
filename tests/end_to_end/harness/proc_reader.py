# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""Figures that the kernel reports, read independently of Tarn."""

import os
import time
from glob import glob
from pathlib import Path

TICKS_PER_SECOND = os.sysconf("SC_CLK_TCK")
MEGABYTE = 1 << 20


def _fields(path):
    """The numbers in a file of lines "Name: number [kB]" by name, kB converted to bytes."""
    values = {}
    for line in Path(path).read_text(encoding="utf-8", errors="replace").splitlines():
        name, _, rest = line.partition(":")
        words = rest.split()
        if words and words[0].isdigit():
            values[name] = int(words[0]) * (1024 if words[1:] == ["kB"] else 1)
    return values


def footprint(pid):
    """Anonymous resident memory and swap of a process, in bytes; 0 for a kernel thread."""
    values = _fields(f"/proc/{pid}/status")
    return values.get("RssAnon", 0) + values.get("VmSwap", 0)


def address_space(pid):
    """The size of a process's address space, in bytes."""
    return _fields(f"/proc/{pid}/status")["VmSize"]


def processor_seconds(pid):
    """The processor time of all threads of a process so far (man 5 proc, /proc/pid/stat fields 14 and 15)."""
    stat = Path(f"/proc/{pid}/stat").read_bytes()
    words = stat[stat.rindex(b")") + 2:].split()
    return (int(words[11]) + int(words[12])) / TICKS_PER_SECOND


def children(pid):
    """The pids of a process's direct children."""
    threads = Path(f"/proc/{pid}/task").iterdir()
    return [int(child) for thread in threads for child in (thread / "children").read_text().split()]


def system_memory():
    """Wired, compressed, cached files and swap in bytes, as Tarn defines them for Linux."""
    memory = _fields("/proc/meminfo")
    compressed = memory.get("Zswap", 0)
    for path in glob("/sys/block/zram*/mm_stat"):
        compressed += int(Path(path).read_text().split()[2])
    wired = (memory["MemTotal"] - memory["MemFree"] - memory["Buffers"] - memory["Cached"] - memory["SwapCached"]
             - memory["AnonPages"] - memory["SReclaimable"] - compressed + memory.get("Mlocked", 0))
    cached = memory["Buffers"] + memory["Cached"] + memory["SReclaimable"] - memory["Shmem"]
    swap = -memory.get("Zswapped", 0)
    for line in Path("/proc/swaps").read_text().splitlines()[1:]:
        words = line.split()
        if not words[0].startswith("/dev/zram"):
            swap += int(words[3]) * 1024
    return {"Wired": max(wired, 0), "Compressed": compressed, "Cached files": max(cached, 0), "Swap": max(swap, 0)}


def available_share():
    """The share of the memory that is available, from 0 to 1."""
    memory = _fields("/proc/meminfo")
    return memory["MemAvailable"] / memory["MemTotal"]


def largest_footprints(count):
    """The `count` largest footprints of the machine's processes, largest first."""
    footprints = []
    for entry in os.listdir("/proc"):
        if entry.isdigit():
            try:
                footprints.append(footprint(entry))
            except OSError:
                continue
    return sorted(footprints, reverse=True)[:count]


def thread_named(pid, name):
    """The id of the thread `name` of a process; None if there is none. The kernel keeps 15 bytes of the name."""
    for thread in Path(f"/proc/{pid}/task").iterdir():
        if (thread / "comm").read_text().rstrip("\n") == name[:15]:
            return int(thread.name)
    return None


def voluntary_switches(pid, thread):
    """The number of voluntary context switches of a thread."""
    return _fields(f"/proc/{pid}/task/{thread}/status")["voluntary_ctxt_switches"]


def all_voluntary_switches(pid):
    """The number of voluntary context switches of all threads of a process."""
    return sum(voluntary_switches(pid, thread) for thread in os.listdir(f"/proc/{pid}/task"))


def threads(pid):
    """The number of threads of a process."""
    return len(os.listdir(f"/proc/{pid}/task"))


def descriptors(pid):
    """The number of open files of a process."""
    return len(os.listdir(f"/proc/{pid}/fd"))


def descriptors_at_rest(pid):
    """The number of files that stay open between sweeps."""
    counts = []
    for _ in range(20):
        counts.append(descriptors(pid))
        time.sleep(0.05)
    return min(counts)


def is_sanitized(pid):
    """Whether AddressSanitizer is loaded. It keeps freed memory, so the footprint does not show leaks."""
    return "libasan" in Path(f"/proc/{pid}/maps").read_text(encoding="utf-8")


def resource_usage(pid):
    """Open files, threads and footprint in bytes between sweeps. The footprint is 0 with AddressSanitizer."""
    return descriptors_at_rest(pid), threads(pid), 0 if is_sanitized(pid) else footprint(pid)


def uses_no_more(pid, before, slack):
    """Whether no value of `resource_usage` is larger than `before`, except the footprint by up to `slack` bytes."""
    limits = (*before[:2], before[2] + slack)
    return all(now <= limit for now, limit in zip(resource_usage(pid), limits))
