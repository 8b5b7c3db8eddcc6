# SPDX-License-Identifier: Apache-2.0
"""Runs the executable of the benchmarks and keeps its measurements."""

import itertools
import json
import os
import re
import statistics
import subprocess
import sys


class Fault(Exception):
    pass


def available(binary):
    """The names of the benchmarks in the executable, since some peers may not be installed."""
    listed = subprocess.run([binary, "--benchmark_list_tests"], stdout=subprocess.PIPE, text=True,
                            check=True)
    return set(listed.stdout.split())


# Groups that need fewer repetitions, because one takes long and is exact.
FEWER = {"growth": 2, "producers": 2}
# Has GLib free small blocks that it no longer uses, since they would spoil the count of memory.
ENVIRONMENT = {"memory": {"G_SLICE": "always-malloc"}}


def run_group(binary, names, repetitions, min_time):
    group = names[0].split("/")[0]
    repetitions = min(repetitions, FEWER.get(group, repetitions))
    # The executable takes no hyphen for special, and refuses one that is escaped.
    wanted = "|".join(re.escape(name).replace(r"\-", "-") for name in names)
    command = [binary, f"--benchmark_filter=^({wanted})$", "--benchmark_format=json",
               f"--benchmark_repetitions={repetitions}", f"--benchmark_min_time={min_time}",
               "--benchmark_enable_random_interleaving=true"]
    finished = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True,
                              env=os.environ | ENVIRONMENT.get(group, {}), check=False)
    if finished.returncode != 0:
        raise Fault(f"{binary} ended with {finished.returncode}:\n{finished.stderr}")
    return json.loads(finished.stdout)


def groups(names):
    """Groups names by their first part. Each group runs in a process, and so on a heap, of its own."""
    return [list(group) for _, group in itertools.groupby(sorted(names),
                                                          lambda name: name.split("/")[0])]


def run(binary, names, runs, repetitions, min_time):
    """Runs every group as many times. Gives the measurements and the executable's own data."""
    entries, context = [], {}
    for number in range(runs):
        for group in groups(names):
            print(f"run {number + 1} of {runs}: {group[0].split('/')[0]}", file=sys.stderr)
            measured = run_group(binary, group, repetitions, min_time)
            context = measured["context"]
            entries += [entry for entry in measured["benchmarks"]
                        if entry["run_type"] == "iteration"]
    return {"context": context, "benchmarks": entries}


def things_of(name):
    """How many things an iteration of a benchmark does; its time is given for one of them."""
    parts = name.split("/")
    if parts[0] == "queue":
        return 1000
    if parts[0] == "producers":
        return 500_000 * int(parts[2])
    if name.startswith("records/make/"):
        return 10_000
    return int(parts[3]) if parts[0] == "growth" else 1


class Results:
    """The repetitions of each benchmark, by its name."""

    def __init__(self, entries):
        self.repetitions = {}
        for entry in entries:
            if entry.get("error_occurred"):
                raise Fault(f"{entry['name']}: {entry['error_message']}")
            self.repetitions.setdefault(entry["name"], []).append(entry)

    def __contains__(self, name):
        return name in self.repetitions

    def expect(self, names):
        missing = [name for name in names if name not in self]
        if missing:
            raise Fault(f"no such benchmark: {', '.join(missing)}")

    def times(self, name):
        """Nanoseconds for one thing, of each repetition."""
        clock = "real_time" if re.search("real_time|manual_time", name) else "cpu_time"
        return [entry[clock] / things_of(name) for entry in self.repetitions[name]]

    def time(self, name):
        return statistics.median(self.times(name))

    def spread(self, name):
        """The median distance from the median, as a fraction of it."""
        times = self.times(name)
        median = statistics.median(times)
        return statistics.median(abs(time - median) for time in times) / median if median else 0

    def count(self, name, counter):
        return statistics.median(entry[counter] for entry in self.repetitions[name])
