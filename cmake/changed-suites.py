#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Names the tests that changed files can have broken; reads the files' paths, one a line.

Prints build targets, one a line, whose tests bear the label of the same name; `all` stands for every
target. A change in a room of the library concerns the tests of the room, those of the rooms that may
include it by the table of check-includes.py, and the tests that use the whole library. A change in
anything else that is compiled concerns what is built of it.
"""

import importlib
import sys
from pathlib import PurePath

rules = importlib.import_module("check-includes")

PROGRAMS = rules.ROOT / "examples" / "guide"
# Tests that use the whole library, beside the suites of the rooms.
WHOLE = {"boundary_tests", "boundary_loading_tests", "memory_tests", "stress"}
# Folders whose files say by their place what is built of them: path -> targets.
PLACES = {
    "adapters/qt6": {"DataBindingQt6", "qt6_tests"},
    "adapters/glib": {"DataBindingGlib", "glib_tests"},
    "tests/boundary": {"boundary_tests", "boundary_loading_tests"},
    "tests/consumer": {"all"},
    "tests/debuggers": {"debuggers_tests"},
    "debuggers": {"debuggers_tests"},
    "tests/support": {"all"},
    "stress": {"stress"},
    "fuzz": {"fuzz"},
    "examples/sysmon": {"sysmon", "sysmon_tests", "fuzz"},
    "examples/addressbook": {"addressbook"},
    "examples/readme.cpp": {"example_readme"},
    "include/DataBinding": {"all"},
    "CMakePresets.json": {"all"},
}


def of_room(room):
    users = {user for user, allowed in rules.ALLOWED.items()
             if room in {user} | allowed | rules.ALLOWED_IN_SOURCES.get(user, set())}
    return {f"{user}_tests" for user in users} | WHOLE


def of_file(path):
    parts = path.parts
    if path.suffix in (".cmake", ".in", ".map") or path.name == "CMakeLists.txt":
        return {"all"}
    for top in ("include/DataBinding", "src"):
        if path.is_relative_to(top) and path.relative_to(top).parts[0] in rules.ALLOWED:
            return of_room(path.relative_to(top).parts[0])
    for place, targets in PLACES.items():
        if path.is_relative_to(place):
            return targets
    if parts[0] == "tests" and (rules.ROOT / "tests" / parts[1]).is_dir():
        return {f"{parts[1]}_tests"}
    if path.is_relative_to("examples/guide") or (parts[0], path.suffix) == ("docs", ".md"):
        page = PurePath(parts[2 if parts[1] == "guide" else 1]).stem
        return {f"guide_{page}"} if (PROGRAMS / f"{page}.cpp").exists() else set()
    return set()


def main():
    targets = set().union(*(of_file(PurePath(line)) for line in sys.stdin.read().splitlines()))
    print("\n".join(["all"] if "all" in targets else sorted(targets)))


if __name__ == "__main__":
    main()
