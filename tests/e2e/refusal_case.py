"""Writes that cannot be done, as single calls and as the desktop program sees them, for any kind of item."""

import datetime
import os
import subprocess

import harness
from contact_fields import date_and_time
from message_case import Message
from writing_case import ADD, CHANGE, DELETE, LAST_MODIFICATION_TIME, NO_TIME, REFUSED

LONG = 20000


class RefusalTests:
    """Tests to be mixed into a MessageCase, which names the operations of the log."""

    OPERATIONS = {ADD: "AddContact", CHANGE: "UpdateContact", DELETE: "DeleteContact"}

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

    def assert_time_of_attempt(self, moment, begin):
        """The time that comes back where there was no message to open: for a contact the present."""
        self.assert_present(moment, begin)

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

    def assert_finish(self, flag, result):
        operation = self.OPERATIONS[flag]
        lines = [line for line in self.place.log().splitlines() if f"::{operation} - Finish" in line]
        self.assertEqual(lines[-1], f"CMAPIObject::{operation} - Finish({result})")

    def name_of(self, message):
        return message.tags[self.NAME_TAG]

    def add_one(self, name, **fields):
        """Adds an item. Gives its identifier and its file."""
        identifier = self.add_named(name, **fields)
        [path] = self.items.glob("*.msg")
        return identifier, path

    def assert_update_refused(self, identifier, moment):
        """A change is refused, and what is there stays. `moment` is what comes back as the time."""
        before = self.files()
        self.assertEqual(self.send(self.named(CHANGE, identifier, "new")), [(0, identifier, moment)])
        self.assert_finish(CHANGE, "Failed")
        rows = self.write(self.named(CHANGE, identifier, "new"), status=REFUSED)
        self.assertEqual(rows, [("refused", moment, identifier)])
        self.assertEqual(self.files(), before)

    def test_one_in_a_sub_folder_is_changed_and_deleted_where_it_is(self):
        self.place.settings(subfolder="TRUE")
        below = self.place.folder(self.FOLDER + "/Family")
        _, file = self.add_one("moved")
        file.rename(below / "moved.msg")
        self.restart()
        [document_read] = self.read_all()
        identifier = document_read.split("<PIMID>")[1].split("</PIMID>")[0]
        [(status, returned, moment)] = self.send(self.named(CHANGE, identifier, "changed"))
        message = Message(below / "moved.msg")
        self.assertEqual((status, returned, moment), (0, identifier, self.moment_of(message)))
        self.assertEqual((self.name_of(message), list(self.files())), ("changed", ["Family/moved.msg"]))
        self.write_one(self.named(CHANGE, identifier, "again"))
        # Where reads do not go nothing is proved, and written all the same.
        self.place.settings(subfolder="FALSE")
        self.restart()
        [(result, _, _)] = self.write(self.named(CHANGE, identifier, "unseen"), status=REFUSED)
        self.assertEqual((result, self.name_of(Message(below / "moved.msg"))), ("unproven", "unseen"))
        self.delete(identifier, status=REFUSED)
        self.assertEqual(self.files(), {})

    def test_one_that_is_gone_stays_gone(self):
        identifier, _ = self.add_one("gone")
        self.assertEqual(self.delete(identifier), "deleted")
        for flag in (CHANGE, DELETE):
            begin = datetime.datetime.now()
            [(status, returned, moment)] = self.send(self.named(flag, identifier, "back"))
            self.assertEqual((status, returned), (0, identifier))
            self.assert_time_of_attempt(moment, begin)
            self.assert_finish(flag, "Failed")
            begin = datetime.datetime.now()
            [(result, moment, returned)] = self.write(self.named(flag, identifier, "back"), status=REFUSED)
            self.assertEqual((result, returned), ("unproven", identifier))
            self.assert_time_of_attempt(moment, begin)
        self.assertEqual(self.files(), {})

    def test_one_that_another_program_holds_stays_as_it_is(self):
        identifier, path = self.add_one("old")
        release = self.hold("keep", path)
        self.assert_update_refused(identifier, self.moment_of(Message(path)))
        release()
        self.write_one(self.named(CHANGE, identifier, "new"))

    def test_one_that_nobody_may_read_stays_as_it_is(self):
        identifier, path = self.add_one("old")
        before = self.files()
        release = self.hold("lock", path)
        begin = datetime.datetime.now()
        [(status, returned, moment)] = self.send(self.named(CHANGE, identifier, "new"))
        self.assertEqual((status, returned), (0, identifier))
        self.assert_time_of_attempt(moment, begin)
        # The folder cannot be listed either, so nothing is proved.
        self.assertEqual(self.write(self.named(CHANGE, identifier, "new"), status=REFUSED)[0][0], "unproven")
        release()
        self.assertEqual(self.files(), before)
        self.write_one(self.named(CHANGE, identifier, "new"))

    def test_one_that_is_read_only_stays_as_it_is(self):
        identifier, path = self.add_one("old")
        path.chmod(0o444)
        self.assert_update_refused(identifier, self.moment_of(Message(path)))
        path.chmod(0o644)
        self.write_one(self.named(CHANGE, identifier, "new"))

    def assert_both_refused(self, identifier, moment):
        """There is no room for an add and none for a change, and what is there stays."""
        before = self.files()
        added, changed = self.send(self.named(ADD, None, "new", Body="y" * LONG),
                                   self.named(CHANGE, identifier, "new", Body="y" * LONG))
        self.assertEqual((added[0], added[2]), (0, NO_TIME))
        self.assertEqual(changed, (0, identifier, moment))
        self.assertEqual(self.files(), before)
        # The store named the message before it refused to save it. That is now a name for nothing.
        self.assertRegex(added[1], r"\A([0-9A-F]{2})+\Z")
        self.assertNotEqual(added[1], identifier)
        begin = datetime.datetime.now()
        [(status, returned, time)] = self.send(self.named(CHANGE, added[1], "new"))
        self.assertEqual((status, returned), (0, added[1]))
        self.assert_time_of_attempt(time, begin)
        self.assertEqual(self.files(), before)

    def test_a_file_that_cannot_grow_leaves_the_old_one_and_makes_no_new_one(self):
        identifier, path = self.add_one("old", Body="x" * LONG)
        # Held open, so that the server of the prefix is there and not started under the limit.
        self.hold("keep", self.place.bin / "MAPI32.dll")
        moment = self.moment_of(Message(path))
        size = path.stat().st_size
        for room in (4096, size // 2, size * 3 // 4):
            with self.subTest(room=room):
                self.restart(FENNIC64_LEVEL="", prepare=harness.limit_file_size(room))
                self.assert_both_refused(identifier, moment)
        # A deletion needs no room.
        self.assertEqual(self.send(self.document(DELETE, identifier))[0][:2], (0, identifier))
        self.assertEqual(self.files(), {})

    def move_to_small_disk(self, size):
        """Gives the agent a store on a disk of its own, of a size in kilobytes."""
        disk = self.place.path / "disk"
        disk.mkdir()
        mounted = subprocess.run(["mount", "-t", "tmpfs", "-o", f"size={size}k", "tmpfs", str(disk)],
                                 stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, check=False)
        if mounted.returncode != 0:
            self.skipTest("NO SMALL DISK: this user may not mount one")
        # The agent may have a file of it open until the place is closed.
        self.addCleanup(subprocess.run, ["umount", "-l", str(disk)], check=True)
        self.place.root = disk / "root"
        self.place.contacts = self.place.folder(self.place.FOLDER)
        self.items = self.place.folder(self.FOLDER)
        self.restart()

    def fill_disk(self, room):
        """Leaves that much room on the small disk, in bytes."""
        filler = self.place.root / "filler"
        filler.unlink(missing_ok=True)
        disk = os.statvfs(self.place.root)
        filler.write_bytes(bytes(disk.f_bavail * disk.f_frsize - room))

    def test_a_full_disk_leaves_the_old_one_and_makes_no_new_one(self):
        self.move_to_small_disk(512)
        identifier, path = self.add_one("old", Body="x" * LONG)
        moment = self.moment_of(Message(path))
        size = path.stat().st_size
        for room in (0, 4096, size // 2, size * 3 // 4):
            with self.subTest(room=room):
                self.fill_disk(room)
                self.assert_both_refused(identifier, moment)
                self.assert_finish(ADD, "Failed")
                self.assert_finish(CHANGE, "Failed")
        rows = self.write(self.named(ADD, None, "new", Body="y" * LONG), status=REFUSED)
        self.assertEqual([row[:2] for row in rows], [("refused", NO_TIME)])
        # A deletion needs no room, and makes some.
        self.fill_disk(0)
        self.assertEqual(self.send(self.document(DELETE, identifier))[0][:2], (0, identifier))
        self.assertEqual(self.files(), {})
        self.add_named("new", Body="y" * LONG)
