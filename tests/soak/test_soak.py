"""The agent under load: what it uses must not grow, and Stop must work at any moment of a read.

ZEB_SOAK=full runs at the length at which the figures of docs/testing.md were measured.
"""

import re
import statistics
import unittest
from collections import namedtuple

from soak_case import FULL, HOLLOW_AGENT, SEED, SoakCase, harness

ROUNDS = 200 if FULL else 16
# Items of each kind that a round adds, changes and deletes.
WRITTEN = 17 if FULL else 2
STOPS = 1000 if FULL else 100
# What a logon leaves open by design: under Wine the keys of the time zones that it looks through until it comes to that of the
# agent. The binding that it leaves too is memory there.
LOGON_HANDLES = 50
# Threads of the RPC runtime come and go at any time, each with some handles, some blocks of the heap and a stack.
THREADS_HANDLES = 20
THREADS_BLOCKS = 256
THREADS_HEAP = 32 << 10
THREADS_MEMORY = 4 << 20

# Behind each round: handles, private memory, blocks that live in the heaps and their bytes, and the documents of the round.
Figures = namedtuple("Figures", "handles memory blocks heap documents")
LINE = re.compile(r"round \d+ handles (\d+) bytes (\d+) blocks (\d+) heap (\d+) documents (\d+)")


def growth(values):
    """What a value grows by in a round, by the straight line through it."""
    slope, _ = statistics.linear_regression(range(len(values)), values)
    return slope


def usual_growth(values):
    """What a value grows by in a round in which no thread comes or goes."""
    return statistics.median(after - before for before, after in zip(values, values[1:]))


class Soak(SoakCase):
    ITEMS = 500 if FULL else 20

    def setUp(self):
        super().setUp()
        self.agent = self.place.start_agent(FENNIC64_LEVEL="3", TZ="UTC")

    def figures(self, mode, program, *words):
        """The figures of a program behind each round."""
        rounds = [map(int, LINE.fullmatch(line).groups()) for line in self.stress(mode, program, *words)]
        return Figures(*map(list, zip(*rounds)))

    def days(self, program, rounds=ROUNDS):
        """The figures of a program that serves whole days. What is made for the first time stays, so that the first of them are
        left out: threads, libraries, caches."""
        figures = self.figures("soak", program, str(rounds), str(WRITTEN))
        # Everything is read once; of what changes, the first round finds all, and each what was added and what was deleted.
        self.assertEqual(figures.documents,
                         [4 * self.ITEMS + 4 * WRITTEN] + [2 * self.ITEMS + 4 * WRITTEN] * (rounds - 1))
        return Figures(*(column[rounds // 4:] for column in figures))

    def hollow_days(self, rounds=ROUNDS, kept=0):
        """The figures of as many days without the agent."""
        hollow_agent = self.start_hollow_agent(kept)
        try:
            return self.days(HOLLOW_AGENT, rounds)
        finally:
            self.end(hollow_agent)

    def assert_handles_are_those_of_logons(self, logons, days):
        per_logon, per_day = growth(logons.handles[2:]), growth(days.handles)
        harness.tell_measured(f"handles {days.handles[0]} to {days.handles[-1]}, {per_day:.2f} a round of which "
                              f"{per_logon:.2f} are left by its logon")
        # An item that is not closed is a handle in each round.
        self.assertLess(abs(per_logon - LOGON_HANDLES) * len(logons.handles), THREADS_HANDLES)
        self.assertLess(abs(per_day - LOGON_HANDLES) * len(days.handles), THREADS_HANDLES)

    def assert_memory_is_the_platforms(self, days, hollow):
        blocks, heap = (usual_growth(column) for column in (days.blocks, days.heap))
        beyond = Figures(*((ours[-1] - ours[0]) - (theirs[-1] - theirs[0]) for ours, theirs in zip(days, hollow)))
        harness.tell_measured(
            f"memory {days.memory[0] >> 10} to {days.memory[-1] >> 10} KB, in its heaps {blocks:.0f} blocks of {heap:.0f} bytes "
            f"a round. Without the agent as many rounds leave {usual_growth(hollow.blocks):.0f} blocks of "
            f"{usual_growth(hollow.heap):.0f} bytes each; with it there are in all {beyond.blocks} blocks of {beyond.heap} bytes "
            f"and {beyond.memory >> 10} KB of memory more than without")
        self.assertEqual((blocks, heap), (usual_growth(hollow.blocks), usual_growth(hollow.heap)))
        self.assertLess(abs(beyond.blocks), THREADS_BLOCKS)
        self.assertLess(abs(beyond.heap), THREADS_HEAP)
        self.assertLess(beyond.memory, THREADS_MEMORY)

    def test_a_day_leaves_no_more_than_its_logon_and_the_platform(self):
        logons = self.figures("logon", harness.AGENT, str(max(ROUNDS // 4, 8)))
        days = self.days(harness.AGENT)
        self.end(self.agent)
        hollow = self.hollow_days()
        harness.tell_measured(f"{ROUNDS} rounds with {self.ITEMS} contacts, {self.ITEMS} appointments and {6 * WRITTEN} writes")
        self.assert_handles_are_those_of_logons(logons, days)
        self.assert_memory_is_the_platforms(days, hollow)

    def test_a_small_block_that_each_document_leaves_is_counted(self):
        self.end(self.agent)
        rounds, size = 8, 16
        plain, keeping = (self.hollow_days(rounds, kept) for kept in (0, size))
        # The list of folders is a document too.
        documents = plain.documents[-1] + 1
        self.assertEqual(usual_growth(keeping.blocks) - usual_growth(plain.blocks), documents)
        self.assertEqual(usual_growth(keeping.heap) - usual_growth(plain.heap), documents * size)

    def test_stop_ends_a_read_at_any_moment(self):
        for kind, line in zip(("contacts", "appointments"), self.stress("stop", str(STOPS), str(SEED)), strict=True):
            harness.tell_measured(f"seed {SEED}, {kind}: {line}")
            self.assertRegex(line, r"^stop [1-9]\d* of \d+ reads, [1-9]\d* in a document, [1-9]\d* elsewhere$")


if __name__ == "__main__":
    harness.run()
