# SPDX-License-Identifier: Apache-2.0
"""The sweeps: one workload for all its peers, over a growing number of something."""

from typing import NamedTuple

from report import peers

THREADED = "min_time:0.100/real_time/threads:{}"


class Sweep(NamedTuple):
    """`pattern` gives the benchmark of a {peer} at a {point}. A `counter` is read instead of the time."""
    slug: str
    title: str
    text: str
    peers: dict
    pattern: str
    axis: str = ""
    points: tuple = ("",)
    counter: str = None
    plotted: bool = True

    def benchmark(self, peer, point):
        return self.pattern.format(peer=peer, point=point)

    def benchmarks(self):
        return [self.benchmark(peer, point) for peer in self.peers for point in self.points]

    def value(self, results, peer, point):
        """The median, in nanoseconds or of the counter; None if the peer was not measured."""
        name = self.benchmark(peer, point)
        if name not in results:
            return None
        return results.count(name, self.counter) if self.counter else results.time(name)

    @property
    def unit(self):
        return self.counter or "ns"


def selected(family, *names):
    return {name: family[name] for name in names}


BY_NAME = selected(peers.SIGNALS_OF, "ours", "naive", "boostmap", "sigslotmap", "sigcmap",
                   "qtmap", "qtdynamic", "glibdetail")
OBJECTS = {name: peer for name, peer in peers.SIGNALS_OF.items()
           if name not in ("floor", "farfloor")}
AUDIENCES = (1, 10, 100, 1000)
NAMES = (1, 10, 100, 1000, 10_000)

DATA = [
    Sweep("broadcast", "Broadcast to N listeners",
          "One name is announced. Each listener adds one to a number.",
          peers.SIGNALS_OF, "broadcast/{peer}/{point}", "listeners", AUDIENCES),
    Sweep("set", "Set a property with N listeners",
          "A number is set to another one each time; each listener adds one to a number.",
          peers.PROPERTIES, "set/{peer}/{point}", "listeners", AUDIENCES),
    Sweep("names", "Announce one of N names",
          "Each name has one listener; they are announced in random order.",
          BY_NAME, "names/{peer}/{point}", "names", NAMES),
    Sweep("newest", "Register and cancel beside N listeners of the same name",
          "The newest listener goes before the next one comes. A signal in a map stays in it.",
          OBJECTS, "register/newest/{peer}/{point}/1", "others", (0, 100, 10_000)),
    Sweep("random", "Cancel a random one of N listeners of one name and register another",
          "Listeners leave in another order than they came in.",
          OBJECTS, "register/random/{peer}/{point}/1", "listeners", (1, 100, 10_000)),
    Sweep("newest-names", "Register and cancel beside N listeners, each of its own name",
          "Each name has a listener already.",
          BY_NAME, "register/newest/{peer}/{point}/{point}", "names", (1, 100, 10_000)),
    Sweep("random-names",
          "Cancel the only listener of a random one of N names and register another",
          "The name goes with its listener, but for signals in a map.",
          BY_NAME, "register/random/{peer}/{point}/{point}", "names", (1, 100, 10_000)),
    Sweep("threads", "Broadcast to 10 listeners from N threads",
          "Wall time of one broadcast: half of one thread's is ideal. Peers that threads may not "
          "use are left out.",
          {name: peer for name, peer in peers.SIGNALS_OF.items() if peer.is_rival},
          "threads/{peer}/" + THREADED.format("{point}"), "threads", (1, 2)),
    Sweep("first", "First listener: construct, register, cancel, destroy", "",
          OBJECTS, "first/{peer}", plotted=False),
    Sweep("first-register", "First listener: construct, register", "",
          OBJECTS, "first/register/{peer}", plotted=False),
    Sweep("idle", "Idle object: construct, ask whether anybody listens, destroy", "",
          OBJECTS, "idle/{peer}", plotted=False),
    Sweep("get", "Read a property by its name", "",
          selected(peers.PROPERTIES, "oursnamed", "oursfound", "oursany", "qtnamed",
                   "qtdynamic", "glib"),
          "get/{peer}", plotted=False),
    Sweep("records", "Make 10,000 records of six properties; time of one", "",
          peers.RECORDS, "records/make/{peer}", plotted=False),
    Sweep("records-threads", "Make and end records on N threads; wall time of one", "",
          peers.RECORDS, "records/threads/{peer}/" + THREADED.format("{point}"), "threads", (1, 4),
          plotted=False),
    Sweep("find", "Find one of N sources by its name",
          "All are asked for in random order, so that most of the larger numbers is waiting for "
          "memory.",
          peers.SOURCES, "find/{peer}/{point}/{point}", "sources", (100, 1000, 10_000, 100_000)),
    Sweep("bind", "From a property that is set to the function that shows it", "",
          peers.BINDS, "bind/{peer}", plotted=False),
]

