#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""check_modules.py: fails when a source file includes a header of a module that its own module's USES does not name,
when two modules use each other, or when two modules share a folder.

A module is a tarn_module() in a CMakeLists.txt below src/. Its folders are those of its SOURCES."""

import re
import sys
from pathlib import Path

SOURCE = Path(__file__).resolve().parent.parent / "src"
SUFFIXES = {".cpp", ".hpp", ".mm"}


def read_modules():
    """Returns the folders and the used modules of each module: {name: (set of Path, set of str)}."""
    modules = {}
    for listing in sorted(SOURCE.rglob("CMakeLists.txt")):
        text = re.sub(r"#.*", "", listing.read_text(encoding="utf-8"))
        for name, arguments in re.findall(r"tarn_module\((\w+)\s([^()]*)\)", text):
            sources, _, uses = arguments.partition("USES")
            folders = {(listing.parent / word).resolve().parent for word in sources.split() if word != "SOURCES"}
            # Two modules of one name are two platforms' modules: a build has one of them.
            old_folders, old_uses = modules.get(name, (set(), set()))
            modules[name] = (folders | old_folders, set(uses.split()) | old_uses)
    return modules


def find_cycles(modules):
    def reaches(start, goal, visited):
        for used in modules.get(start, (set(), set()))[1] - visited:
            visited.add(used)
            if used == goal or reaches(used, goal, visited):
                return True
        return False

    return [f"{name} uses itself through other modules" for name in modules if reaches(name, name, set())]


def main():
    modules = read_modules()
    owners = {}
    problems = find_cycles(modules)
    for name, (folders, _) in modules.items():
        for folder in folders:
            if owners.setdefault(folder, name) != name:
                problems.append(f"{folder.relative_to(SOURCE)} belongs to {owners[folder]} and to {name}")
    for path in sorted(path for path in SOURCE.rglob("*") if path.suffix in SUFFIXES):
        own = owners.get(path.parent)
        allowed = {own} | (modules[own][1] if own else set())
        for line, text in enumerate(path.read_text(encoding="utf-8").splitlines(), start=1):
            include = re.match(r'#include "([^"]+)"', text)
            if not include or include[1].endswith(".moc"):  # the output of Qt's moc for this file
                continue
            used = owners.get((SOURCE / include[1]).parent)
            if used not in allowed:
                problems.append(f"{path.relative_to(SOURCE)}:{line}: {own} includes {include[1]} of {used}, "
                                "which its USES does not name")
    for problem in problems:
        print(problem)
    print(f"{len(modules)} modules, {len(problems)} problems.")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
