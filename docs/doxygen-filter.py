#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Shows Doxygen a public header as its readers take it; prints the header, line for line.

- The banner that a header opens with documents the class that the header is named after, or the
  first one that has no comment of its own; without such a class, the file.
- Text that is indented in a comment is code.
- What is there for the compiler only is left out: friends, defaulted copies and moves, explicit
  specialisations, and names that are taken over from namespace to namespace.
"""

import re
import sys
from pathlib import Path

COMPOUND = re.compile(r"^(?:class|struct) (?:DATABINDING_\w+(?:\(.*\)\))? |\[\[nodiscard\]\] )*"
                      r"(?P<name>\w+)(?:<.*>)?(?: final)?(?: :.*| \{.*|)$")
HEAD = re.compile(r"^(?:template <|requires|///)")
COMPILER_ONLY = re.compile(r"^\s*(?:friend [\w:]+;|namespace \w+ = [\w:]+;"
                           r"|[\w:&= ]+\(const \w+&\) (?:noexcept )?= default;"
                           r"|[\w:&= ]+\(\w+&&\) (?:noexcept )?= default;)$")
EXPLICIT = re.compile(r"^template <>\n(?!struct VtrUtils::InterfaceId)[^{]*?;$"
                      r"|^template <\w* ?\w*>\nstruct std::hash<[\s\S]*?^\};$", re.MULTILINE)
INDENTED = re.compile(r"^(\s*///) {3}(\S)")


def without_details(lines):
    """The numbers of the lines that stand in no namespace `details`."""
    inside = False
    for number, line in enumerate(lines):
        if re.match(r"^namespace (?:\w+::)*details \{", line):
            inside = True
        elif re.match(r"^\}  // namespace .*details", line):
            inside = False
        elif not inside:
            yield number


def main_compound(lines, stem):
    """The line where the comment of the header's class begins or would begin, or None."""
    found = None
    for number in without_details(lines):
        match = COMPOUND.match(lines[number])
        if match is None or lines[number].endswith(";"):
            continue
        head = number
        while HEAD.match(lines[head - 1]):
            head -= 1
        if match["name"] == stem:
            return head
        if found is None and not lines[head].startswith("///"):
            found = head
    return found


def main():
    path = Path(sys.argv[1])
    text = path.read_text(encoding="utf-8")
    lines = EXPLICIT.sub(lambda match: "\n" * match[0].count("\n"), text).splitlines()
    lines = lines[1:]  # the licence, whose line is printed empty
    size = next((number for number, line in enumerate(lines) if not line.startswith("///")), 0)
    banner, rest = lines[:size], lines[size:]
    place = main_compound(rest, path.stem)
    if place is None:
        rest[0:1] = []  # #pragma once: its line is wanted
        lines = ["/// @file"] + banner + rest
    elif rest[place].startswith("///"):
        lines = rest[:place - 1] + banner + ["///"] + rest[place:]
    else:
        lines = rest[:place] + banner + rest[place:]
    print()
    for line in lines:
        print("" if COMPILER_ONLY.match(line) else INDENTED.sub(r"\1       \2", line))


if __name__ == "__main__":
    main()
