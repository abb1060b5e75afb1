#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""check_modules.py: fails when a source file includes a header of a module that the USES of its module does not name,
or when modules use each other in a cycle.

A module is a tarn_module() in a CMakeLists.txt below src/. Its folders are those of its SOURCES. A file in a folder
that two modules share may include what either of them uses. A main.cpp may include any module."""

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
            # Two modules with the same name belong to two platforms: a build contains one of them.
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
    problems = find_cycles(modules)
    owners = {}
    for name, (folders, _) in modules.items():
        for folder in folders:
            owners.setdefault(folder, set()).add(name)
    for path in sorted(path for path in SOURCE.rglob("*") if path.suffix in SUFFIXES and path.name != "main.cpp"):
        file_modules = owners.get(path.parent, set())
        allowed = file_modules.union(*(modules[name][1] for name in file_modules))
        for line, text in enumerate(path.read_text(encoding="utf-8").splitlines(), start=1):
            include = re.match(r'#include "([^"]+\.hpp)"', text)
            if include and not owners.get((SOURCE / include[1]).parent, set()) & allowed:
                problems.append(f"{path.relative_to(SOURCE)}:{line}: includes {include[1]}, which is in no module "
                                f"that the USES of {' and '.join(sorted(file_modules))} names")
    for problem in problems:
        print(problem)
    print(f"{len(modules)} modules, {len(problems)} problems.")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
