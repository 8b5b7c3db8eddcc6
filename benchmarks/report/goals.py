# SPDX-License-Identifier: Apache-2.0
"""The table of goals: a workload, what it is compared with, and the largest ratio."""

from typing import NamedTuple


class Row(NamedTuple):
    """A workload: our benchmark, the others with their labels in the table, and the goal, which is the
    label of the one that ours is compared with and the largest ratio. Ours may take some nanoseconds
    more than that, where the goal allows for work that the other does not do."""
    workload: str
    ours: str
    others: dict = {}
    goal: tuple = None
    more: int = 0

    def benchmarks(self):
        return [self.ours, *self.others.values()]


class CountRow(NamedTuple):
    """A count that a benchmark reports beside its time, and the most that it may be."""
    workload: str
    ours: str
    counter: str
    most: int

    def benchmarks(self):
        return [self.ours]


class LimitRow(NamedTuple):
    """A time that is to stay below a number of nanoseconds."""
    workload: str
    ours: str
    most: int

    def benchmarks(self):
        return [self.ours]


def broadcast(count, goal=None):
    others = {"Boost": "boost", "Boost in a map": "boostmap", "naive": "naive", "floor": "floor",
              "far floor": "farfloor"}
    others = {label: f"broadcast/{peer}/{count}" for label, peer in others.items()}
    plural = "s" if count > 1 else ""
    return Row(f"broadcast to {count} listener{plural}", f"broadcast/ours/{count}", others, goal)


def lookup(workload, kind, others, goal):
    others = {label: f"names/{name}/10000" for label, name in others.items()}
    return Row(workload, f"names/{kind}/10000", others, goal)


def register(workload, kind, many, few, most):
    """Two rows: ours beside many listeners against Boost, and against ours beside few listeners."""
    name = f"register/{kind}"
    others = {"Boost in a map": f"{name}/boostmap/{many}", "naive": f"{name}/naive/{many}"}
    return [Row(workload, f"{name}/ours/{many}", others, ("Boost in a map", most)),
            Row(f"{workload}: growth", f"{name}/ours/{many}", {"beside 100": f"{name}/ours/{few}"},
                ("beside 100", 2.0))]


def threads(count):
    others = {label: f"threads/{peer}/min_time:0.100/real_time/threads:{count}"
              for label, peer in {"Boost": "boost", "naive": "naive"}.items()}
    return Row(f"broadcast to 10 listeners, {count} thread{'s' * (count > 1)}, wall time",
               f"threads/ours/min_time:0.100/real_time/threads:{count}", others)


RECORD = "memory/record/ours/iterations:1"

