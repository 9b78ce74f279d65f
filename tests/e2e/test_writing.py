"""Contacts that are written by the desktop program and with single calls, and what is refused: it leaves all as it was."""

import datetime
import xml.etree.ElementTree

import harness
from contact_fields import date_and_time, fields
from message_case import Message, MessageCase
from writing_case import (ADD, ADDRESS_SET, CHANGE, DELETE, LAST_MODIFICATION_TIME, LAST_NAME, REFUSED, document,
                          time_of)


class Desktop(MessageCase):
    def test_files_are_added_changed_and_deleted(self):
        rows = self.write(document(ADD, LastName="one"), document(ADD, LastName="two"), document(ADD, LastName="three"))
        self.assertEqual([row[0] for row in rows], ["written"] * 3)
        one, two, three = (row[2] for row in rows)
        for name, (_, moment, _) in zip(("one", "two", "three"), rows):
            filetime = self.messages()[name].tags[LAST_MODIFICATION_TIME]
            self.assertEqual(moment, date_and_time(filetime, datetime.datetime.now().astimezone().tzinfo))
        rows = self.write(document(CHANGE, one, LastName="changed"), document(DELETE, two))
        self.assertEqual([(row[0], row[2]) for row in rows], [("written", one), ("deleted", two)])
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
        self.assertEqual([row[0] for row in rows], ["refused"] * 6 + ["written"])
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


