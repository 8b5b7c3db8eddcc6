# SPDX-License-Identifier: Apache-2.0
"""Writes the page of measurements and its plots."""

import platform
import re
from pathlib import Path

from report import peers, plot, tables
from report.sweeps import DATA, DEPTHS, EVENTS, GROWTH, MEMORY, SWEEPS

DASHES = {peers.YES: "", peers.SIGNALS: "8 3 2 3", peers.NO: "6 4", peers.FLOOR: "2 3"}
LEGEND = [(DASHES[peers.YES], "thread-safe"), (DASHES[peers.SIGNALS], "but for its map"),
          (DASHES[peers.NO], "one thread"), (DASHES[peers.FLOOR], "floor")]

HEAD = """# How fast it is, beside others

Written by `./dev bench`, which measures everything below in one run. The ratios matter, not the
figures: another machine has others.

{facts}

**Method.** Each group of workloads is a process of its own, run {runs}×. Each time its benchmarks
are repeated {repetitions}× in random order (the longest ones 2×), so that a busy moment of the
machine and a lucky place in memory touch all alike. A time is the median of all repetitions; `±` is
the median distance from it; `×` is the ratio to the library's own. Every listener does the same
work, an increment or an addition, that cannot be left out, and each workload checks that all
listeners ran. The process has had a second thread before it measures, so that nobody's locks are
left out. Names are equal strings in other places than those registered. Times are the processor's,
but for those that say wall time.

**Thread-safe** says whether threads may announce (or raise) one object's change at the same time:
*yes*, *no*, or *its signals*, where a map that finds them needs a lock of its own, which is not
measured here and would come on top. Floors are the least that the work can cost, and no peers.
"""

AHEAD_TEXT = """How many times as much ours takes, at each N where it takes more. What is within the
spread of its row changes sides from run to run.

"""

AHEAD = """## Where a thread-safe peer is ahead

{text}
"""

MEMORY_TEXT = """## Memory

Bytes of the heap that are in use, by the C library's own account (`mallinfo2`), which counts
whatever a peer allocates, the allocator's own words and its rounding included; GLib's cache of
small blocks is off for this (`G_SLICE=always-malloc`), as it is for good in later versions. Objects
stand side by side in an array of 10,000; a peer whose objects are on the heap adds its pointer.
Handles are counted with their listeners.
"""

GROWTH_TEXT = """## How a scope grows

Nanoseconds for each of N elements of one provider. The columns at the right are the growth of that
time over the growth of log N: 1.00 is a step that takes n log n in all. Memory has its part in it:
a hash map of as many names, whose steps are constant but for the caches, is shown for comparison.
Counted in instructions (`valgrind --tool=callgrind`), no step grows faster than log N.

{growth}

{plots}

A chain of scopes, one within the other; nanoseconds for one operation. The columns at the right are
the growth of the time over that of the depth.

{depths}

{depth_plot}
"""


def machine(context):
    """Names the machine and the versions on which the measurements depend."""
    model = re.search(r"model name\s*: (.*)", Path("/proc/cpuinfo").read_text(encoding="utf-8"))
    system = re.search(r'PRETTY_NAME="(.*)"', Path("/etc/os-release").read_text(encoding="utf-8"))
    caches = ", ".join(f"L{cache['level']} {cache['type'].lower()} {cache['size'] // 1024} KiB"
                       for cache in context["caches"])
    libraries = ", ".join(f"{name.removeprefix('library ')} {version.replace('_', '.')}"
                          for name, version in sorted(context.items())
                          if name.startswith("library ") and isinstance(version, str))
    lines = {
        "Date": context["date"][:10],
        "Processor": f"{model.group(1) if model else platform.machine()}, {context['num_cpus']} "
                     f"processors at {context['mhz_per_cpu']} MHz; {caches}",
        "System": f"{system.group(1) if system else platform.system()}, "
                  f"{platform.system()} {platform.release()}; load {context['load_avg'][0]:.1f}",
        "Compiler": f"{context['compiler']}, optimised (`release` preset)",
        "Libraries": re.sub(r"library_\S+ \S+(, )?", "", libraries),
    }
    return "\n".join(f"- {name}: {text}" for name, text in lines.items())