GOALS = [
    broadcast(1, ("Boost", 0.55)),
    broadcast(10),
    broadcast(100, ("floor", 1.15)),
    broadcast(1000),
    CountRow("broadcast to 100 listeners: allocations", "broadcast/ours/100", "allocations", 0),
    threads(1),
    threads(2),
    lookup("broadcast of one of 10,000 names", "ours",
           {"Boost in a map": "boostmap", "naive": "naive"}, ("Boost in a map", 0.5)),
    lookup("the same, numbered names", "numbered/ours",
           {"Boost in a map": "numbered/boostmap", "ordinary names": "ours"}, None),
    lookup("the same, names of one sampling hash", "alike/ours",
           {"Boost in a map": "alike/boostmap", "ordinary names": "ours"}, ("ordinary names", 1.2)),
    *register("register + cancel beside 10,000 of one name", "newest", "10000/1", "100/1", 0.55),
    *register("cancel a random one of 10,000 of one name + register", "random", "10000/1", "100/1",
              0.55),
    *register("register + cancel over 10,000 names", "newest", "10000/10000", "100/100", 0.4),
    *register("cancel the only one of a random name of 10,000 + register", "random", "10000/10000",
              "100/100", 0.4),
    Row("first listener: construct, register, cancel, destroy", "first/ours",
        {"Boost": "first/boost", "naive": "first/naive"}, ("Boost", 0.6)),
    Row("first listener: construct, register", "first/register/ours",
        {"Boost": "first/register/boost", "naive": "first/register/naive"}),
    Row("idle: construct, query, destroy", "idle/ours", {"Boost": "idle/boost"}),
    CountRow("a listener with its handle, in bytes", "memory/listener/ours/1000/iterations:1",
             "bytes", 112),
    Row("broadcast to a listener to any name", "any/ours",
        {"to one of the name": "broadcast/ours/1"}),
    CountRow("one registration for any name, in bytes", "memory/any/ours/iterations:1", "bytes",
             200),
    CountRow("idle: allocations", "idle/ours", "allocations", 0),
    CountRow("idle: what a broadcaster adds to its object, in pointers",
             "memory/sizes/iterations:1", "holder", 1),
    CountRow("idle: the least broadcasting object, in pointers", "memory/sizes/iterations:1",
             "object", 2),
    Row("find a source among 100,000, the same 100 in turn", "find/ours/100000/100",
        {"among 100": "find/ours/100/100"}, ("among 100", 2.5)),
    Row("find a source among 100,000, all in turn", "find/ours/100000/100000",
        {"hash map": "find/hashmap/100000/100000", "among 100": "find/ours/100/100"},
        ("hash map", 1.5)),
    *[Row(f"{step} 100,000 sources in one scope; each", f"growth/{step}/ours/100000",
          {"hash map": f"growth/{step}/hashmap/100000"}, ("hash map", 1.5))
      for step in ("add", "find", "remove")],
    CountRow("find a source: allocations", "find/ours/100000/100000", "allocations", 0),
    Row("source announces one property, 1 listener", "announce/ours",
        {"broadcaster": "broadcast/ours/1"}),
    Row("Property<double>::Set, 1 listener", "set/ours/1", {"announcement": "announce/ours"}),
    CountRow("Property<double>::Set: allocations", "set/ours/1", "allocations", 0),
    Row("GetProperty<double> by name", "get/oursnamed", {"found before": "get/oursfound"}),
    LimitRow("AnyPropertyRef::Read of a number", "get/oursany", 15),
    CountRow("AnyPropertyRef::Read of a number: allocations", "get/oursany", "allocations", 0),
    CountRow("GetProperty<double>: allocations", "get/oursnamed", "allocations", 0),
    CountRow("a record of six properties, in bytes", RECORD, "bytes", 450),
    CountRow("a record of six properties: allocations", RECORD, "allocations", 2),
    CountRow("one property more, in bytes", "memory/parts/ours/iterations:1", "property", 48),
    CountRow("a source without properties, in bytes", "memory/parts/ours/iterations:1", "source",
             160),
    Row("make 10,000 records of six properties; each", "records/make/ours",
        {label: f"records/make/{peer}" for label, peer in
         {"QObject": "qt", "items": "qtitem", "GObject": "glib", "plain": "floor"}.items()},
        ("QObject", 3.0)),
    LimitRow("make and end records on 4 threads; each, wall time",
             "records/threads/ours/min_time:0.100/real_time/threads:4", 200),
    Row("raise 1000 named events, dispatch all; per event", "queue/ours/100",
        {"functions": "queue/functions/100", "floor": "queue/floor/100", "Qt": "queue/qt/100",
         "GLib": "queue/glib/100", "Boost": "queue/boost/100"}, ("functions", 0.9)),
    Row("the same, against posted events", "queue/ours/100", {"Qt": "queue/qt/100"}, ("Qt", 0.2)),
    *[Row(f"RaiseLatest over {count:,} queued names", f"latest/ours/{count}",
          {"scan": f"latest/floor/{count}", "10 names": "latest/ours/10"}, goal)
      for count, goal in ((10, None), (1000, None), (10_000, ("10 names", 3.0)))],
    Row("the same, against scanning", "latest/ours/10000", {"scan": "latest/floor/10000"},
        ("scan", 0.05)),
    Row("2 threads raise 10⁶ events, a third dispatches; wall time",
        "producers/ours/2/iterations:1/manual_time",
        {"functions": "producers/functions/2/iterations:1/manual_time"}, ("functions", 1.0)),
    Row("raise + dispatch to 100 listeners", "deliver/ours/100",
        {"floor": "deliver/floor/100", "functions": "deliver/functions/100",
         "Boost": "deliver/boost/100"}, ("floor", 1.3)),
    Row("typed bind: set at the source to the widget's function", "bind/ours",
        {"callback": "bind/callback", "asked": "bind/asking", "Qt": "bind/qt"}, ("callback", 2.0)),
    CountRow("typed bind: allocations", "bind/ours", "allocations", 0),
    LimitRow("Assign 10,000 rows, none differ", "lists/assign/ours/10000/0", 300_000),
    LimitRow("Assign 10,000 rows, 1 % differ", "lists/assign/ours/10000/10", 400_000),
    # 1.5 times what n log n makes of a hundred times as many rows
    Row("Assign 1,000,000 rows, 1 % differ", "lists/assign/ours/1000000/10",
        {"10,000": "lists/assign/ours/10000/10"}, ("10,000", 225.0)),
    LimitRow("insert 10,000 rows at once into a list", "lists/insert/ours", 1_000_000),
    CountRow("update a row of 100,000: allocations", "lists/update/ours", "allocations", 0),
    LimitRow("a cell by a kept field", "lists/cell/ours", 10),
    CountRow("a row of a list beside its struct, in bytes", "memory/list/ours/iterations:1",
             "fresh", 18),
    CountRow("the same after many moves and replacements", "memory/list/ours/iterations:1",
             "churned", 22),
    Row("one key of a sorted view of 100,000 changes, observed", "views/one-key/ours",
        {"Qt": "views/one-key/qt"}, ("Qt", 0.025)),
    CountRow("the same: allocations", "views/one-key/ours", "allocations", 0),
    LimitRow("Assign 10,000 rows under a sorted view, none differ", "views/assign/ours/0", 300_000),
    LimitRow("Assign 10,000 rows under a sorted view, 1 % differ", "views/assign/ours/100", 400_000),
    Row("every value of 100,000 changes under a sorted view", "views/every-value/ours/iterations:10",
        {"sorting": "views/every-value/floor/100000/iterations:10"}, ("sorting", 2.0), 10_000_000),
    LimitRow("insert 10,000 rows at once under a filter", "views/insert/filtered/iterations:50",
             1_000_000),
    Row("insert 10,000 rows at once under a sorted view", "views/insert/ours/iterations:50",
        {"sorting": "views/insert/floor/10000"}, ("sorting", 2.0)),
    # half a microsecond for each of a thousand ranges that are told
    Row("a filter over 100,000 rows changes for 1 % of them", "views/refilter/ours",
        {"copy_if": "views/refilter/floor"}, ("copy_if", 2.0), 500_000),
    CountRow("a row of a view, in bytes", "memory/view/ours/iterations:1", "bytes", 8),
    LimitRow("IdlePass::Run with nothing queued", "idlepass/ours", 50),
    CountRow("IdlePass::Run: allocations", "idlepass/ours", "allocations", 0),
]


def available(row, there):
    """The row without peers that are not installed; None if no peer is left to compare with."""
    if row.ours not in there:
        return None
    if not isinstance(row, Row):
        return row
    others = {label: name for label, name in row.others.items() if name in there}
    if row.goal and row.goal[0] not in others:
        return None
    return row._replace(others=others) if others else None
