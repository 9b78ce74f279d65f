"""An agent that is killed while it writes leaves every message whole."""

import random
import time

import harness
from message_case import JPEG, Message, MessageCase
from writing_case import ADD, ADDRESS_SET, CHANGE, KEYWORDS, LAST_NAME, PICTURE, document


class Killing(MessageCase):
    COUNT = 200
    ROUNDS = 10

    def contact(self, number, generation):
        text = f"{generation:04} of {number:03} "
        return {"FirstName": f"no{number:03}", "LastName": text, "Body": text * 500, "Email1": text, "Categories": text}

    def assert_whole(self, message, number, generations):
        """A message is all of one generation. Gives which."""
        for generation in generations:
            expected = self.contact(number, generation)
            texts = {"FirstName": message.tags[0x3A06001F], "LastName": message.tags[LAST_NAME],
                     "Body": message.tags[0x1000001F], "Email1": message.named[(ADDRESS_SET, 0x8083)].strip(),
                     "Categories": message.named[KEYWORDS][0]}
            if all(texts[name].strip() == expected[name].strip() for name in expected):
                [attachment] = message.attachments.values()
                self.assertEqual(attachment.tags[PICTURE], self.pictures[generation])
                return generation
        raise AssertionError(f"{number} is of none of {generations}: {texts['LastName']}")

    def start_round(self, generation):
        """Starts an agent and the writes of one generation."""
        self.pictures[generation] = JPEG + f"{generation}".encode() * 1000
        path = harness.windows_path(self.place.path / f"picture{generation}.jpg")
        (self.place.path / f"picture{generation}.jpg").write_bytes(self.pictures[generation])
        flag = CHANGE if self.identifiers else ADD
        identifiers = self.identifiers or [None] * self.COUNT
        texts = [document(flag, identifier, **self.contact(number, generation), PICPath=path)
                 for number, identifier in enumerate(identifiers)]
        self.agent = self.place.start_agent(FENNIC64_LEVEL="")
        return self.place.client("logon", *self.writes(texts))

    def test_an_agent_that_is_killed_at_any_moment_leaves_every_message_old_or_new(self):
        self.pictures = {}
        self.identifiers = []
        client = self.start_round(0)
        output, _ = self.assert_exit(client)
        self.identifiers = [identifier for _, identifier, _ in self.results(output.splitlines())]
        self.assertEqual(len(set(self.identifiers)), self.COUNT)
        held = {number: 0 for number in range(self.COUNT)}
        source = random.Random()
        kills = 0
        for generation in range(1, self.ROUNDS + 1):
            self.agent.kill()
            self.agent.wait()
            client = self.start_round(generation)
            mark = source.randrange(self.COUNT)
            harness.wait_until(lambda: client.streams[0].read_bytes().count(b"\nwrite ") >= mark or
                               client.poll() is not None, "writes")
            time.sleep(source.random() * 0.02)
            self.agent.kill()
            status = client.wait(harness.PATIENCE)
            kills += status != 0
            done = len(self.results(client.streams[0].read_bytes().decode().splitlines()))
            found = {int(one.tags[0x3A06001F][2:]): one for one in map(Message, self.place.contacts.glob("*.msg"))}
            self.assertEqual(sorted(found), list(range(self.COUNT)))
            for number, message in found.items():
                which = self.assert_whole(message, number, (generation, held[number]))
                # What was reported is there; what was not begun is not.
                self.assertTrue(which == generation or number >= done, (number, done))
                self.assertTrue(which != generation or number <= done, (number, done))
                held[number] = which
            others = [file.name for file in self.place.contacts.iterdir() if file.suffix != ".msg"]
            self.assertEqual([name for name in others if not name.startswith("~localstore-")], [])
        self.assertGreaterEqual(kills, self.ROUNDS // 2)


if __name__ == "__main__":
    harness.run()
