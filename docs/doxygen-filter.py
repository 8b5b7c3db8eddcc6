#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Shows Doxygen a public header as its readers take it; prints the header, line for line.

- The banner that a header opens with documents the class that the header is named after, or the
  first one that has no comment of its own; without such a class, the file.
- Text that is indented in a comment is code.
- What is there for the compiler only is left out: friends, defaulted copies and moves, explicit
  specialisations, and names that are taken over from namespace to namespace.
- What a header of include/DataBinding/<room>/ declares belongs to the group of that room, and what
  a header of an adapter declares to the group of the adapter's folder; rooms.dox describes them.
- A property shows the operations of its bases, which stand in namespace `details`.
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
# Between these two a header declares what belongs to its room.
ROOM_BEGIN = re.compile(r"^namespace (?:DataBinding(?:::(?!details)\w+)?|VtrUtils) \{$")
ROOM_END = re.compile(r"^\}  // namespace (?:DataBinding(?:::(?!details)\w+)?|VtrUtils)$")
# What users call on a property that keeps its value, and on every property.
READ = "".join(f"/** Reads the value. */ {member} const noexcept; "
               for member in ("const T& Get()", "const T& operator*()", "const T* operator->()"))
SHARED = ("/** Tells the name of the property. */ const VtrString& Name() const noexcept; "
          "/** Tells the listeners of the property that its value has changed, and then those of the "
          "properties that are computed from it. Set and Assign do so themselves. */ void NotifyChanged();")
# A line of a class, and what it stands for.
SHOWN = ((re.compile(r"^  using details::StoredProperty<.*>::StoredProperty;$"), READ + SHARED),
         (re.compile(r"^  ~ComputedProperty\(\) .*$"), SHARED))


def shown(line, room):
    """The line as Doxygen is to see it."""
    for pattern, members in SHOWN:
        if pattern.match(line):
            return members
    if room and ROOM_BEGIN.match(line):
        return f"{line} /** @addtogroup {room} */ /**@{{*/"
    if room and ROOM_END.match(line):
        return f"/**@}}*/ {line}"
    return "" if COMPILER_ONLY.match(line) else INDENTED.sub(r"\1       \2", line)


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


def room_of(path):
    """The group of a header, or None where it belongs to none."""
    if "adapters" in path.parts:
        return path.parts[path.parts.index("adapters") + 1]
    return path.parent.name if path.parent.parent.name == "DataBinding" else None


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
        print(shown(line, room_of(path)))


if __name__ == "__main__":
    main()
