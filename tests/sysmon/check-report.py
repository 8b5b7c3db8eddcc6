#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Runs the monitor as users do, and compares what it reports with what this machine says of itself.

usage: check-report.py <command...>

The command may begin with an emulator of Windows: the machine's memory, uptime and interfaces are
the same there, its processes are not.
"""

import json
import os
import signal
import socket
import subprocess
import sys
import time
import unittest

COMMAND = sys.argv[1:]
IS_WINDOWS = COMMAND[-1].endswith(".exe")
QUICK = ["--interval", "50"]


def run(*options):
    return subprocess.run(COMMAND + list(options), stdin=subprocess.DEVNULL, capture_output=True,
                          timeout=120, check=False)


def read(path):
    with open(path, encoding="utf-8") as file:
        return file.read()


class Report(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.ended = run("--json", *QUICK)
        cls.report = json.loads(cls.ended.stdout)

    def test_ends_well_and_lists_no_events_unasked(self):
        self.assertEqual((self.ended.returncode, self.ended.stderr), (0, b""))
        self.assertNotIn("Events", self.report)

    def test_host_is_this_one(self):
        host = self.report["Host"]
        self.assertEqual(host["Name"].lower(), socket.gethostname().lower())
        self.assertAlmostEqual(host["Uptime"], float(read("/proc/uptime").split()[0]), delta=120)
        self.assertRegex(host["System"], r"^Windows \d+\." if IS_WINDOWS else r"^Linux \d")
        self.assertEqual(host["Architecture"], os.uname().machine)

    def test_memory_is_that_of_this_machine(self):
        memory = self.report["Memory"]
        real = int(read("/proc/meminfo").split()[1]) * 1024
        self.assertAlmostEqual(memory["Total"], real, delta=1 << 16)  # the emulator miscounts a page
        self.assertTrue(0 < memory["Available"] < memory["Total"])
        self.assertEqual(memory["Used"], memory["Total"] - memory["Available"])

    def test_shares_of_the_processors_are_parts_of_one(self):
        cpu = self.report["Cpu"]
        self.assertEqual(cpu["Cores"], os.sysconf("SC_NPROCESSORS_ONLN"))
        for share in ("User", "System", "Usage", "Waiting", "Stolen"):
            self.assertTrue(0 <= cpu[share] <= 1.001, share)

    def test_interfaces_are_those_of_this_machine(self):
        names = [interface["Name"] for interface in self.report["Interfaces"]]
        self.assertEqual(names, sorted(os.listdir("/sys/class/net")))
        for interface in self.report["Interfaces"]:
            statistics = f"/sys/class/net/{interface['Name']}/statistics/"
            now = int(read(statistics + "rx_bytes"))
            self.assertTrue(now / 2 <= interface["Received"] <= now, interface)

    def test_monitor_finds_itself_among_the_processes(self):
        name = os.path.basename(COMMAND[-1])
        namesakes = [process for process in self.report["Processes"] if process["Name"] == name]
        own = min(namesakes, key=lambda process: process["Age"])
        self.assertTrue(own["Executable"].replace("\\", "/").endswith("/" + name), own)
        self.assertGreaterEqual(own["Threads"], 2)
        self.assertGreater(own["Resident"], 1 << 20)
        self.assertTrue(0 <= own["Age"] < 120, own)
        self.assertNotEqual(own["User"], "")
        self.assertEqual(self.report["Host"]["Processes"], len(self.report["Processes"]))


class Options(unittest.TestCase):
    def test_frames_list_the_events_in_order_and_alarms_their_limits(self):
        ended = run("--json", "--frames", "3", "--alarm", "Cpu=50", *QUICK)
        self.assertEqual(ended.returncode, 0)
        report = json.loads(ended.stdout)
        names = [event["Name"] for event in report["Events"]]
        self.assertGreaterEqual(names.count("Measured.Host"), 1)
        times = [event["Time"] for event in report["Events"]]
        self.assertAlmostEqual(times[-1], time.time(), delta=120)
        self.assertEqual(report["Alarms"]["Cpu"], 50)

    def test_pages_of_text_go_where_there_is_no_terminal(self):
        ended = run("--frames", "2", *QUICK)
        self.assertEqual(ended.returncode, 0)
        lines = ended.stdout.decode().splitlines()
        self.assertEqual(sum(line.startswith("Memory  [") for line in lines), 2)

    def test_mistakes_are_told_from_failures(self):
        for wrong in (["--alarm", "Nonsense=1"], ["--frames", "0"], ["--unknown"], ["stray"]):
            ended = run(*wrong)
            self.assertEqual((ended.returncode, ended.stdout), (2, b""), wrong)
            self.assertIn(b"sysmon: ", ended.stderr)

    def test_what_ended_it_is_what_its_parent_sees(self):
        monitor = subprocess.Popen(
            COMMAND + ["--interval", "3600000"], stdout=subprocess.PIPE, start_new_session=True
        )
        monitor.stdout.readline()
        # As a terminal would: to the whole group, which has the script that starts Wine in it too.
        os.killpg(monitor.pid, signal.SIGINT if IS_WINDOWS else signal.SIGTERM)
        monitor.communicate(timeout=120)
        control_c_exit = 0xC000013A & 0xFF
        self.assertEqual(monitor.returncode, control_c_exit if IS_WINDOWS else -signal.SIGTERM)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
