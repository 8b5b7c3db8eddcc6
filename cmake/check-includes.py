#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Checks who includes whom; prints each violation and exits 1 where it finds any.

- Every room includes only the rooms that ALLOWED grants it.
- A public header includes public headers and the C++ standard library.
- A source or private header includes public headers and the private headers of its own folder.
- Tests, examples, benchmarks and adapters see the public headers only, without those in details/
  folders, except for the tests of a detail that DETAILS_WITH_TESTS names.
- An adapter is built as the library is: in rooms, each of which includes those that ADAPTERS grants
  it, with a header of everything. Only examples include it.
- Tests include the headers that they use, so that a change of one header rebuilds few of them; the
  header of everything is for tests/consumer, which stands for a stranger's program.
- The header of everything includes each public header that is not in a details/ folder.
- The include graph has no circle.
"""

import re
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
PUBLIC = ROOT / "include" / "DataBinding"
PRIVATE = ROOT / "src"
TESTS = ("tests", "stress", "fuzz")
USERS = (*TESTS, "examples", "benchmarks", "adapters")

# What a room may include beside itself and the headers of COMMON.
ALLOWED = {
    "foundation": set(),
    "broadcast": {"foundation"},
    "reflection": {"foundation"},
    "appevents": {"foundation"},
    "datasource": {"foundation", "broadcast", "reflection"},
    "registrar": {"foundation", "broadcast", "reflection"},
    "property": {"foundation", "broadcast", "reflection", "datasource", "registrar"},
    "lists": {"foundation", "broadcast", "reflection", "datasource", "registrar", "property",
              "appevents"},
    "framework": {"foundation", "broadcast", "reflection", "datasource", "registrar", "property",
                  "appevents", "lists"},
}
# Datasource and registrar call each other: their sources may include the other's public headers,
# their public headers may not.
ALLOWED_IN_SOURCES = {"datasource": {"registrar"}, "registrar": {"datasource"}}

# The rooms of each adapter, by its folder.
ADAPTERS = {
    "qt6": {
        "values": set(),
        "loop": {"values"},
        "scopes": {"values"},
        "widgets": {"values", "loop", "scopes"},
        "models": {"values", "loop", "scopes"},
    },
    "glib": {},
}

# Public headers of no room, which everything may include.
COMMON = {"Export.h", "Fwd.h"}
# The header of everything, which only users of the library include.
UMBRELLA = "DataBinding.h"
# Details whose promises (memory, no allocation) cannot be seen through the public headers.
DETAILS_WITH_TESTS = {"RowOrder.h": "tests/lists"}
# What public headers include of the platform, each inside a guard of that platform.
PLATFORM = {"cxxabi.h", "guiddef.h"}

INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]', re.MULTILINE)
STANDARD = re.compile(r"[a-z_]+")

problems = []


def report(file, text):
    problems.append(f"{file.relative_to(ROOT)}: {text}")


def room(file):
    """The room of a file of the library: the name of its folder. None right in the top one."""
    top = PRIVATE if file.is_relative_to(PRIVATE) else PUBLIC
    parts = file.relative_to(top).parts
    return parts[0] if len(parts) > 1 else None


def check_place(file):
    """Reports a file of the library whose room is not known."""
    if file.parent == PUBLIC and file.name in COMMON | {UMBRELLA}:
        return
    if room(file) not in ALLOWED:
        report(file, "not in the folder of a known room: move it, or add the room to "
                     "ALLOWED of cmake/check-includes.py")


def check_umbrella(included):
    """Reports the public headers that the header of everything does not include."""
    for header in sorted(PUBLIC.rglob("*.h")):
        if header.parent == PUBLIC or "details" in header.parts or header in included:
            continue
        report(PUBLIC / UMBRELLA, f"does not include {header.relative_to(PUBLIC)}")


def resolve(file, quote, name):
    """The file of ours that an include names, or None."""
    candidates = [file.parent / name] if quote == '"' else []
    for top in (ROOT, *sorted((ROOT / "adapters").glob("*"))):
        candidates.append(top / "include" / name)
    if file.is_relative_to(ROOT / "tests"):
        candidates.append(ROOT / "tests" / name)
    for candidate in candidates:
        if candidate.is_file():
            return candidate.resolve()
    return None


def check_layer(file, target):
    if target.parent == PUBLIC and target.name in COMMON:
        return
    if target == PUBLIC / UMBRELLA:
        report(file, f"includes {UMBRELLA}, which is for users of the library")
        return
    if file == PUBLIC / UMBRELLA:
        return
    own, other = room(file), room(target)
    if own is None and file.name in COMMON:
        report(file, f"includes {target.name}, but everything may include {file.name}")
        return
    allowed = {own} | ALLOWED.get(own, set())
    if file.is_relative_to(PRIVATE):
        allowed |= ALLOWED_IN_SOURCES.get(own, set())
    if other not in allowed:
        report(file, f"{own} may not include {target.name} of {other}")


def adapter(file):
    """The folder of the adapter that a file is of, and its room there; None where there is none."""
    parts = file.relative_to(ROOT).parts
    if parts[0] != "adapters" or len(parts) < 3:
        return None, None
    inner = parts[4:] if parts[2] == "include" else parts[3:] if parts[2] == "src" else ()
    return parts[1], inner[0] if len(inner) > 1 else None


def check_adapter(file, target):
    """Reports an include of an adapter's header that its rooms do not allow."""
    (kit, own), (other_kit, other) = adapter(file), adapter(target)
    if other_kit is None:
        return
    if kit != other_kit:
        if file.relative_to(ROOT).parts[0] != "examples" and "consumer" not in file.parts:
            report(file, f"{target.name} is of an adapter, which only examples and the consumer include")
    elif "src" in target.relative_to(ROOT).parts and target.parent != file.parent:
        report(file, f"{target.name} is private to {target.parent.relative_to(ROOT)}")
    elif own and other and other not in {own} | ADAPTERS.get(kit, {}).get(own, set()):
        report(file, f"{own} may not include {target.name} of {other}")


