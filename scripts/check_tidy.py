#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""check_tidy.py: runs clang-tidy over each source file of the asan build, which must have been built.

A file that passed is not checked again until its text, an included header of this repository, its compiler flags,
.clang-tidy or the version of clang-tidy changes: ~/.cache/tarn/clang-tidy contains an empty file for each digest of
these that passed."""

import hashlib
import json
import os
import re
import subprocess
import sys
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

REPOSITORY = Path(__file__).resolve().parent.parent
BUILD = REPOSITORY / "build/asan"
# clang-tidy cannot read GCC's precompiled headers, so it gets a compilation database without them.
DATABASE = REPOSITORY / "build/tidy/compile_commands.json"
CACHE = Path(os.environ.get("XDG_CACHE_HOME") or Path.home() / ".cache") / "tarn/clang-tidy"


def checked_commands():
    """The compile commands of the .cpp files of src and tests, without precompiled headers."""
    commands = {}
    for entry in json.loads((BUILD / "compile_commands.json").read_text(encoding="utf-8")):
        path = Path(entry["file"])
        if path.is_relative_to(REPOSITORY / "src") or path.is_relative_to(REPOSITORY / "tests"):
            entry["command"] = re.sub(r"-Winvalid-pch -include \S+ ", "", entry["command"])
            commands.setdefault(path, entry)
    return commands


def dependencies():
    """The files of this repository that each object file was built from, as ninja recorded them: {object: [path]}."""
    files, current = {}, []
    for line in subprocess.run(["ninja", "-C", BUILD, "-t", "deps"], capture_output=True, text=True,
                               check=True).stdout.splitlines():
        if match := re.match(r"(\S+): #deps", line):
            current = files.setdefault(match[1], [])
        elif line.startswith("    "):
            path = (BUILD / line.strip()).resolve()
            if path.is_relative_to(REPOSITORY) and not path.is_relative_to(REPOSITORY / "build"):
                current.append(path)
    return files


def object_of(entry):
    return re.search(r" -o (\S+)", entry["command"])[1]


def input_digest(path, entry, headers, common):
    """A digest of the files and the command that the result of clang-tidy depends on."""
    digest = hashlib.sha256(common)
    digest.update(entry["command"].replace(str(REPOSITORY), "").encode())
    for source in [path, *sorted(headers)]:
        digest.update(f"{source.relative_to(REPOSITORY)}\0".encode())
        digest.update(source.read_bytes())
    return digest.hexdigest()


def check(path):
    result = subprocess.run(["clang-tidy", "--quiet", "-p", DATABASE.parent, path], capture_output=True, text=True,
                            check=False)
    return result.returncode, result.stdout


def main():
    commands = checked_commands()
    DATABASE.parent.mkdir(parents=True, exist_ok=True)
    DATABASE.write_text(json.dumps(list(commands.values())), encoding="utf-8")
    CACHE.mkdir(parents=True, exist_ok=True)
    headers = dependencies()
    common = (REPOSITORY / ".clang-tidy").read_bytes() + subprocess.run(
        ["clang-tidy", "--version"], capture_output=True, check=True).stdout
    cache_files = {path: CACHE / input_digest(path, entry, headers.get(object_of(entry), []), common)
                   for path, entry in commands.items()}
    pending = [path for path, cache_file in cache_files.items() if not cache_file.exists()]
    failed = 0
    with ThreadPoolExecutor(os.cpu_count()) as pool:
        for path, (status, report) in zip(pending, pool.map(check, pending)):
            if status:
                failed += 1
                print(report, flush=True)
            else:
                cache_files[path].touch()
    print(f"clang-tidy: {len(pending)} files checked, {len(commands) - len(pending)} unchanged since they passed, "
          f"{failed} with findings.")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
