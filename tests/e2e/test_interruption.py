"""Reads that do not run to their end, and clients that are not there any more."""

import harness
from contact_fields import fields, tag_line

CONTACTS = 500
FAILED_SEND = "MAPISendBackOneContact Excetipion"


def names(count):
    return [f"no{number:04}" for number in range(count)]


class Interruption(harness.Case):
    def make(self, count):
        self.place.make_contacts([[tag_line("3A11001F", "number")]])
        self.place.multiply_contact("number", names(count))
        self.place.start_agent()

    def assert_all(self, documents, count):
        """Each contact once."""
        arrived = [fields(document) for document in documents]
        self.assertEqual(sorted(one["LastName"] for one in arrived), names(count))
        self.assertEqual(len({one["PIMID"] for one in arrived}), count)

    def test_every_contact_arrives(self):
        self.make(CONTACTS)
        lines, documents = self.place.run_client("logon", "count", "read", "logoff")
        self.assertEqual(lines, ["logon 0", f"count {CONTACTS} 0", f"read 0 {CONTACTS}"])
        self.assert_all(documents, CONTACTS)

    def test_stop_ends_the_read_after_the_item_and_not_the_next_read(self):
        self.make(CONTACTS)
        lines, documents = self.place.run_client("--stop-after", "100", "logon", "read", "read", "logoff")
        self.assertEqual(lines, ["logon 0", "read 1 100", f"read 0 {CONTACTS}"])
        self.assert_all(documents[100:], CONTACTS)
        self.assertEqual(documents[:100], documents[100:200])

    def test_stop_without_a_read_ends_the_next_one_before_its_first_item(self):
        self.make(3)
        lines, documents = self.place.run_client("logon", "stop", "read", "read", "logoff")
        self.assertEqual(lines, ["logon 0", "read 1 0", "read 0 3"])
        self.assert_all(documents, 3)

    def test_a_missing_endpoint_does_not_fail_the_read(self):
        self.make(20)
        lines, _ = self.place.run_client("--no-endpoint", "logon", "count", "read", "logoff")
        self.assertEqual(lines, ["logon 0", "count 20 0", "read 0 0"])
        self.assertEqual(self.place.log().count(FAILED_SEND), 20)
        self.assertIn(FAILED_SEND * 20 + "CMAPIObject::", self.place.log())
        self.assert_all(self.place.run_client("logon", "read", "logoff")[1], 20)
        self.assertEqual(self.place.log().count(FAILED_SEND), 20)

    def test_a_client_that_refuses_one_contact_gets_the_others(self):
        self.make(5)
        lines, documents = self.place.run_client("--fail-at", "2", "logon", "read", "read", "logoff")
        self.assertEqual(lines, ["logon 0", "read 0 5", "read 0 5"])
        self.assertEqual(self.place.log().count(FAILED_SEND), 1)
        self.assert_all(documents[:5], 5)
        self.assertEqual(documents[:5], documents[5:])

    def test_a_client_that_dies_does_not_take_the_agent_along(self):
        self.make(20)
        crashed = self.place.client("--crash-after", "5", "logon", "read", "logoff")
        self.assert_exit(crashed, 99)
        self.assertEqual(len(harness.received(crashed)), 5)
        harness.wait_until(lambda: "CMAPIObject::ReadContacts - Finish\r\n" in self.place.log(), "the read ends")
        # The fifth contact arrived, but its call never came back.
        self.assertEqual(self.place.log().count(FAILED_SEND), 16)
        lines, documents = self.place.run_client("logon", "count", "read", "logoff")
        self.assertEqual(lines, ["logon 0", "count 20 0", "read 0 20"])
        self.assert_all(documents, 20)


class Key(harness.Case):
    """Ctrl+C at a desktop program that reads."""

    INTERRUPTED = 5

    def test_it_ends_the_read_and_neither_the_agent_nor_the_next_read(self):
        self.place.make_contacts([[tag_line("3A11001F", "number")]])
        self.place.multiply_contact("number", names(CONTACTS))
        # The desktop program starts the agent itself, which must not hear of the key.
        status, output, errors = self.place.interrupt_desktop("read", "contacts", "--xml")
        self.assertEqual(status, self.INTERRUPTED, errors)
        arrived = output.count("</Contact>")
        self.assertGreater(arrived, 0)
        self.assertLess(arrived, CONTACTS)
        self.assertIn(f"zebdesk: interrupted after {arrived} of {CONTACTS} contacts", errors)
        documents = self.place.read_with_desktop()
        self.assertEqual(sorted(fields(one.decode())["LastName"] for one in documents.values()), names(CONTACTS))
        self.assertEqual(self.place.log().count("CMAPIObject::Stop - Begin"), 1)
        self.assertEqual(self.place.log().count("Begin  Rpc Intliaize"), 1)


if __name__ == "__main__":
    harness.run()