def lines_of(sweep, results):
    """A line for each peer that was measured at more than one point."""
    markers, lines = {}, []
    for name, peer in tables.present(sweep, results).items():
        points = [(point, sweep.value(results, name, point)) for point in sweep.points]
        points = [(x, y) for x, y in points if y]
        number = markers[peer.colour] = markers.get(peer.colour, -1) + 1
        if len(points) > 1:
            ours = name == peers.OURS
            lines.append(plot.Line(peer.label, points, peer.colour, DASHES[peer.safe], number,
                                   3 if ours else 1.8))
    return lines


def section(sweep, results, folder):
    parts = [f"### {sweep.title}", sweep.text]
    if sweep.plotted:
        lines = lines_of(sweep, results)
        used = [(dash, text) for dash, text in LEGEND if any(line.dash == dash for line in lines)]
        drawing = plot.draw(sweep.title, sweep.axis, sweep.unit, lines, used)
        (folder / f"{sweep.slug}.svg").write_text(drawing, encoding="utf-8")
        parts.append(f"![{sweep.title}, by the number of {sweep.axis}]"
                     f"({folder.name}/{sweep.slug}.svg)")
    parts.append(tables.sweep(sweep, results))
    return "\n\n".join(part for part in parts if part)


COLOURS = (peers.BLUE, peers.RED, peers.GREEN, peers.BROWN, peers.PURPLE, peers.GREY)


def growth_lines(rows, results):
    """Two lines for each step: ours, and dashed the same step of a hash map."""
    lines = []
    for row, colour in zip(rows, COLOURS):
        for label, pattern, dash in zip((row.label, f"{row.label}, hash map"), row.patterns(),
                                        ("", DASHES[peers.FLOOR])):
            points = [(n, results.time(pattern.format(n=n))) for n in row.points]
            lines.append(plot.Line(label, points, colour, dash, len(lines)))
    return lines


def growth_plot(slug, title, axis, rows, results, folder):
    drawing = plot.draw(title, axis, "ns", growth_lines(rows, results), [])
    (folder / f"{slug}.svg").write_text(drawing, encoding="utf-8")
    return f"![{title}, by the number of {axis}]({folder.name}/{slug}.svg)"


def growth_section(results, folder):
    by_step = {"sources": ("Sources of one scope", GROWTH[:3]),
               "listeners": ("Listeners of one scope", GROWTH[3:])}
    plots = [growth_plot(f"growth-{axis}", title, axis, rows, results, folder)
             for axis, (title, rows) in by_step.items()]
    return GROWTH_TEXT.format(
        growth=tables.growth_table(GROWTH, results), plots="\n\n".join(plots),
        depths=tables.depth_table(DEPTHS, results),
        depth_plot=growth_plot("chain", "Scopes within scopes", "scopes", DEPTHS, results, folder))


def notes(results):
    """Says what each peer that was measured does differently from the library, or leaves out."""
    measured = {part for name in results.repetitions for part in name.split("/")}
    families = {"Announcing": peers.SIGNALS_OF, "Properties": peers.PROPERTIES,
                "Records": peers.RECORDS, "Finding sources": peers.SOURCES, "Binds": peers.BINDS, "Events": peers.EVENTS}
    lines = [[title if name == peers.OURS else "", peer.label, peer.note]
             for title, family in families.items()
             for name, peer in family.items() if name in measured]
    return "## What the peers are\n\n" + tables.markdown(["", "peer", "what it does, or does not"],
                                                         lines, ["---"] * 3)


def ahead_text(results):
    rows = tables.ahead(SWEEPS, results)
    if not rows:
        return "Nowhere."
    return AHEAD_TEXT + tables.markdown(["workload", "peers (N: ours over theirs)", "reason"], rows,
                           ["---"] * 3)


def write(page, goals, results, measured):
    """Writes the page, and beside it a plot for each sweep."""
    folder = page.parent / page.stem
    folder.mkdir(exist_ok=True)
    facts = HEAD.format(facts=machine(measured["context"]), **measured["effort"])
    chapters = {"Announcing, registering, properties": DATA, "Events": EVENTS}
    parts = [facts.strip(), "## Goals", tables.goals(goals, results),
             AHEAD.format(text=ahead_text(results)).strip()]
    for title, sweeps in chapters.items():
        parts += [f"## {title}", *[section(sweep, results, folder) for sweep in sweeps]]
    parts += [MEMORY_TEXT.strip(), *[section(sweep, results, folder) for sweep in MEMORY]]
    parts.append(growth_section(results, folder).strip())
    parts.append(notes(results))
    page.write_text("\n\n".join(parts) + "\n", encoding="utf-8")
