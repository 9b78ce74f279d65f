"""Eight clients call everything at once, which no rule allows: the agent lives, and neither its heap nor the store takes harm.

The system fills what lies behind the agent's blocks and what it frees, and behind the calls all its heaps are looked at. At each call
the system must not do that by itself (0x80): under Wine it finds damage then where threads only allocate and free.
"""

import contextlib
import re
import subprocess
import unittest

from soak_case import FULL, SEED, SoakCase, harness

ROUNDS = 6 if FULL else 1
SECONDS = 60 if FULL else 3
CLIENTS = 8
OPTIONS = r"HKLM\Software\Microsoft\Windows NT\CurrentVersion\Image File Execution Options" "\\"
# Fills what lies behind blocks and what is freed.
HEAP_FILLING = "0x70"


class Overlap(SoakCase):
    @contextlib.contextmanager
    def heap_filling(self, program):
        """Has the system fill the heaps of the processes of a program that start meanwhile."""
        self.reg("add", OPTIONS + program, "/v", "GlobalFlag", "/t", "REG_DWORD", "/d", HEAP_FILLING, "/f")
        try:
            yield
        finally:
            self.reg("delete", OPTIONS + program, "/f")

    def is_heap_whole(self, program):
        """Whether all heaps of a program that runs are whole."""
        check = self.place.start(harness.TEST_BIN / "check_heap.exe", program,
                                 harness.windows_path(harness.TEST_BIN / "heap_validator.dll"))
        self.assertIn(check.wait(harness.PATIENCE), (0, 1))
        return check.returncode == 0

    def reg(self, *words):
        self.assert_exit(self.place.start(self.place.drive_c() / "windows/system32/reg.exe", *words))

    def names(self, kind, element):
        """How often each name comes in a read by an agent of its own."""
        documents = self.place.read_with_desktop(kind=kind)
        found = {}
        for document in documents.values():
            name = re.search(f"<{element}>([^<]*)</{element}>", document.decode("utf-8"))[1]
            found[name] = found.get(name, 0) + 1
        return found

    def assert_store_is_whole(self):
        """Each item that nobody wrote is there once, and nothing else but what the clients add."""
        self.assertEqual(self.place.run_desktop("shutdown")[0], 0)
        for kind, element, text, added in (("contacts", "FirstName", "Ada", "Ada"),
                                           ("calendars", "Description", "Review", "Review")):
            found = self.names(kind, element)
            found.pop(added, None)
            self.assertEqual(found, {f"{text} {number}": 1 for number in range(self.ITEMS)})

    def overlap(self, seed, letters):
        """Lets the clients loose on an agent of its own, with the calls of some letters."""
        with self.heap_filling(harness.AGENT):
            agent = self.place.start_agent(FENNIC64_LEVEL="3")
        clients = self.start_stress("overlap", str(SECONDS), str(CLIENTS), str(seed), letters)
        try:
            clients.wait(SECONDS + harness.PATIENCE)
            end = "lives" if agent.poll() is None else f"ended with {agent.poll()}"
        except subprocess.TimeoutExpired:
            # The end of the agent frees the clients.
            end = "hangs"
        whole = end == "lives" and self.is_heap_whole(harness.AGENT)
        agent.kill()
        agent.wait(harness.PATIENCE)
        tally = self.tally_of(clients)
        harness.tell_measured(f"seed {seed}: {tally}, the agent {end}, its heaps are {'' if whole else 'not '}whole")
        self.assertEqual((end, whole), ("lives", True), tally)
        self.assert_calls_are_done(tally, letters)

    def tally_of(self, clients):
        """The lines of the clients: how many calls there were, and what became of them."""
        tally = {"succeeded": {}, "failed": {}}
        for word, *rest in (line.split() for line in self.lines_of(clients)):
            if word == "calls":
                tally["calls"] = int(rest[0])
            else:
                tally[word][rest[0]] = int(rest[1])
        return tally

    def assert_calls_are_done(self, tally, letters):
        """Each kind of call comes to its end. Single ones may fail, and have: what they take may go at that moment (see
        docs/limits.md), and a connection may be given up for it."""
        self.assertEqual(set(tally["succeeded"]), set(letters), tally)
        # A status with the letter of the call behind it.
        self.assertLessEqual({failure[:-1] for failure in tally["failed"]}, {"998", "1727"}, tally)
        self.assertLessEqual(sum(tally["failed"].values()), 1 + tally["calls"] // 1000, tally)

    def assert_harmless(self, letters):
        for number in range(ROUNDS):
            with self.subTest(round=number):
                self.overlap(SEED + number, letters)
                self.assert_store_is_whole()

    def test_a_byte_behind_a_block_is_found(self):
        program = "heap_damage.exe"
        with self.heap_filling(program):
            damaged = self.place.start(harness.TEST_BIN / program)
            harness.wait_until(damaged.streams[0].read_bytes, "a block is damaged")
        try:
            self.assertFalse(self.is_heap_whole(program))
        finally:
            damaged.kill()
            damaged.wait(harness.PATIENCE)

    def test_reads_and_sessions_at_once_leave_agent_and_store_whole(self):
        self.assert_harmless("nnfFPgscrmS")

    def test_writes_besides_leave_agent_and_store_whole(self):
        self.assert_harmless("nnfFPgscrmSwww")


if __name__ == "__main__":
    harness.run()
