#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Checks that the documents show what is there; prints each violation and exits 1 where it finds any.

- Every program examples/guide/<name>.cpp has its page docs/guide/<name>.md, or docs/<name>.md, and
  every page of the guide has its program.
- A ```cpp block of such a page stands in the program, or in a file of examples/guide/<name>/, line
  for line, but for its indentation. What the program prints is compared by a test.
- The index of the guide links every page.
- A link to another file of the project leads somewhere.
"""

import re
import sys
import textwrap
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
DOCS = ROOT / "docs"
GUIDE = DOCS / "guide"
PROGRAMS = ROOT / "examples" / "guide"

BLOCK = re.compile(r"^```cpp\n(.*?)^```$", re.DOTALL | re.MULTILINE)
OUTPUT = re.compile(r"^```text\n(.*?)^```$", re.DOTALL | re.MULTILINE)
FENCED = re.compile(r"^```.*?^```$", re.DOTALL | re.MULTILINE)
LINK = re.compile(r"\]\(([^)#\s]+)(?:#[^)]*)?\)")

problems = []


def report(file, text):
    problems.append(f"{file.relative_to(ROOT)}: {text}")


def contains(lines, block):
    """Tells whether the block's lines follow each other in the file, indented alike."""
    size = block.count("\n")
    for start in range(len(lines) - size + 1):
        window = "".join(lines[start:start + size])
        if textwrap.dedent(window) == block:
            return True
    return False


def check_page(page, program):
    text = page.read_text(encoding="utf-8")
    folder = program.with_suffix("")
    files = [program] + (sorted(folder.iterdir()) if folder.is_dir() else [])
    sources = [file.read_text(encoding="utf-8").splitlines(keepends=True) for file in files]
    for block in BLOCK.findall(text):
        if not any(contains(lines, block) for lines in sources):
            report(page, f"its program does not have the block that begins with\n{block[:120]}")
    if len(OUTPUT.findall(text)) != 1:
        report(page, "it shows its program's output in one ```text block")


def check_guide():
    index = (GUIDE / "README.md").read_text(encoding="utf-8")
    programs = {file.stem: file for file in PROGRAMS.glob("*.cpp")}
    for page in sorted(GUIDE.glob("*.md")):
        if page.name == "README.md":
            continue
        if f"]({page.name})" not in index:
            report(page, "the guide's index does not link it")
        if page.stem not in programs:
            report(page, f"there is no program {page.stem}.cpp")
    for name, program in sorted(programs.items()):
        pages = [file for file in (GUIDE / f"{name}.md", DOCS / f"{name}.md") if file.exists()]
        if not pages:
            report(program, "it has no page")
        for page in pages:
            check_page(page, program)


def check_links():
    for file in sorted([*ROOT.glob("*.md"), *DOCS.rglob("*.md")]):
        for target in LINK.findall(FENCED.sub("", file.read_text(encoding="utf-8"))):
            if "://" not in target and not (file.parent / target).exists():
                report(file, f"it links {target}, which is not there")


def main():
    check_guide()
    check_links()
    print("\n".join(problems) or "the documents show what is there")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
