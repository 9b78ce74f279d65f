"""The agent under load: what it uses must not grow, and Stop must work at any moment of a read.

ZEB_SOAK=full runs at the length at which the figures of docs/testing.md were measured.
"""

import os
import pathlib
import re
import statistics
import sys
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "e2e"))

import harness  # noqa: E402
from contact_fields import tag_line  # noqa: E402
from appointments import appointment  # noqa: E402

FULL = os.environ.get("ZEB_SOAK") == "full"
ROUNDS = 200 if FULL else 8
ITEMS = 500 if FULL else 20
# Six writes in each.
CYCLES = 16 if FULL else 2
STOPS = 1000 if FULL else 100
FIGURES = re.compile(r"round (\d+) handles (\d+) bytes (\d+) documents (\d+)")


def growth(values):
    """What a value grows by in a round, by the straight line through it."""
    slope, _ = statistics.linear_regression(range(len(values)), values)
    return slope


class Soak(harness.Case):
    def setUp(self):
        super().setUp()
        self.place.settings(subfolder="true")
        self.place.folder("Work/Mail/Calendar")
        self.place.make_contacts([[tag_line("3A06001F", f"Ada {number}")] for number in range(ITEMS)])
        self.place.make_items(appointment(f"Review {number}") for number in range(ITEMS))
        self.agent = self.place.start_agent(FENNIC64_LEVEL="3")

    def stress(self, *words):
        """Runs the stress client. Gives its lines."""
        process = self.place.start(harness.TEST_BIN / "stress_client.exe",
                                   harness.windows_path(self.place.path) + "\\", *words)
        status = process.wait(None)
        output, errors = (stream.read_bytes().decode() for stream in process.streams)
        self.assertEqual(status, 0, output + errors)
        return output.splitlines()

    def figures(self, *words):
        """Handles and bytes behind each round, and the documents in it."""
        rounds = [tuple(map(int, FIGURES.fullmatch(line).groups()[1:])) for line in self.stress(*words)]
        return [list(column) for column in zip(*rounds)]

    def test_a_day_leaves_no_more_than_its_logon(self):
        logon_handles, logon_bytes, _ = self.figures("logon", str(max(ROUNDS // 4, 8)))
        handles, size, documents = self.figures("soak", str(ROUNDS), str(CYCLES))
        # Everything is read once; of what changes, the first round finds all and the later ones nothing.
        self.assertEqual(documents, [4 * ITEMS] + [2 * ITEMS] * (ROUNDS - 1))
        # What is made for the first time stays: threads, libraries, caches.
        settled = ROUNDS // 4
        left = growth(logon_handles[2:])
        per_round = growth(handles[settled:])
        kilobytes = growth(size[settled:]) / 1024 - growth(logon_bytes[2:]) / 1024
        harness.tell_measured(
            f"{ROUNDS} rounds with {ITEMS} contacts and {ITEMS} appointments: handles {handles[settled]} to "
            f"{handles[-1]}, {per_round:.2f} a round of which {left:.2f} are left by its logon; memory "
            f"{size[settled] >> 10} to {size[-1] >> 10} KB, {kilobytes:.1f} KB a round beyond its logon")
        rounds = ROUNDS - settled
        # Threads of the RPC runtime come and go, each with some handles and a megabyte; an item that is not closed is a handle
        # in each round.
        self.assertLess(abs(per_round - left) * rounds, 20)
        # What the agent itself allocates is counted in one process (tests/faults/growth_test.cpp). This is the RPC runtime's
        # and the XML service's, which is some hundred bytes a call under Wine.
        self.assertLess(kilobytes * rounds, 2 * (documents[-1] + 12 * CYCLES) * rounds + 4096)

    def test_stop_ends_a_read_at_any_moment(self):
        seed = int(os.environ.get("ZEB_SEED", "20111"))
        [line] = self.stress("stop", str(STOPS), str(seed))
        harness.tell_measured(f"seed {seed}: {line}")
        self.assertRegex(line, r"^stop [1-9]\d* of \d+ reads$")


if __name__ == "__main__":
    harness.run()
