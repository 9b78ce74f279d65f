"""Calls that overlap writes: nothing is lost that the rules do not leave open."""

import collections

import harness
from contact_fields import fields
from list_case import ListCase
from message_case import Message, MessageCase
from writing_case import ADD, CHANGE, DELETE, LAST_NAME, document


class SharedSession(MessageCase, ListCase):
    """Several clients in one session, which nothing in the agent keeps apart."""

    def setUp(self):
        super().setUp()
        self.agent = self.place.start_agent()

    def log_on(self):
        self.assertEqual(self.place.run_client("--no-endpoint", "logon")[0], ["logon 0"])


class Overlapping(SharedSession):
    """Writes beside other calls."""

    CLIENTS = 4
    EACH = 50

    def writer(self, name, count=EACH):
        """Starts a client that adds contacts to the session that is open."""
        texts = [document(ADD, LastName=f"{name}-{number}", FirstName=f"{name}-{number}", Body=f"{name}-{number} " * 1000)
                 for number in range(count)]
        return self.place.client("--no-endpoint", *self.writes(texts))

    def assert_all_written(self, writers, *folders):
        """Every write came back with an identifier of its own, and every contact is whole in one of the folders."""
        identifiers = []
        for writer in writers:
            results = self.results(self.assert_exit(writer)[0].splitlines())
            self.assertEqual([status for status, _, _ in results], [0] * self.EACH)
            identifiers += [identifier for _, identifier, _ in results]
        self.assertEqual(len(set(identifiers)), len(writers) * self.EACH)
        messages = [Message(file) for folder in folders for file in folder.glob("*.msg")]
        self.assertEqual(sorted(message.tags[LAST_NAME] for message in messages),
                         sorted(f"{name}-{number}" for name in range(len(writers)) for number in range(self.EACH)))
        for message in messages:
            name = message.tags[LAST_NAME]
            self.assertEqual((message.tags[0x3A06001F], message.tags[0x1000001F].split()), (name, [name] * 1000))

    def test_adds_of_several_clients_are_all_there(self):
        self.log_on()
        writers = [self.writer(name) for name in range(self.CLIENTS)]
        self.assert_all_written(writers, self.place.contacts)

    def test_a_folder_that_is_replaced_meanwhile_loses_no_write(self):
        other = self.place.folder("Work/Mail/Other")
        (other / "folder.ini").write_text("[Folder]\r\nClass=IPF.Contact\r\n")
        chosen = [f"contact-folder=<id>{self.identifier('Mail', name)}</id>" for name in ("Contacts", "Other")]
        self.log_on()
        writers = [self.writer(name) for name in range(self.CLIENTS)]
        while any(writer.poll() is None for writer in writers):
            lines, _ = self.place.run_client("--no-endpoint", *chosen * 80)
            self.assertEqual(lines, ["contact-folder 0"] * 160)
        self.assert_all_written(writers, self.place.contacts, other)
        self.assertNotIn([], [list(folder.glob("*.msg")) for folder in (self.place.contacts, other)])

    def test_logons_beside_changes_leave_each_contact_old_or_new(self):
        identifiers = [self.add(LastName=f"{name}", Body=f"{name} " * 1000) for name in range(self.CLIENTS)]
        self.log_on()
        writers = [self.place.client("--no-endpoint", *self.writes(
            document(CHANGE, identifier, LastName=f"{name}-{number}", Body=f"{name}-{number} " * 1000)
            for number in range(self.EACH))) for name, identifier in enumerate(identifiers)]
        while any(writer.poll() is None for writer in writers):
            lines, _ = self.place.run_client("--no-endpoint", *["logon", "logoff"] * 20, "logon")
            self.assertEqual(lines, ["logon 0"] * 21)
        for identifier, writer in zip(identifiers, writers):
            results = self.results(self.assert_exit(writer)[0].splitlines())
            self.assertEqual([result[:2] for result in results], [(0, identifier)] * self.EACH)
        messages = [Message(file) for file in self.place.contacts.glob("*.msg")]
        self.assertEqual(len(messages), self.CLIENTS)
        for message in messages:
            self.assertEqual(message.tags[0x1000001F].split(), [message.tags[LAST_NAME]] * 1000)
        self.assert_works()

    def test_writes_of_one_contact_by_several_clients_leave_it_whole(self):
        identifier = self.add(LastName="old")
        self.log_on()
        writers = [self.place.client("--no-endpoint", *self.writes(
            document(CHANGE, identifier, LastName=f"{name}-{number}", Body=f"{name}-{number} " * 1000)
            for number in range(self.EACH))) for name in range(self.CLIENTS)]
        for writer in writers:
            self.assert_exit(writer)
        message = self.the_message()
        self.assertEqual(message.tags[0x1000001F].split(), [message.tags[LAST_NAME]] * 1000)
        # The last write of one of them.
        self.assertTrue(message.tags[LAST_NAME].endswith(f"-{self.EACH - 1}"))
        self.assertEqual(len(self.files()), 1)

    def test_reads_and_counts_beside_writes_deliver_whole_contacts(self):
        self.log_on()
        writers = [self.writer(name) for name in range(2)]
        lines, documents = self.place.run_client(*["count", "read"] * 10)
        self.assertEqual([line.split()[0] for line in lines], ["count", "read"] * 10)
        for contact in map(fields, documents):
            self.assertEqual(contact["SP-BODY"].split(), [contact["LastName"]] * 1000)
        self.assert_all_written(writers, self.place.contacts)

    def test_an_agent_that_is_told_to_end_amid_writes_leaves_whole_contacts_to_the_next_one(self):
        names = [f"new-{number}" for number in range(self.EACH * 8)]
        # It serves callbacks, so that the agent has somebody to tell that it ends.
        writer = self.place.client("logon", *self.writes(document(ADD, LastName=name, Body=f"{name} " * 1000) for name in names))
        harness.wait_until(lambda: writer.streams[0].read_bytes().count(b"\nwrite ") >= 10, "writes")
        self.place.run_client("--no-endpoint", "shutdown")
        self.assert_exit(self.agent)
        done = len(self.results(self.place.finish(writer)[1].splitlines()))
        left = self.messages()
        # All that came back are there, and perhaps one more whose answer found the pipe gone.
        self.assertIn(sorted(left), [sorted(names[:done]), sorted(names[:done + 1])])
        for name, message in left.items():
            self.assertEqual(message.tags[0x1000001F].split(), [name] * 1000)
        self.assertEqual(len(self.files()), len(left))
        harness.tell_measured(f"the agent was told to end amid {len(names)} adds: {done} came back, {len(left)} contacts are there")
        self.agent = self.place.start_agent()
        lines, _ = self.place.run_client("logon", "count", "logoff")
        self.assertEqual(lines, ["logon 0", f"count {len(left)} 0"])
        self.assert_works()

    def test_deletions_beside_changes_of_the_same_contacts_leave_each_gone_or_whole(self):
        names = [f"old-{number}" for number in range(self.EACH)]
        identifiers = [result[1] for result in self.send(
            *(document(ADD, LastName=name, Body=f"{name} " * 1000) for name in names))]
        self.log_on()
        changes = [document(CHANGE, identifier, LastName=f"new-{number}", Body=f"new-{number} " * 1000)
                   for number, identifier in enumerate(identifiers)]
        # Several times, so that deletions come before, in and behind the changes.
        deletions = [document(DELETE, identifier) for identifier in identifiers] * 3
        for client in [self.place.client("--no-endpoint", *self.writes(texts)) for texts in (changes, deletions)]:
            results = self.results(self.assert_exit(client)[0].splitlines())
            self.assertEqual([result[0] for result in results], [0] * len(results))
        left = self.messages()
        for name, message in left.items():
            self.assertEqual(message.tags[0x1000001F].split(), [name] * 1000)
        changed = self.place.log().count("CMAPIObject::UpdateContact - Finish(Succeeded)")
        harness.tell_measured(f"changes beside deletions of {self.EACH} contacts: {changed} came first, {len(left)} contacts "
                              "are still there")
        self.assert_works()


