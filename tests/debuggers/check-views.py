#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Checks the debugger views; prints what is wrong and exits 1 where anything is.

Usage: check-views.py <gdb> <program built of tests/consumer/main.cpp>

- GDB, stopped at the end of the program, shows each expression of SHOWN as it should be.
- What is no object (machine code) is shown as <invalid>, and no printer fails.
- Every name in the Visual Studio views is one of the library's sources.
"""

import re
import subprocess
import sys
import tempfile
import xml.etree.ElementTree
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent.parent
CONSUMER = ROOT / "tests" / "consumer" / "main.cpp"
VIEWS = ROOT / "debuggers"

LAMP = (r'data source L"Lamp" = {on = L"On": true, maker = L"Maker": L"Vega \\"E\\"", '
        r'watts = L"Watts": computed from L"On", \[L"Failed"\] = void ?\(\)}')
SHOWN = {
    "lamp": LAMP,
    "house": r'provider of L"house" = {parent = 0x0, \[L"Lamp"\] = ' + LAMP + "}",
    "set.text": 'L""',
    "subscription": "live subscription",
    "onTheWall.listenerEntries": r'std::vector of length 1.* = {L"Lamp", L"On": connected}',
    "switched": 'event L"Switched"',
    "events": "alive = {object = 0x[0-9a-f]+}",
    "*events.operator->()": "event broadcaster: 1 queued, 0 held",
}
LAMP_MEMBER = "(*('(anonymous namespace)::Lamp' *) &lamp)"
BROKEN = ("lamp", LAMP_MEMBER, LAMP_MEMBER + ".on", LAMP_MEMBER + ".maker", LAMP_MEMBER + ".watts",
          "house", "set.text", "subscription", "switched", "events", "*events.operator->()",
          "*(DataBinding::IAppEventBroadcaster *) 0", "*(DataBinding::DataListenerEntry *) 0",
          "onTheWall.providerLiveness.flag")
# Shows machine code as if it were of an expression's type.
SHOW_CODE = """python
def show_code(expression):
  kind = gdb.parse_and_eval(expression).type
  kind = kind.target() if kind.code == gdb.TYPE_CODE_REF else kind
  start = gdb.parse_and_eval("(char*) &main")
  gdb.write(start.cast(kind.pointer()).dereference().format_string())
"""
NATVIS_WORDS = {"su", "wchar_t", "bool", "nullptr", "T1"}


def run_gdb(gdb, program, commands):
    """What GDB prints when the program stands at its end."""
    lines = CONSUMER.read_text(encoding="utf-8").splitlines()
    end = next(number for number, line in enumerate(lines, 1) if line.startswith("  return"))
    script = ["set width 0", "set breakpoint pending off", f"source {VIEWS}/databinding_gdb.py",
              SHOW_CODE + "end", f"break main.cpp:{end}", "run", *commands]
    with tempfile.NamedTemporaryFile("w", suffix=".gdb") as file:
        file.write("\n".join(script) + "\n")
        file.flush()
        return subprocess.run([gdb, "-nx", "-batch", "-x", file.name, program],
                              stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, text=True, check=False).stdout


def check_gdb(gdb, program):
    wanted = [(f"output {expression}", pattern) for expression, pattern in SHOWN.items()]
    wanted += [(f"python show_code(r\"{expression}\")", "<invalid>") for expression in BROKEN]
    commands = []
    for number, (command, _) in enumerate(wanted):
        commands += [f"echo @{number}@", command, "echo \\n"]
    output = run_gdb(gdb, program, commands)
    shown = dict(re.findall(r"^@(\d+)@(.*)$", output, re.MULTILINE))
    problems = [f"{command} shows {shown.get(str(number))}, not {pattern}"
                for number, (command, pattern) in enumerate(wanted)
                if not re.fullmatch(pattern, shown.get(str(number), ""))]
    if problems or "Python Exception" in output:
        problems.append(output)
    return problems


def check_natvis():
    sources = "".join(file.read_text(encoding="utf-8") for top in ("include", "src")
                      for file in sorted((ROOT / top).rglob("*.h")))
    known = set(re.findall(r"\w+", sources)) | NATVIS_WORDS
    problems = []
    for element in xml.etree.ElementTree.parse(VIEWS / "DataBinding.natvis").iter():
        code = element.get("Condition", "")
        if element.tag.endswith("Type"):
            code += " " + element.get("Name")
        elif element.tag.endswith("DisplayString"):
            code += " " + " ".join(re.findall(r"{(.*?)}", element.text))
        else:
            code += " " + (element.text or "")
        problems += [f"the Visual Studio views know no {word}" for word in
                     re.findall(r"[A-Za-z_]\w*", code) if word not in known]
    return problems


def main():
    problems = check_gdb(*sys.argv[1:]) + check_natvis()
    print("\n".join(problems) or "all views are right")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
