#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Checks the shape of the sources; prints each violation and exits 1 where it finds any.

- A file has at most 400 lines, unless LONGER names it and says why.
- Every file opens with the line that names its licence.
- A header has `#pragma once`; a public header has a `///` banner of 5 to 30 lines before it; Fwd.h
  only declares names, and a line will do.
- README's C++ example is examples/readme.cpp, which the build compiles, without that first line.
- The name of a test is PascalCase without underscores, its body has at most 25 lines, and no test
  is left disabled or skipped.
"""

import re
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
FOLDERS = ("include", "src", "adapters", "tests", "stress", "fuzz", "examples", "benchmarks")
MOST_LINES = 400
MOST_TEST_LINES = 25
MOST_BANNER_LINES = 30
LICENCE = "SPDX-License-Identifier: Apache-2.0"

# Files that are longer for a reason: path -> reason.
LONGER = {}

TEST = re.compile(r"^(?:TYPED_)?TEST(?:_[FP])?\(\s*(\w+),\s*(\w+)\) \{(.*\}$|[\s\S]*?^\})",
                  re.MULTILINE)
SKIP = re.compile(r"\bGTEST_SKIP\b|\bDISABLED_")

problems = []


def report(file, text):
    problems.append(f"{file.relative_to(ROOT)}: {text}")


def check_length(file, lines):
    if len(lines) > MOST_LINES and str(file.relative_to(ROOT)) not in LONGER:
        report(file, f"{len(lines)} lines, more than {MOST_LINES}: split it, or give the reason in "
                     "LONGER of cmake/check-shape.py")


def check_header(file, lines):
    if "#pragma once" not in lines:
        report(file, "no #pragma once")
    elif "include" in file.relative_to(ROOT).parts:
        banner = lines.index("#pragma once") - 1
        least = 1 if file.name == "Fwd.h" else 5
        if not least <= banner <= MOST_BANNER_LINES:
            report(file, f"its banner has {banner} lines, not {least} to {MOST_BANNER_LINES}")
        for line in lines[1:banner + 1]:
            if not line.startswith("///"):
                report(file, f"between its licence and #pragma once stands: {line}")


def check_tests(file, text):
    for suite, name, body in TEST.findall(text):
        if "_" in suite + name or not name[0].isupper():
            report(file, f"{suite}.{name} is no PascalCase sentence")
        if body.count("\n") - 1 > MOST_TEST_LINES:
            report(file, f"{suite}.{name} has more than {MOST_TEST_LINES} lines")
    for match in SKIP.findall(text):
        report(file, f"{match}: a test runs or is deleted")


def check_readme():
    shown = re.search(r"```cpp\n(.*?)```", (ROOT / "README.md").read_text(encoding="utf-8"), re.DOTALL)
    example = ROOT / "examples" / "readme.cpp"
    lines = example.read_text(encoding="utf-8").splitlines(keepends=True)
    if shown is None or shown.group(1) != "".join(lines[1:]):
        report(example, "README.md does not show it as it is")


def main():
    files = [file for top in FOLDERS for file in sorted((ROOT / top).rglob("*.*"))
             if file.suffix in (".h", ".cpp")]
    for file in files:
        text = file.read_text(encoding="utf-8")
        lines = text.splitlines()
        check_length(file, lines)
        if not lines or lines[0] != f"// {LICENCE}":
            report(file, f"its first line is not // {LICENCE}")
        if file.suffix == ".h":
            check_header(file, lines)
        if file.is_relative_to(ROOT / "tests"):
            check_tests(file, text)
    check_readme()
    if not files:
        problems.append("no source found")
    print("\n".join(problems) or f"{len(files)} files are in shape")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