class Undefined(SharedSession):
    """What only a lock would keep apart may end the agent. It costs no contact, and the next agent finds all as it was."""

    TIMES = 40

    def race(self, *commands):
        """Lets clients make calls at the same time, again and again. Tells the results and what became of the agent."""
        self.add(LastName="there", Body="there " * 1000)
        before = self.files()
        clients = [self.place.client("--no-endpoint", *each * self.TIMES) for each in commands]
        lines = [line for client in clients for line in self.place.finish(client)[1].splitlines()]
        ended = self.agent.poll() is not None
        counts = ", ".join(f"{line}: {count}" for line, count in sorted(collections.Counter(lines).items()))
        harness.tell_measured(f"at once {' and '.join(' '.join(each) for each in commands)}: {counts}; "
                              f"the agent {'ended' if ended else 'went on'}")
        if ended:
            self.agent = self.place.start_agent()
        self.assertEqual(self.files(), before)
        self.assertEqual(self.place.run_client("logon", "count", "folders", "logoff")[0],
                         ["logon 0", "count 1 0", "folders 0"])
        self.assert_works()

    def test_two_logons_at_once(self):
        self.race(["logon"], ["logon"])

    def test_the_list_of_folders_beside_logons(self):
        self.race(["logon"], ["folders"] * 2)

    def test_the_list_of_folders_beside_logons_and_logoffs(self):
        self.race(["logon", "logoff"], ["folders"] * 2)


if __name__ == "__main__":
    harness.run()
