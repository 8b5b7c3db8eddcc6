# SPDX-License-Identifier: Apache-2.0
"""Turns measurements into Markdown: the table of goals, and one for each sweep."""

import math

from report import peers
from report.goals import CountRow, LimitRow
from report.reasons import reason


def number(value):
    return f"{value:,.0f}" if value >= 100 else f"{value:.1f}"


def markdown(head, lines, alignment=None):
    rule = alignment or ["---"] + ["--:"] * (len(head) - 1)
    return "\n".join(f"| {' | '.join(line)} |" for line in [head, rule, *lines])


def verdict(value, most):
    return "yes" if value <= most else "**no**"


def goal_cells(row, results):
    if isinstance(row, CountRow):
        count = results.count(row.ours, row.counter)
        return [row.workload, f"{count:.3g}", "", "", f"≤ {row.most}", verdict(count, row.most)]
    ours = results.time(row.ours)
    if isinstance(row, LimitRow):
        return [row.workload, number(ours), "", "", f"< {row.most} ns", verdict(ours, row.most)]
    others = {label: results.time(name) for label, name in row.others.items()}
    listed = ", ".join(f"{label} {number(time)}" for label, time in others.items())
    label, most = row.goal or (next(iter(others)), None)
    ratio = ours / others[label]
    goal = "" if most is None else f"≤ {most} × {label}"
    if row.more:
        goal += f" + {number(row.more)}"
    return [row.workload, number(ours), listed, f"{ratio:.2f} × {label}", goal,
            "" if most is None else verdict(ours, most * others[label] + row.more)]


def goals(rows, results):
    return markdown(["workload", "ours (ns)", "others (ns)", "ratio", "to reach", "reached"],
                    [goal_cells(row, results) for row in rows],
                    ["---", "--:", "---", "---", "---", "---"])


def sweep_cell(sweep, results, peer, point):
    """The median, its spread, and how many times as much as ours it is."""
    value = sweep.value(results, peer, point)
    if value is None:
        return ""
    cell = number(value)
    if not sweep.counter:
        cell += f" ±{100 * results.spread(sweep.benchmark(peer, point)):.0f}%"
    ours = next(iter(sweep.peers))
    if peer != ours:
        cell += f", {value / sweep.value(results, ours, point):.2f}×"
    return cell


def present(sweep, results):
    """The peers of a sweep that were measured."""
    return {name: peer for name, peer in sweep.peers.items()
            if any(sweep.value(results, name, point) is not None for point in sweep.points)}


def sweep(of, results):
    head = ["peer", "thread-safe"]
    head += [f"N = {point:,}" if of.axis else of.unit for point in of.points]
    lines = []
    for name, peer in present(of, results).items():
        cells = [sweep_cell(of, results, name, point) for point in of.points]
        if name == next(iter(of.peers)):
            cells = [f"**{cell}**" for cell in cells]
        safe = "" if peer.safe == peers.FLOOR else peer.safe
        lines.append([peer.label, safe, *cells])
    return markdown(head, lines, ["---", "---"] + ["--:"] * len(of.points))


def rivals(of, results):
    """The peers of a sweep that are safe in the use of threads, without the library's own."""
    return [name for name, peer in present(of, results).items()
            if peer.is_rival and peer.colour != peers.BLUE]


def lead(of, results, name):
    """The points at which a peer takes less than the library, and how many times as much the library
    takes there."""
    ours = next(iter(of.peers))
    values = [(point, of.value(results, ours, point), of.value(results, name, point))
              for point in of.points]
    return [f"{point:,}: {mine / theirs:.2f}×" if of.axis else f"{mine / theirs:.2f}×"
            for point, mine, theirs in values if theirs is not None and theirs < mine]


def ahead(sweeps, results):
    """The workloads in which peers that are safe in the use of threads take less than ours: the
    peers with their leads, and the reason that they share."""
    rows = {}
    for of in sweeps:
        for name in rivals(of, results):
            if points := lead(of, results, name):
                key = (of.title, reason(of.slug, name))
                rows.setdefault(key, []).append(f"{of.peers[name].label} ({', '.join(points)})")
    return [[title, "; ".join(leads), why] for (title, why), leads in rows.items()]


def growth(rows, results, ideal):
    """The time of one element at each point, and its growth beyond the ideal growth."""
    lines = []
    for row in rows:
        for label, pattern in zip((row.title, "the same with a hash map"), row.patterns()):
            times = [results.time(pattern.format(n=point)) for point in row.points]
            ratios = [time / times[0] * ideal(row.points[0]) / ideal(point)
                      for time, point in zip(times, row.points)]
            lines.append([label, *map(number, times),
                          *[f"{ratio:.2f}" for ratio in ratios[1:]]])
    return lines


def growth_table(rows, results):
    """Per element; 1.00 is growth with n log n."""
    points = rows[0].points
    head = ["step"] + [f"N = {point:,}" for point in points]
    head += [f"{point:,} : n log n" for point in points[1:]]
    return markdown(head, growth(rows, results, math.log2))


def depth_table(rows, results):
    """Per operation; 1.00 is growth with the depth."""
    points = rows[0].points
    head = ["step"] + [f"depth {point:,}" for point in points]
    head += [f"{point:,} : linear" for point in points[1:]]
    return markdown(head, growth(rows, results, lambda depth: depth))
