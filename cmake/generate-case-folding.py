#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Writes src/foundation/CaseFoldingTable.h from Unicode's CaseFolding.txt.

Usage: generate-case-folding.py /usr/share/unicode/CaseFolding.txt > CaseFoldingTable.h
(Debian's package unicode-data holds that file.) Only the common and simple foldings are taken.
Runs of characters with one distance to their folded form become one row; a step of 2 stands for
alternating pairs of upper and lower case.
"""
import re
import sys


def foldings(path):
    version = ""
    for line in open(path, encoding="utf-8"):
        match = re.match(r"# CaseFolding-([\d.]+)\.txt", line)
        if match:
            version = match.group(1)
        fields = [field.strip() for field in line.split("#")[0].split(";")]
        if len(fields) >= 3 and fields[1] in "CS":
            yield version, int(fields[0], 16), int(fields[2], 16)


def rows(pairs):
    run = []
    for source, target in pairs:
        delta = target - source
        if run:
            first, last, step, runDelta = run
            gap = source - last
            if delta == runDelta and gap in (1, 2) and step in (0, gap):
                run = [first, source, gap, delta]
                continue
            yield run
        run = [source, source, 0, delta]
    yield run


entries = list(foldings(sys.argv[1]))
print("// SPDX-License-Identifier: Apache-2.0")
print("/// Unicode %s simple case folding. This file is made by cmake/generate-case-folding.py." % entries[0][0])
print("#pragma once\n\n#include <cstdint>\n")
print("namespace VtrPlatform::details {\n")
print("/// The characters first, first + step, ... last are folded by adding delta.")
print("struct CaseFoldingRow {\n  std::uint32_t first;\n  std::uint32_t last;\n  std::int32_t step;\n  std::int32_t delta;\n};\n")
print("// clang-format off\ninline constexpr CaseFoldingRow caseFoldingTable[] = {")
for first, last, step, delta in rows([(s, t) for _, s, t in entries]):
    print("    {0x%04X, 0x%04X, %d, %d}," % (first, last, max(step, 1), delta))
print("};\n// clang-format on\n\n}  // namespace VtrPlatform::details")