EVENTS = [
    Sweep("queue", "Raise 1000 events over N names and dispatch them; time of one event",
          "Each name has one listener.",
          peers.EVENTS, "queue/{peer}/{point}", "names", NAMES),
    Sweep("latest", "Replace the newest event of a name while N are queued",
          "Functions in a vector cannot be found again, and are left out.",
          selected(peers.EVENTS, "ours", "floor", "qt", "glib"), "latest/{peer}/{point}",
          "queued names", (10, 100, 1000, 10_000)),
    Sweep("deliver", "Raise one event and dispatch it to N listeners", "",
          peers.EVENTS, "deliver/{peer}/{point}", "listeners", AUDIENCES),
    Sweep("producers", "N threads raise half a million events each, another dispatches; wall time "
          "of one event", "",
          peers.EVENTS, "producers/{peer}/{point}/iterations:1/manual_time", "threads", (1, 2)),
]

MEMORY = [
    Sweep("memory-idle", "An object that nobody listens to", "",
          OBJECTS, "memory/idle/{peer}/iterations:1", counter="bytes", plotted=False),
    Sweep("memory-property", "An object with one property that nobody listens to", "",
          {name: peer for name, peer in peers.PROPERTIES.items()
           if name not in ("oursnamed", "oursfound", "oursany", "qtnamed")},
          "memory/property/{peer}/iterations:1", counter="bytes", plotted=False),
    Sweep("memory-record", "A record of six properties that nobody listens to",
          "One of 10,000, with the pointer that owns it.",
          peers.RECORDS, "memory/record/{peer}/iterations:1", counter="bytes", plotted=False),
    Sweep("memory-listener", "One of N listeners of one name, with its handle",
          "The object itself is not counted.",
          OBJECTS, "memory/listener/{peer}/{point}/iterations:1", "listeners", AUDIENCES,
          counter="bytes"),
]

SWEEPS = DATA + EVENTS + MEMORY


class Growth(NamedTuple):
    """A step of one provider for N elements; `hashmap` is the same step of a map, and `label` names
    the step in a plot."""
    title: str
    label: str
    ours: str
    hashmap: str = None
    points: tuple = (1000, 10_000, 100_000)

    def patterns(self):
        return [pattern for pattern in (self.ours, self.hashmap) if pattern]

    def benchmarks(self):
        return [pattern.format(n=point) for pattern in self.patterns() for point in self.points]


def sources(title, step):
    return Growth(title, step, f"growth/{step}/ours/{{n}}",
                  f"growth/{step}/hashmap/{{n}}")


def listeners(title, step, names):
    label = step if names == 1 else f"{step}, N names"
    return Growth(title, label, f"growth/{step}/ours/{{n}}/{names}")


def depth(title, step):
    return Growth(title, step, f"chain/{step}/ours/{{n}}", points=(1, 10, 100))


GROWTH = [
    sources("add N sources", "add"),
    sources("look each up, in random order", "find"),
    sources("remove each, in random order", "remove"),
    listeners("give N listeners of one name the provider", "listen", 1),
    listeners("add the source: all N are connected", "connect", 1),
    listeners("take the N listeners off, in random order", "leave", 1),
    listeners("give N listeners of a name each the provider", "listen", "{n}"),
    listeners("add the N sources: each connects one", "connect", "{n}"),
    listeners("take the N listeners of a name each off, in random order", "leave", "{n}"),
]

DEPTHS = [
    depth("look up, in the innermost, what the outermost holds", "find"),
    depth("a listener comes to the innermost, is connected in the outermost, and leaves", "listen"),
    depth("the outermost's source goes and comes again, with 10 listeners in the innermost",
          "replace"),
]
