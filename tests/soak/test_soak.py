"""The agent under load: what it uses must not grow, and Stop must work at any moment of a read.

ZEB_SOAK=full runs at the length at which the figures of docs/testing.md were measured.
"""

import re
import statistics
import unittest

from soak_case import FULL, SEED, SoakCase, harness

ROUNDS = 200 if FULL else 8
# Items of each kind that a round adds, changes and deletes.
WRITTEN = 17 if FULL else 2
STOPS = 1000 if FULL else 100
# What a logon leaves open by design: a binding of the callback interface, and under Wine the keys of the time zones that it looks
# through until it comes to that of the agent.
LOGON_HANDLES = 50
FIGURES = re.compile(r"round (\d+) handles (\d+) bytes (\d+) documents (\d+)")


def growth(values):
    """What a value grows by in a round, by the straight line through it."""
    slope, _ = statistics.linear_regression(range(len(values)), values)
    return slope


class Soak(SoakCase):
    ITEMS = 500 if FULL else 20

    def setUp(self):
        super().setUp()
        self.agent = self.place.start_agent(FENNIC64_LEVEL="3", TZ="UTC")

    def figures(self, *words):
        """Handles and bytes behind each round, and the documents in it."""
        rounds = [tuple(map(int, FIGURES.fullmatch(line).groups()[1:])) for line in self.stress(*words)]
        return [list(column) for column in zip(*rounds)]

    def test_a_day_leaves_no_more_than_its_logon(self):
        logon_handles, logon_bytes, _ = self.figures("logon", str(max(ROUNDS // 4, 8)))
        handles, size, documents = self.figures("soak", str(ROUNDS), str(WRITTEN))
        # Everything is read once; of what changes, the first round finds all, and each what was added and what was deleted.
        self.assertEqual(documents, [4 * self.ITEMS + 4 * WRITTEN] + [2 * self.ITEMS + 4 * WRITTEN] * (ROUNDS - 1))
        # What is made for the first time stays: threads, libraries, caches.
        settled = ROUNDS // 4
        per_logon = growth(logon_handles[2:])
        per_round = growth(handles[settled:])
        kilobytes = growth(size[settled:]) / 1024 - growth(logon_bytes[2:]) / 1024
        harness.tell_measured(
            f"{ROUNDS} rounds with {self.ITEMS} contacts and {self.ITEMS} appointments: handles {handles[settled]} to "
            f"{handles[-1]}, {per_round:.2f} a round of which {per_logon:.2f} are left by its logon; memory "
            f"{size[settled] >> 10} to {size[-1] >> 10} KB, {kilobytes:.1f} KB a round beyond its logon")
        rounds = ROUNDS - settled
        # Threads of the RPC runtime come and go, each with some handles and a megabyte; an item that is not closed is a handle
        # in each round.
        self.assertLess(abs(per_logon - LOGON_HANDLES) * len(logon_handles), 20)
        self.assertLess(abs(per_round - LOGON_HANDLES) * rounds, 20)
        # What the agent itself allocates is counted in one process (tests/faults/growth_test.cpp). This is the RPC runtime's
        # and the XML service's, which is some hundred bytes a call under Wine.
        self.assertLess(kilobytes * rounds, 2 * (documents[-1] + 6 * WRITTEN) * rounds + 4096)

    def test_stop_ends_a_read_at_any_moment(self):
        for kind, line in zip(("contacts", "appointments"), self.stress("stop", str(STOPS), str(SEED)), strict=True):
            harness.tell_measured(f"seed {SEED}, {kind}: {line}")
            self.assertRegex(line, r"^stop [1-9]\d* of \d+ reads$")


if __name__ == "__main__":
    harness.run()
