"""An agent that is killed while it adds, changes and deletes contacts leaves every one of them old or new, and whole.

The environment variable ZEB_KILL_SEED makes a run take the decisions of an earlier one, which printed it. The very moment
of a kill is up to the machine all the same.
"""

import os
import random
import time

import harness
from contact_fields import fields
from message_case import JPEG, Message, MessageCase
from writing_case import ADD, ADDRESS_SET, CHANGE, DELETE, KEYWORDS, LAST_NAME, PICTURE, document

FIRST_NAME, BODY = 0x3A06001F, 0x1000001F
TEMPORARY = "~localstore-"


class Killing(MessageCase):
    COUNT = 200
    ROUNDS = 10
    # Of the contacts that are there, how many a round deletes.
    DELETED = 0.3

    def setUp(self):
        super().setUp()
        self.seed = int(os.environ.get("ZEB_KILL_SEED") or random.randrange(2**32))
        self.source = random.Random(self.seed)
        # The contacts that are there: which round's writing each of them is.
        self.held = {}
        self.pictures = {}

    def contact(self, number, generation):
        text = f"{generation:04} of {number:03}"
        return {"FirstName": f"no{number:03}", "LastName": text, "Body": text * 500, "Email1": text, "Categories": text}

    def generation_of(self, message, number):
        """Which round's writing a message is, of which it has to have everything."""
        generation = int(message.tags[LAST_NAME].split()[0])
        texts = {"FirstName": message.tags[FIRST_NAME], "LastName": message.tags[LAST_NAME], "Body": message.tags[BODY],
                 "Email1": message.named[(ADDRESS_SET, 0x8083)], "Categories": message.named[KEYWORDS][0]}
        self.assertEqual(texts, self.contact(number, generation))
        [attachment] = message.attachments.values()
        self.assertEqual(attachment.tags[PICTURE], self.pictures[generation])
        return generation

    def generations(self):
        """The contacts in the folder, each with the round whose writing it is."""
        messages = list(map(Message, self.place.contacts.glob("*.msg")))
        found = {int(message.tags[FIRST_NAME].removeprefix("no")): message for message in messages}
        self.assertEqual(len(found), len(messages))
        return {number: self.generation_of(message, number) for number, message in found.items()}

    def identifiers(self):
        """The identifiers of the contacts as a new agent tells them, which has to find those that are there and no others."""
        self.agent = self.place.start_agent(FENNIC64_LEVEL="")
        lines, documents = self.place.run_client("logon", "count", "read", "logoff")
        contacts = list(map(fields, documents))
        for contact in contacts:
            self.take_picture(contact)
        self.assertEqual(lines[1:3], [f"count {len(self.held)} 0", f"read 0 {len(self.held)}"])
        found = {int(contact["FirstName"].removeprefix("no")): contact["PIMID"] for contact in contacts}
        self.assertEqual(set(found), set(self.held))
        return found

    def orders(self):
        """What a round does, to each contact one thing, in its order: pairs of a flag and a number."""
        orders = []
        for number in self.source.sample(range(self.COUNT), self.COUNT):
            flag = DELETE if self.source.random() < self.DELETED else CHANGE
            orders.append((flag if number in self.held else ADD, number))
        return orders

    def start_round(self, generation, orders):
        """Starts the writes of a round."""
        identifiers = self.identifiers()
        self.pictures[generation] = JPEG + f"{generation}".encode() * 1000
        file = self.place.path / f"picture{generation}.jpg"
        file.write_bytes(self.pictures[generation])
        path = harness.windows_path(file)
        texts = [document(flag, identifiers.get(number), **self.contact(number, generation), PICPath=path)
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
        others = [file.name for file in self.place.contacts.iterdir() if file.suffix != ".msg"]
        self.assertEqual([name for name in others if not name.startswith(TEMPORARY)], [])

    def test_an_agent_that_is_killed_at_any_moment_leaves_every_contact_old_or_new(self):
        print(f"ZEB_KILL_SEED={self.seed}", flush=True)
        kills = 0
        kinds = set()
        for generation in range(self.ROUNDS):
            orders = self.orders()
            client = self.start_round(generation, orders)
            done, complete = self.kill_amid(client)
            kills += not complete
            kinds |= {flag for flag, _ in orders[:done]}
            self.assert_old_or_new(generation, orders, done)
            self.assert_only_temporaries_beside()
        self.identifiers()
        harness.tell_measured(f"{kills} of {self.ROUNDS} times {self.COUNT} writes were cut short by a kill, "
                              f"ZEB_KILL_SEED={self.seed}")
        self.assertGreaterEqual(kills, self.ROUNDS // 2)
        self.assertEqual(kinds, {ADD, CHANGE, DELETE})


if __name__ == "__main__":
    harness.run()
