"""The files that the local store writes, read by a reader that shares nothing with it.

Messages that a mail program saved are tried too if ZEB_REAL_ITEMS names a folder with them.
"""

import json
import sys
import time
import unittest

import harness
from contact_fields import fields

try:
    import read_msg
except ImportError:
    print("SKIPPED: the olefile library is not there", file=sys.stderr)
    sys.exit(harness.SKIPPED)

ADDRESS = "00062004-0000-0000-c000-000000000046"
COMMON = "00062008-0000-0000-c000-000000000046"
PUBLIC = "00020329-0000-0000-c000-000000000046"
TOUCHED = 0x67FF0003
LAST_MODIFICATION_TIME = 0x30080040
STORE_SUPPORT_MASK = 0x340D0003


class MessageFiles(harness.Case):
    def setUp(self):
        super().setUp()
        self.place.folder("Work/Mail/Inbox")

    def start_writer(self, *what, **more):
        return self.place.start(harness.TEST_BIN / "write_messages.exe",
                                harness.windows_path(self.place.bin / "MAPI32.dll"), *what, **more)

    def start_until_killed(self, *what):
        """Starts a writer that goes on until it is killed, and waits until it is at it."""
        writer = self.start_writer(*what)
        self.addCleanup(self.kill, writer)
        harness.wait_until(lambda: b"ready" in writer.streams[0].read_bytes() or writer.poll() is not None, what)
        self.assertIsNone(writer.poll(), writer.streams[1].read_bytes())
        return writer

    def kill(self, writer):
        writer.kill()
        writer.wait(harness.PATIENCE)

    def write(self, what):
        return self.assert_exit(self.start_writer(what))[0]

    def assert_refused(self, writer, results):
        """The writer was refused when it saved, with one of these results."""
        errors = self.assert_exit(writer, 1)[1].strip()
        self.assertIn(errors, [f"SaveChanges gives {result:08X}" for result in results])

    def files(self):
        return {file.name: file.read_bytes() for file in self.place.contacts.iterdir()}

    def the_message(self):
        [file] = self.place.contacts.glob("*.msg")
        return read_msg.Message(file)


class NewMessages(MessageFiles):
    def setUp(self):
        super().setUp()
        self.write("make")
        self.message = self.the_message()

    def test_the_file_is_a_message_and_says_so(self):
        self.assertEqual(self.message.class_id, "00020D0B-0000-0000-C000-000000000046")
        self.assertEqual(self.message.tags[STORE_SUPPORT_MASK] & 0x40000, 0x40000)
        # The next numbers of recipients and attachments, then how many there are.
        self.assertEqual([int.from_bytes(self.message.header[i:i + 4], "little") for i in (8, 12, 16, 20)], [0, 1, 0, 1])

    def test_texts(self):
        texts = {0x001A001F: "IPM.Contact", 0x0037001F: "RE: J\xf6rg \u5c71\u7530 \U0001F600", 0x003D001F: "RE: ",
                 0x0E1D001F: "J\xf6rg \u5c71\u7530 \U0001F600", 0x3A11001F: "\u5c71\u7530",
                 0x1000001F: "Two\r\nlines", 0x3A4F001F: ""}
        self.assertEqual({tag: self.message.tags.get(tag) for tag in texts}, texts)

    def test_every_type(self):
        values = {0x66000002: -3, 0x66020004: 1.5, 0x66030005: -2.25, 0x66040014: -5000000000, 0x6605000B: True,
                  0x3A420040: 0x01D0000012345678, 0x66070102: b"\0\1\2\0", 0x66080102: b"",
                  0x66090048: "01020304-0506-0708-090a-0b0c0d0e0f10", 0x66111003: [1, -2, 3], 0x66121102: [b"\7\0", b""]}
        self.assertEqual({tag: self.message.tags.get(tag) for tag in values}, values)

    def test_named_properties(self):
        self.assertEqual(self.message.named, {
            (ADDRESS, 0x8083): "a@b.example", (COMMON, 0x8554): "16.0", (ADDRESS, "a word of our own"): "value",
            (PUBLIC, "Keywords"): ["Friends", "\u53cb\u9054"]})

    def test_times(self):
        self.assertGreater(self.message.tags[LAST_MODIFICATION_TIME], 0)
        self.assertGreater(self.message.tags[0x30070040], 0)
        self.assertLessEqual(self.message.tags[0x30070040], self.message.tags[LAST_MODIFICATION_TIME])

    def test_the_attachment(self):
        [(number, attachment)] = self.message.attachments.items()
        self.assertEqual(number, 0)
        self.assertEqual(attachment.tags[0x37010102], bytes(i % 251 for i in range(70000)))
        self.assertEqual(attachment.tags[0x3707001F], "ContactPicture.jpg")
        self.assertEqual(attachment.tags[0x37050003], 1)
        self.assertEqual(attachment.tags[0x0E210003], 0)
        self.assertEqual(attachment.named, {(ADDRESS, 0x8FFF): 5})

    def test_a_change_of_one_property_changes_nothing_else(self):
        self.assertEqual(self.write("touch").strip(), "1")
        after = self.the_message()
        changed = {tag for tag in self.message.tags | after.tags if self.message.tags.get(tag) != after.tags.get(tag)}
        self.assertLessEqual(changed, {TOUCHED, LAST_MODIFICATION_TIME})
        self.assertEqual(after.tags[TOUCHED], 1)
        same = {name for name in self.message.streams if name != "__properties_version1.0"}
        self.assertEqual({name: after.streams[name] for name in same}, {name: self.message.streams[name] for name in same})


