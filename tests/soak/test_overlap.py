"""Eight clients call everything at once, which no rule allows: what an agent loses by it, and that the store loses nothing.

The system checks the agent's heap at every call, and fills what was freed.
"""

import re
import unittest

from soak_case import FULL, SEED, SoakCase, harness

ROUNDS = 10 if FULL else 1
SECONDS = 60 if FULL else 3
CLIENTS = 8
OPTIONS = (r"HKLM\Software\Microsoft\Windows NT\CurrentVersion\Image File Execution Options" "\\" + harness.AGENT)
# Blocks are filled when they are freed and have a tail that is checked, as is the whole heap at every call.
HEAP_CHECKS = "0xf0"


class Overlap(SoakCase):
    def setUp(self):
        super().setUp()
        self.reg("add", OPTIONS, "/v", "GlobalFlag", "/t", "REG_DWORD", "/d", HEAP_CHECKS, "/f")
        self.addCleanup(self.reg, "delete", OPTIONS, "/f")

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

    def overlap(self, seed):
        """Lets the clients loose on an agent of its own. Tells how the agent ended, or that it lives."""
        agent = self.place.start_agent(FENNIC64_LEVEL="3", WINEDEBUG="err+heap,fixme-all")
        [line] = self.stress("overlap", str(SECONDS), str(CLIENTS), str(seed))
        end = "lives" if agent.poll() is None else f"ended with {agent.poll()}"
        agent.kill()
        agent.wait(harness.PATIENCE)
        errors = agent.streams[1].read_text(errors="replace")
        heap = [word for word in errors.splitlines() if ":heap:" in word]
        harness.tell_measured(f"seed {seed}: {line}, the agent {end}, {len(heap)} findings in the heap")
        return end, heap, errors

    def test_the_store_is_whole_whatever_becomes_of_the_agent(self):
        for seed in range(SEED, SEED + ROUNDS):
            with self.subTest(seed=seed):
                end, heap, errors = self.overlap(seed)
                if end != "lives" or heap:
                    print(errors[:4000])
                self.assert_store_is_whole()


if __name__ == "__main__":
    harness.run()
