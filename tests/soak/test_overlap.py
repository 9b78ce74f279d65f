"""Eight clients call everything at once, which no rule allows: the agent lives, and neither its heap nor the store takes harm.

The system fills what the agent frees and checks the tails of its blocks. Its whole heap at each call (0x80) it must not check:
under Wine eight threads that only allocate and free are found to have damaged it then.
"""

import contextlib
import re
import subprocess
import unittest

from soak_case import FULL, SEED, SoakCase, harness

ROUNDS = 6 if FULL else 1
SECONDS = 60 if FULL else 3
CLIENTS = 8
OPTIONS = (r"HKLM\Software\Microsoft\Windows NT\CurrentVersion\Image File Execution Options" "\\" + harness.AGENT)
# Tails, filling, and checks of parameters.
HEAP_CHECKS = "0x70"


class Overlap(SoakCase):
    @contextlib.contextmanager
    def heap_checks(self):
        """Has the system check the heaps of agents that start meanwhile."""
        self.reg("add", OPTIONS, "/v", "GlobalFlag", "/t", "REG_DWORD", "/d", HEAP_CHECKS, "/f")
        try:
            yield
        finally:
            self.reg("delete", OPTIONS, "/f")

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
        with self.heap_checks():
            agent = self.place.start_agent(FENNIC64_LEVEL="3", WINEDEBUG="err+heap,fixme-all")
        clients = self.start_stress("overlap", str(SECONDS), str(CLIENTS), str(seed), letters)
        try:
            clients.wait(SECONDS + harness.PATIENCE)
            end = "lives" if agent.poll() is None else f"ended with {agent.poll()}"
        except subprocess.TimeoutExpired:
            # The end of the agent frees the clients.
            end = "hangs"
        agent.kill()
        agent.wait(harness.PATIENCE)
        [line] = self.lines_of(clients)
        findings = agent.streams[1].read_text(errors="replace").count(":heap:")
        harness.tell_measured(f"seed {seed}, calls {letters}: {line}, the agent {end}, {findings} findings in the heap")
        # Single calls may fail, and have: what they take may go at that moment (see docs/limits.md).
        self.assertEqual((end, findings), ("lives", 0), line)

    def assert_harmless(self, letters):
        for number in range(ROUNDS):
            with self.subTest(round=number):
                self.overlap(SEED + number, letters)
                self.assert_store_is_whole()

    def test_reads_and_sessions_at_once_leave_agent_and_store_whole(self):
        self.assert_harmless("nnfFPscrmS")

    def test_writes_besides_leave_agent_and_store_whole(self):
        self.assert_harmless("nnfFPscrmSwww")


if __name__ == "__main__":
    harness.run()
