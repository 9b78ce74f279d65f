"""Contacts that are written by the desktop program and with single calls, and what is refused: it leaves all as it was."""

import datetime
import xml.etree.ElementTree

import harness
from contact_fields import date_and_time
from message_case import Message, MessageCase
from refusal_case import RefusalTests
from writing_case import ADD, ADDRESS_SET, CHANGE, DELETE, LAST_MODIFICATION_TIME, LAST_NAME, REFUSED, document


class Desktop(MessageCase):
    def test_files_are_added_changed_and_deleted(self):
        rows = self.write(document(ADD, LastName="one"), document(ADD, LastName="two"), document(ADD, LastName="three"))
        self.assertEqual([row[0] for row in rows], ["written"] * 3)
        one, two, three = (row[2] for row in rows)
        for name, (_, moment, _) in zip(("one", "two", "three"), rows):
            filetime = self.messages()[name].tags[LAST_MODIFICATION_TIME]
            self.assertEqual(moment, date_and_time(filetime, datetime.datetime.now().astimezone().tzinfo))
        begin = datetime.datetime.now()
        rows = self.write(document(CHANGE, one, LastName="changed"), document(DELETE, two))
        self.assertEqual([(row[0], row[2]) for row in rows], [("written", one), ("deleted", two)])
        # Nothing is left to have a time, so that of the attempt came back.
        self.assert_present(rows[1][1], begin)
        self.assertEqual(self.delete(three), "deleted")
        self.assertEqual(list(self.messages()), ["changed"])

    def test_standard_input_is_a_file_too(self):
        self.file(document(ADD, LastName="piped"))
        with open(self.place.path / "document1.xml", "rb") as stdin:
            self.place.need_shutdown()
            process = self.place.start(self.place.bin / "zebdesk.exe", "write", "contacts", "-", stdin=stdin)
            output, _ = self.assert_exit(process)
        self.assertIn("written", output)
        self.assertEqual(list(self.messages()), ["piped"])

    def test_what_cannot_be_done_is_refused_beside_what_can(self):
        rows = self.write("no document", "<Calendar/>", document(0, LastName="x"), document(CHANGE, LastName="x"),
                          b"<Contact><lFlag>8</lFlag><LastName>\xFF</LastName></Contact>",
                          '<!DOCTYPE Contact><Contact><lFlag>8</lFlag></Contact>', document(ADD, LastName="good"),
                          status=REFUSED)
        # Nothing came back where nothing was sent.
        self.assertEqual(rows[:6], [("refused", "", "")] * 6)
        self.assertEqual(rows[6][0], "written")
        for reason in ("no document of this kind", "lFlag asks for nothing", "no PIMID", "no text in UTF-8",
                       "only 1 of 7 documents"):
            self.assertIn(reason, self.errors)
        self.assertEqual(list(self.messages()), ["good"])

    def test_one_contact_is_written_once_in_a_command(self):
        _, identifier = self.write_one(document(ADD, LastName="old"))
        rows = self.write(document(CHANGE, identifier, LastName="new"), document(DELETE, identifier), status=REFUSED)
        self.assertEqual([row[0] for row in rows], ["written", "refused"])
        self.assertEqual(list(self.messages()), ["new"])

    def test_a_document_of_a_read_is_not_taken_for_one_to_write(self):
        self.write_one(document(ADD, LastName="read"))
        before = self.files()
        [(result, _, _)] = self.write(self.read_one(), status=REFUSED)
        self.assertEqual((result, self.files()), ("refused", before))

    def test_a_document_that_was_read_can_become_another_contact(self):
        _, identifier = self.write_one(document(ADD, LastName="twice", Email1="a@b.example"))
        read = self.file(self.read_one())
        out = self.place.path / "converted"
        status, output, errors = self.place.run_desktop("convert", "--new", "--out", harness.windows_path(out), read)
        self.assertEqual((status, output), (0, ""), errors)
        [converted] = out.iterdir()
        self.assertNotEqual(self.write_one(converted.read_text(encoding="utf-8"))[1], identifier)
        both = [Message(file) for file in self.place.contacts.glob("*.msg")]
        self.assertEqual([(one.tags[LAST_NAME], one.named[(ADDRESS_SET, 0x8083)]) for one in both],
                         [("twice", "a@b.example")] * 2)

    def test_own_writes_come_with_the_next_read_of_changes_and_can_be_told_by_identifier_and_time(self):
        self.assertEqual(self.read_changes(), "")
        moment, identifier = self.write_one(document(ADD, LastName="own"))
        self.assert_comes_once(ADD, identifier, moment)
        moment, _ = self.write_one(document(CHANGE, identifier, LastName="changed"))
        self.assert_comes_once(CHANGE, identifier, moment)
        self.delete(identifier)
        self.assert_comes_once(DELETE, identifier, None)

    def read_changes(self):
        changes = harness.windows_path(self.place.path / "changes.map")
        status, output, errors = self.place.run_desktop("read", "contacts", "--changed", changes, "--xml")
        self.assertEqual(status, 0, errors)
        return output.strip()

    def assert_comes_once(self, flag, identifier, moment):
        root = xml.etree.ElementTree.fromstring(self.read_changes().encode())
        self.assertEqual([root.findtext(name) for name in ("lFlag", "PIMID", "lastModifiedTime")],
                         [str(flag), identifier, moment])
        self.assertEqual(self.read_changes(), "")


class Refusals(RefusalTests, MessageCase):
    pass


if __name__ == "__main__":
    harness.run()
