#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Compares what the shared library exports, on Linux and on Windows, with cmake/exports.txt.

usage: check-exports.py [--write] <shared object> <DLL>

Prints what is missing and what is new, and exits 1 where anything is: a change of the list is a
change of the binary interface, made on purpose with --write. Names are compared demangled, with
the spellings of one type under both systems made alike; a line that begins with "linux:" or
"windows:" is exported there only. The name under which programs load the library is checked, too.
"""

import re
import subprocess
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
LIST = ROOT / "cmake" / "exports.txt"
# What only one of the systems spells so: its size type and its own GUID.
SPELLINGS = (("unsigned long long", "size_t"), ("unsigned long", "size_t"),
             ("_GUID", "VtrUtils::Guid"))
# The table of an interface that has no code of its own is there or not, as the optimiser likes.
UNSETTLED = {"vtable for DataBinding::IDataSourceRegistrar"}
NUMBER = re.compile(r"\b(\d+)u?ll?\b")


def run(*command, text=None):
    return subprocess.run(command, input=text, check=True, capture_output=True, text=True).stdout


def readable(mangled):
    """The demangled names, without the texts of type information, which only ELF exports."""
    names = set()
    for name in run("c++filt", text="\n".join(mangled)).splitlines():
        for spelling, common in SPELLINGS:
            name = name.replace(spelling, common)
        if not name.startswith("typeinfo name for "):
            names.add(NUMBER.sub(r"\1", name))
    return names - UNSETTLED


def exported_by_shared_object(path):
    return [line.split()[-1] for line in run("nm", "-D", "--defined-only", path).splitlines()]


def exported_by_dll(path):
    table = run("x86_64-w64-mingw32-objdump", "-p", path).partition("[Ordinal/Name Pointer] Table")[2]
    return re.findall(r"^\s*\[ *\d+\]\s+(\S+)$", table, re.MULTILINE)


def listing(linux, windows):
    lines = list(linux & windows)
    lines += [f"linux: {name}" for name in linux - windows]
    lines += [f"windows: {name}" for name in windows - linux]
    return sorted(lines)


def differences(lines):
    known = LIST.read_text(encoding="utf-8").splitlines()
    gone = [f"no longer exported: {line}" for line in known if line not in lines]
    return gone + [f"newly exported: {line}" for line in lines if line not in known]


def wrong_names(shared_object, dll):
    """Programs ask for the major version; Windows has no such habit."""
    cmake = (ROOT / "CMakeLists.txt").read_text(encoding="utf-8")
    major = re.search(r"project\(DataBinding VERSION (\d+)\.", cmake).group(1)
    expected = {f"[libDataBinding.so.{major}]": run("readelf", "-d", shared_object),
                "DataBinding.dll": run("x86_64-w64-mingw32-objdump", "-p", dll)}
    return [f"does not call itself {name}" for name, text in expected.items()
            if not re.search(rf"(SONAME|^Name\b).*{re.escape(name)}$", text, re.MULTILINE)]


def main(arguments):
    isWrite = arguments[:1] == ["--write"]
    paths = arguments[isWrite:]
    if len(paths) != 2:
        sys.exit(__doc__.split("\n\n")[1])
    linux = readable(exported_by_shared_object(paths[0]))
    windows = readable(exported_by_dll(paths[1]))
    lines = listing(linux, windows)
    if isWrite:
        LIST.write_text("\n".join(lines) + "\n", encoding="utf-8")
    problems = differences(lines)
    if problems:
        problems.append("Where that is on purpose, ./dev check exports --write renews cmake/exports.txt: "
                        "commit it with the change.")
    problems += wrong_names(*paths)
    print("\n".join(problems) or f"{len(linux)} names on Linux, {len(windows)} on Windows, as listed")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