class Interruptions(MessageFiles):
    def test_a_writer_that_is_killed_leaves_the_old_message_or_the_new_one(self):
        self.write("make")
        picture = self.the_message().attachments[0].tags[0x37010102]
        last = 0
        for round in range(40):
            writer = self.start_until_killed("rewrite")
            # Each a little later in what it does over and over.
            time.sleep(round * 0.0017)
            self.kill(writer)
            message = self.the_message()
            number = message.tags[TOUCHED]
            # What was saved before this writer said so is not lost.
            self.assertGreater(number, last)
            self.assertEqual(message.tags[0x1000001F], f"{number:08}" * 4000, f"number {number}")
            self.assertEqual(message.attachments[0].tags[0x37010102], picture)
            last = number
            others = [name for name in self.files() if not name.endswith(".msg")]
            self.assertEqual([name for name in others if not name.startswith("~localstore-")], [])
        self.assertEqual(self.write("touch").strip(), "1")

    def test_writers_at_the_same_time_lose_and_double_nothing(self):
        self.write("make")
        [made] = self.files().items()
        foreign = {made[0]: made[1], "Same (3).msg": made[1], "Same (4).txt": b"no message", "same.tmp": b""}
        for name, content in foreign.items():
            (self.place.contacts / name).write_bytes(content)
        names = ("first", "second", "third")
        for writer in [self.start_writer("add", name) for name in names]:
            self.assert_exit(writer)
        files = self.files()
        self.assertEqual({name: files.pop(name) for name in foreign}, foreign)
        added = [read_msg.Message(self.place.contacts / name).tags[0x3A4F001F] for name in files]
        self.assertEqual(sorted(added), sorted(f"{name}-{number}" for name in names for number in range(1, 41)))


