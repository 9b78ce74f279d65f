"""An agent that is killed while it adds, changes and deletes items leaves every one of them old or new, and whole: the same
for any kind of item.

The environment variable ZEB_KILL_SEED makes a run take the decisions of an earlier one, which printed it. The very moment
of a kill is up to the machine all the same.
"""

import collections
import os
import random
import time

import harness
from message_case import Message
from writing_case import ADD, CHANGE, DELETE

TEMPORARY = "~localstore-"
NAMES = {ADD: "add", CHANGE: "change", DELETE: "deletion"}


class KillingTests:
    """Tests to be mixed into a MessageCase, which says what a round writes: `content` gives the elements of an item,
    `look_at` the number and the round of a message that has all of a round, and `identifier_of` the number and the
    identifier of a document that was read."""

    COUNT = 200
    ROUNDS = 10
    # Of the items that are there, how many a round deletes.
    DELETED = 0.3

    def setUp(self):
        super().setUp()
        self.seed = int(os.environ.get("ZEB_KILL_SEED") or random.randrange(2**32))
        self.source = random.Random(self.seed)
        # The items that are there: which round's writing each of them is.
        self.held = {}

    def generations(self):
        """The items in the folder, each with the round whose writing it is."""
        found = list(map(self.look_at, map(Message, self.items.glob("*.msg"))))
        self.assertEqual(len(dict(found)), len(found))
        return dict(found)

    def identifiers(self):
        """The identifiers of the items as a new agent tells them, which has to find those that are there and no others."""
        self.agent = self.place.start_agent(FENNIC64_LEVEL="")
        lines, documents = self.place.run_client("logon", self.COUNT_ITEMS, self.READ, "logoff")
        found = dict(map(self.identifier_of, documents))
        self.assertEqual(lines[1:3], [f"count {len(self.held)} 0", f"read 0 {len(self.held)}"])
        self.assertEqual(set(found), set(self.held))
        return found

    def orders(self):
        """What a round does, to each item one thing, in its order: pairs of a flag and a number."""
        orders = []
        for number in self.source.sample(range(self.COUNT), self.COUNT):
            flag = DELETE if self.source.random() < self.DELETED else CHANGE
            orders.append((flag if number in self.held else ADD, number))
        return orders

    def start_round(self, generation, orders):
        """Starts the writes of a round."""
        identifiers = self.identifiers()
        texts = [self.document(flag, identifiers.get(number), **self.content(number, generation))
                 for flag, number in orders]
        return self.place.client("logon", *self.writes(texts))

    def kill_amid(self, client):
        """Kills the agent somewhere in the writes of a client. Gives how many of them had come back, and whether all had."""
        mark = self.source.randrange(self.COUNT)
        harness.wait_until(lambda: client.streams[0].read_bytes().count(b"\nwrite ") >= mark or
                           client.poll() is not None, "writes")
        time.sleep(self.source.random() * 0.02)
        self.agent.kill()
        self.agent.wait()
        status = client.wait(harness.PATIENCE)
        return len(self.results(client.streams[0].read_bytes().decode().splitlines())), status == 0

    def assert_old_or_new(self, generation, orders, done):
        """What had come back is done, what had not begun is not, and the one between is one or the other."""
        found = self.generations()
        for position, (flag, number) in enumerate(orders):
            old, new = self.held.get(number), None if flag == DELETE else generation
            possible = [new] if position < done else [old] if position > done else [old, new]
            self.assertIn(found.get(number), possible, f"write {position} of flag {flag} to {number}, {done} had come back")
        self.held = found

    def assert_only_temporaries_beside(self):
        others = [file.name for file in self.items.iterdir() if file.suffix != ".msg"]
        self.assertEqual([name for name in others if not name.startswith(TEMPORARY)], [])

    def test_an_agent_that_is_killed_at_any_moment_leaves_every_item_old_or_new(self):
        print(f"ZEB_KILL_SEED={self.seed}", flush=True)
        kills = 0
        came_back = set()
        # By a kill in the write itself or just in front of it: the writes whose results did not come back any more.
        cut_short = collections.Counter({name: 0 for name in NAMES.values()})
        for generation in range(self.ROUNDS):
            orders = self.orders()
            client = self.start_round(generation, orders)
            done, complete = self.kill_amid(client)
            kills += not complete
            came_back |= {flag for flag, _ in orders[:done]}
            cut_short.update(NAMES[flag] for flag, _ in orders[done:done + 1])
            self.assert_old_or_new(generation, orders, done)
            self.assert_only_temporaries_beside()
        self.identifiers()
        harness.tell_measured(f"{kills} of {self.ROUNDS} times {self.COUNT} writes of {self.KIND} were cut short by a kill: "
                              + ", ".join(f"{count} {name}s" for name, count in cut_short.items()) +
                              f", ZEB_KILL_SEED={self.seed}")
        self.assertGreaterEqual(kills, self.ROUNDS // 2)
        self.assertEqual(came_back, {ADD, CHANGE, DELETE})