class Refusals(MessageCase):
    """Updates that cannot be, as single calls and as the desktop program sees them."""

    def setUp(self):
        super().setUp()
        self.agent = self.place.start_agent()

    def restart(self, **more):
        """An agent that reads its settings anew, with a log of its own."""
        self.agent.kill()
        self.agent.wait()
        self.place.log_file.unlink()
        self.agent = self.place.start_agent(**more)

    def moment_of(self, message):
        """The time of a message's last change as a write hands it back."""
        zone = datetime.datetime.now().astimezone().tzinfo
        return date_and_time(message.tags[LAST_MODIFICATION_TIME], zone)

    def assert_present(self, moment, begin):
        """The time of an attempt, which the agent has from the clock."""
        self.assertLessEqual(begin.replace(microsecond=0), time_of(moment))
        self.assertLessEqual(time_of(moment), datetime.datetime.now())

    def hold(self, how, path):
        """Keeps a file open in another program until the test ends or the returned function is called."""
        holder = self.place.start(harness.TEST_BIN / "write_messages.exe",
                                  harness.windows_path(self.place.bin / "MAPI32.dll"), how, harness.windows_path(path))
        harness.wait_until(lambda: b"ready" in holder.streams[0].read_bytes() or holder.poll() is not None, how)
        self.assertIsNone(holder.poll(), holder.streams[1].read_bytes())

        def release():
            holder.kill()
            holder.wait(harness.PATIENCE)
        self.addCleanup(release)
        return release

    def assert_finish(self, operation, result):
        lines = [line for line in self.place.log().splitlines() if f"::{operation} - Finish" in line]
        self.assertEqual(lines[-1], f"CMAPIObject::{operation} - Finish({result})")

    def test_a_contact_in_a_sub_folder_is_changed_and_deleted_where_it_is(self):
        self.place.settings(subfolder="TRUE")
        below = self.place.folder(self.place.FOLDER + "/Family")
        self.add(LastName="moved")
        [file] = self.place.contacts.glob("*.msg")
        file.rename(below / "moved.msg")
        self.restart()
        [document_read] = self.place.run_client("logon", "read", "logoff")[1]
        identifier = fields(document_read)["PIMID"]
        [(status, returned, moment)] = self.send(document(CHANGE, identifier, LastName="changed"))
        message = Message(below / "moved.msg")
        self.assertEqual((status, returned, moment), (0, identifier, self.moment_of(message)))
        self.assertEqual((message.tags[LAST_NAME], list(self.files())), ("changed", ["Family/moved.msg"]))
        self.write_one(document(CHANGE, identifier, LastName="again"))
        # Where reads do not go nothing is proved, and written all the same.
        self.place.settings(subfolder="FALSE")
        self.restart()
        [(result, _, _)] = self.write(document(CHANGE, identifier, LastName="unseen"), status=REFUSED)
        self.assertEqual((result, Message(below / "moved.msg").tags[LAST_NAME]), ("unproven", "unseen"))
        self.delete(identifier, status=REFUSED)
        self.assertEqual(self.files(), {})

    def test_a_contact_that_is_gone_stays_gone(self):
        identifier = self.add(LastName="gone")
        self.assertEqual(self.delete(identifier), "deleted")
        for flag, operation in ((CHANGE, "UpdateContact"), (DELETE, "DeleteContact")):
            begin = datetime.datetime.now()
            [(status, returned, moment)] = self.send(document(flag, identifier, LastName="back"))
            self.assertEqual((status, returned), (0, identifier))
            self.assert_present(moment, begin)
            self.assert_finish(operation, "Failed")
            self.assertEqual(self.write(document(flag, identifier, LastName="back"), status=REFUSED)[0][0], "unproven")
        self.assertEqual(self.files(), {})

    def assert_update_refused(self, identifier, moment):
        """A change is refused, and what is there stays. `moment` is what comes back as the time."""
        before = self.files()
        self.assertEqual(self.send(document(CHANGE, identifier, LastName="new")), [(0, identifier, moment)])
        self.assert_finish("UpdateContact", "Failed")
        self.assertEqual(self.write(document(CHANGE, identifier, LastName="new"), status=REFUSED)[0][0], "refused")
        self.assertEqual(self.files(), before)

    def test_a_contact_that_another_program_holds_stays_as_it_is(self):
        identifier = self.add(LastName="old")
        [path] = self.place.contacts.glob("*.msg")
        release = self.hold("keep", path)
        self.assert_update_refused(identifier, self.moment_of(Message(path)))
        release()
        self.write_one(document(CHANGE, identifier, LastName="new"))

    def test_a_contact_that_nobody_may_read_stays_as_it_is(self):
        identifier = self.add(LastName="old")
        [path] = self.place.contacts.glob("*.msg")
        before = self.files()
        release = self.hold("lock", path)
        begin = datetime.datetime.now()
        [(status, returned, moment)] = self.send(document(CHANGE, identifier, LastName="new"))
        self.assertEqual((status, returned), (0, identifier))
        self.assert_present(moment, begin)
        # The folder cannot be listed either, so nothing is proved.
        self.assertEqual(self.write(document(CHANGE, identifier, LastName="new"), status=REFUSED)[0][0], "unproven")
        release()
        self.assertEqual(self.files(), before)
        self.write_one(document(CHANGE, identifier, LastName="new"))

    def test_a_contact_that_is_read_only_stays_as_it_is(self):
        identifier = self.add(LastName="old")
        [path] = self.place.contacts.glob("*.msg")
        path.chmod(0o444)
        self.assert_update_refused(identifier, self.moment_of(Message(path)))
        path.chmod(0o644)
        self.write_one(document(CHANGE, identifier, LastName="new"))

    def test_a_full_disk_leaves_the_old_contact_and_makes_no_new_one(self):
        identifier = self.add(LastName="old", Body="x" * 20000)
        [path] = self.place.contacts.glob("*.msg")
        before = self.files()
        # Held open, so that the server of the prefix is there and not started under the limit.
        self.hold("keep", self.place.bin / "MAPI32.dll")
        moment = self.moment_of(Message(path))
        size = path.stat().st_size
        for room in (4096, size // 2, size * 3 // 4):
            with self.subTest(room=room):
                self.restart(FENNIC64_LEVEL="", prepare=harness.limit_file_size(room))
                added, changed = self.send(document(ADD, LastName="new", Body="y" * 20000),
                                           document(CHANGE, identifier, LastName="new", Body="y" * 20000))
                self.assertEqual((added[0], added[2]), (0, "12/30/1899 00:00:00"))
                self.assertEqual(changed, (0, identifier, moment))
                self.assertEqual(self.files(), before)
        # A deletion needs no room.
        self.assertEqual(self.send(document(DELETE, identifier))[0][:2], (0, identifier))
        self.assertEqual(self.files(), {})


if __name__ == "__main__":
    harness.run()