class Refusals(MessageFiles):
    def setUp(self):
        super().setUp()
        self.write("make")
        self.before = self.files()
        [self.path] = self.place.contacts.glob("*.msg")

    def test_a_message_that_another_program_holds_stays_as_it_is(self):
        holder = self.start_until_killed("keep", harness.windows_path(self.path))
        self.assert_refused(self.start_writer("touch"), (0x8004010B, 0x80070005))
        self.assertEqual(self.files(), self.before)
        self.kill(holder)
        self.assertEqual(self.write("touch").strip(), "1")

    def test_a_folder_with_a_message_that_nobody_may_read_says_so(self):
        log = self.place.path / "store.log"
        holder = self.start_until_killed("lock", harness.windows_path(self.path))
        writer = self.start_writer("touch", LOCALSTORE_LOG=harness.windows_path(log))
        self.assertEqual(self.assert_exit(writer, 1)[1].strip(), "GetContentsTable gives 8004010B")
        self.assertIn(f"{self.path.name}: it cannot be read now", log.read_text(encoding="utf-8"))
        self.assertEqual(self.files(), self.before)
        self.kill(holder)
        self.assertEqual(self.write("touch").strip(), "1")

    def test_a_full_disk_leaves_the_old_message_and_nothing_else(self):
        size = len(self.before[self.path.name])
        for room in (512, 4096, size // 2, size - 1):
            with self.subTest(room=room):
                # Held open, so that the server of the prefix is there and not started under the limit.
                holder = self.start_until_killed("keep", harness.windows_path(self.place.bin / "MAPI32.dll"))
                self.assert_refused(self.start_writer("touch", prepare=harness.limit_file_size(room)), (0x8004010D,))
                self.kill(holder)
                self.assertEqual(self.files(), self.before)
        self.assertEqual(self.write("touch").strip(), "1")


class NarrowTexts(MessageFiles):
    """Messages with 8-bit texts, written by neither the store nor the reader."""

    # The same two bytes are other letters in each.
    BYTES = b"\xE1\xE2"
    LETTERS = {1253: "\u03B1\u03B2", 1251: "\u0431\u0432", 1252: "\u00E1\u00E2"}

    def test_they_are_of_the_code_page_that_the_message_names(self):
        for code_page in self.LETTERS:
            process = self.place.start(harness.TEST_BIN / "write_narrow_contact.exe",
                                       harness.windows_path(self.place.contacts / f"{code_page}.msg"), code_page,
                                       self.BYTES.hex())
            self.assert_exit(process)
            message = read_msg.Message(self.place.contacts / f"{code_page}.msg")
            self.assertEqual((message.tags[0x3A11001E], message.tags[0x3FFD0003]), (self.LETTERS[code_page], code_page))
        arrived = [fields(document.decode())["LastName"] for document in self.place.read_with_desktop().values()]
        self.assertEqual(sorted(arrived), sorted(self.LETTERS.values()))


@unittest.skipUnless(list(harness.REAL_ITEMS.glob("*.msg")), harness.NO_REAL_ITEMS)
class SavedMessages(MessageFiles):
    def test_the_reader_reads_what_others_read(self):
        for description in harness.REAL_ITEMS.glob("*.json"):
            expected = json.loads(description.read_text(encoding="utf-8"))
            message = read_msg.Message(description.with_suffix(".msg"))
            for entry in expected["properties"]:
                value = entry["value"]
                kind = entry["type"]
                found = message.tags.get(int(entry["tag"], 16))
                if kind == "PT_SYSTIME":
                    value = value["filetime"]
                elif kind == "PT_BINARY":
                    value = bytes.fromhex(value) if isinstance(value, str) else found
                elif kind == "PT_UNICODE":
                    value, found = value.rstrip("\0"), found.rstrip("\0")
                self.assertEqual(found, value, (description.name, entry["tag"]))
            for entry in expected["named_properties"]:
                if "lid" in entry and entry["type"] in ("PT_UNICODE", "PT_LONG", "PT_BOOLEAN", "PT_MV_LONG"):
                    self.assertEqual(message.named[(entry["guid"].lower(), int(entry["lid"], 16))], entry["value"],
                                     (description.name, entry["lid"]))

    def test_a_change_of_one_property_changes_nothing_else(self):
        before = {}
        for file in harness.REAL_ITEMS.glob("*.msg"):
            (self.place.contacts / file.name).write_bytes(file.read_bytes())
            before[file.name] = read_msg.Message(file)
        self.assertEqual(self.write("touch").strip(), str(len(before)))
        for name, old in before.items():
            new = read_msg.Message(self.place.contacts / name)
            changed = {tag for tag in old.tags | new.tags if old.tags.get(tag) != new.tags.get(tag)}
            self.assertLessEqual(changed, {TOUCHED, LAST_MODIFICATION_TIME, 0x0E070003}, name)
            self.assertEqual(new.tags[TOUCHED], 1)
            self.assertEqual(new.named, old.named)
            self.assertEqual({part: found.tags for part, found in new.attachments.items()},
                             {part: found.tags for part, found in old.attachments.items()})
            self.assertEqual({part: found.tags for part, found in new.recipients.items()},
                             {part: found.tags for part, found in old.recipients.items()})
            # Streams other than those of properties too: embedded messages and all that nobody here looks into.
            for stream, content in old.streams.items():
                if stream.split("/")[-1] != "__properties_version1.0" or stream.count("/") > 1:
                    self.assertEqual(new.streams.get(stream), content, (name, stream))


if __name__ == "__main__":
    harness.run()