def check_adapter_umbrellas():
    """Reports the headers of an adapter that its header of everything does not include."""
    for umbrella in sorted((ROOT / "adapters").glob("*/include/*/*.h")):
        folder = umbrella.parent
        if umbrella.stem != folder.name:
            continue
        names = {name for _, name in INCLUDE.findall(umbrella.read_text(encoding="utf-8"))}
        for header in sorted(folder.rglob("*.h")):
            name = str(header.relative_to(folder.parent))
            if header != umbrella and "details" not in header.parts and name not in names:
                report(umbrella, f"does not include {name}")


def tests_detail(file, target):
    return file.is_relative_to(ROOT / DETAILS_WITH_TESTS.get(target.name, "none"))


def check_include(file, quote, name, target):
    in_library = file.is_relative_to(PUBLIC) or file.is_relative_to(PRIVATE)
    if target is None:
        if quote == '"' or name.startswith("DataBinding/"):
            report(file, f'"{name}" names no public header and no file beside it')
        elif file.is_relative_to(PUBLIC) and not (STANDARD.fullmatch(name) or name in PLATFORM):
            report(file, f"<{name}>: a public header includes only ours and the standard library")
    elif target.is_relative_to(PRIVATE) and target.parent != file.parent:
        report(file, f"{name} is private to {target.parent.relative_to(ROOT)}")
    elif in_library and not (target.is_relative_to(PUBLIC) or target.is_relative_to(PRIVATE)):
        report(file, f"{name} is no file of the library")
    elif in_library:
        check_layer(file, target)
    elif adapter(target)[0]:
        check_adapter(file, target)
    elif "details" in target.parts and not tests_detail(file, target):
        report(file, f"{name} is a detail of the library's public headers")
    elif target == PUBLIC / UMBRELLA and file.relative_to(ROOT).parts[0] in TESTS:
        if "consumer" not in file.parts:
            report(file, f"includes {UMBRELLA}: a test includes the headers that it uses")


def check_circles(graph):
    done, path = set(), []

    def visit(file):
        if file in path:
            circle = path[path.index(file):] + [file]
            report(file, "include circle: " + " -> ".join(step.name for step in circle))
        elif file not in done:
            path.append(file)
            for target in graph.get(file, []):
                visit(target)
            done.add(path.pop())

    for file in sorted(graph):
        visit(file)


def main():
    library = [file for top in (PUBLIC, PRIVATE) for file in sorted(top.rglob("*.*"))
               if file.suffix in (".h", ".cpp")]
    users = [file for top in USERS for file in sorted((ROOT / top).rglob("*.*"))
             if file.suffix in (".h", ".cpp")]
    graph = {}
    for file in library:
        check_place(file)
    for file in library + users:
        graph[file] = []
        for quote, name in INCLUDE.findall(file.read_text(encoding="utf-8")):
            target = resolve(file, quote, name)
            check_include(file, quote, name, target)
            if target:
                graph[file].append(target)
    check_umbrella(graph[PUBLIC / UMBRELLA])
    check_adapter_umbrellas()
    check_circles(graph)
    if not library:
        problems.append("no file of the library found")
    print("\n".join(problems) or f"{len(graph)} files include only what they may")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
