#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Checks that the documents show what is there; prints each violation and exits 1 where it finds any.

- Every program examples/guide/<name>.cpp has its page docs/guide/<name>.md, or docs/<name>.md, and
  every page of the guide has its program.
- A ```cpp block of such a page stands in the program, or in a file of examples/guide/<name>/, line
  for line, but for its indentation. What the program prints is compared by a test.
- The index of the guide links every page, and the reference lists it.
- A link to another file of the project leads somewhere.
"""

import re
import sys
import textwrap
from difflib import SequenceMatcher
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
    windows = (lines[start:start + len(block)] for start in range(len(lines) - len(block) + 1))
    return any(textwrap.dedent("\n".join(window)) == "\n".join(block) for window in windows)


def difference(block, lines):
    """Where a block that the file does not contain leaves it: how many lines they have in common at
    most, the numbers of the first that differ, in the block and in the file, and both texts."""
    bare = [line.strip() for line in block], [line.strip() for line in lines]
    same = SequenceMatcher(None, *bare, autojunk=False).find_longest_match()
    start = max(same.b - same.a, 0)
    window = textwrap.dedent("\n".join(lines[start:start + len(block)])).split("\n")
    for kind, a, a_end, b, b_end in SequenceMatcher(None, block, window, autojunk=False).get_opcodes():
        if kind != "equal":
            return same.size, a, start + b, block[a:a_end], window[b:b_end]


def check_block(page, number, block, sources):
    """Reports where a block, which begins at a line of the page, differs from the program."""
    if any(contains(lines, block) for lines in sources.values()):
        return
    found = {file: difference(block, lines) for file, lines in sources.items()}
    file = max(found, key=lambda name: found[name][0])
    _, first, there, shown, real = found[file]
    report(page, f"line {number + first} differs from line {there + 1} of {file.relative_to(ROOT)}")
    problems.extend([f"  the page has    {line}" for line in shown or ["nothing"]])
    problems.extend([f"  the program has {line}" for line in real or ["nothing"]])


def check_page(page, program):
    text = page.read_text(encoding="utf-8")
    folder = program.with_suffix("")
    files = [program] + (sorted(folder.iterdir()) if folder.is_dir() else [])
    sources = {file: file.read_text(encoding="utf-8").splitlines() for file in files}
    for match in BLOCK.finditer(text):
        check_block(page, text.count("\n", 0, match.start(1)) + 1, match[1].splitlines(), sources)
    if len(OUTPUT.findall(text)) != 1:
        report(page, "it shows its program's output in one ```text block")


def check_guide():
    index = (GUIDE / "README.md").read_text(encoding="utf-8")
    reference = (DOCS / "reference.md").read_text(encoding="utf-8").splitlines()
    programs = {file.stem: file for file in PROGRAMS.glob("*.cpp")}
    for page in sorted(GUIDE.glob("*.md")):
        if page.name == "README.md":
            continue
        if f"]({page.name})" not in index:
            report(page, "the guide's index does not link it")
        if f"- @subpage md_docs_guide_{page.stem.replace('-', '_')}" not in reference:
            report(page, "docs/reference.md does not list it")
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
