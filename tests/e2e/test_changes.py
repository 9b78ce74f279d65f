"""Reads of changes by the desktop program: what is new, changed or gone, each once, and nothing lost however they end."""

import os
import shutil
import struct
import time

import harness
from contact_fields import change_fields, tag_line

NEW, CHANGED, DELETED = "8", "4", "32"
MANY = 2000
HUNDRED_THOUSAND = 100_000
FINISHED = "CMAPIObject::ReadContacts - Finish\r\n"


def names(count):
    return [f"no{number:04}" for number in range(count)]


def edit(file, old, new):
    """Gives a contact another text of the same length, and a time of change that is a minute later."""
    content = file.read_bytes()
    for text in (old, new):
        assert len(text) == len(old)
    assert content.count(old.encode("utf-16-le")) == 1
    content = content.replace(old.encode("utf-16-le"), new.encode("utf-16-le"))
    # The entry of PR_LAST_MODIFICATION_TIME in the stream of properties: tag, flags, 8 bytes of FILETIME.
    place = content.index(struct.pack("<L", 0x30080040)) + 8
    [moment] = struct.unpack_from("<Q", content, place)
    file.write_bytes(content[:place] + struct.pack("<Q", moment + 60 * 10_000_000) + content[place + 8:])


class Changes(harness.Case):
    def setUp(self):
        super().setUp()
        self.map = self.place.path / "contacts.map"
        self.reads = 0

    def make(self, count):
        self.place.make_contacts([[tag_line("3A11001F", "number")]])
        self.place.multiply_contact("number", names(count))

    def file(self, number):
        return self.place.contacts / f"{number:04}.msg"

    def start(self, *options, **more):
        """Starts a read of changes into a folder of its own."""
        self.reads += 1
        self.out = self.place.path / f"changes{self.reads}"
        self.place.need_shutdown()
        return self.place.start(self.place.bin / "zebdesk.exe", "read", "contacts", "--changed",
                                harness.windows_path(self.map), "--out", harness.windows_path(self.out), *options,
                                **more)

    def arrived(self):
        """The documents of the last read."""
        files = self.out.glob("*.xml") if self.out.exists() else []
        return [change_fields(file.read_bytes().decode()) for file in files if file.is_file()]

    def read(self, *options, status=0, **more):
        """Reads to the end. Gives the documents, and what was written to the two streams."""
        process = self.start(*options, **more)
        code, output, errors = self.place.finish(process)
        self.assertEqual(code, status, output + errors)
        return self.arrived(), output, errors

    def flags(self, documents):
        """The flags of documents by last name, or by identifier for deletions, which have no name."""
        return {one.get("LastName", one["PIMID"]): one["lFlag"] for one in documents}

    def assert_new(self, documents, expected):
        self.assertEqual(self.flags(documents), {name: NEW for name in expected})
        self.assertEqual(len(documents), len(expected))

    def test_the_first_read_brings_all_and_the_next_one_nothing(self):
        self.make(12)
        documents, output, errors = self.read()
        self.assert_new(documents, names(12))
        self.assertEqual(errors, "contacts: 12 new, 0 changed, 0 deleted\n")
        self.assertEqual(len(output.splitlines()), 13)
        documents, output, errors = self.read()
        self.assertEqual((documents, output, errors), ([], "", "contacts: 0 new, 0 changed, 0 deleted\n"))
        self.assertIn("CMAPIObject::ReadContacts - No Change\r\n", self.place.log())
        self.assertEqual([file.name for file in self.place.path.glob("contacts.map*")], ["contacts.map"])

    def test_exactly_what_was_added_edited_deleted_and_moved_arrives(self):
        self.place.settings(subfolder="TRUE")
        below = self.place.folder(self.place.FOLDER + "/Private")
        self.make(8)
        before = {one["LastName"]: one["PIMID"] for one in self.read()[0]}
        shutil.copyfile(self.file(0), self.place.contacts / "added.msg")
        edit(self.place.contacts / "added.msg", "no0000", "added!")
        edit(self.file(1), "no0001", "edited")
        self.file(2).unlink()
        self.file(3).rename(below / "0003.msg")
        documents, output, _ = self.read()
        # The store names a message by its place: one that is moved is another one there.
        self.assertEqual(self.flags(documents), {"added!": NEW, "edited": CHANGED, "no0003": NEW,
                                                 before["no0002"]: DELETED, before["no0003"]: DELETED})
        self.assertEqual(len(documents), 5)
        lines = [line.split()[0] for line in output.splitlines()]
        self.assertEqual(sorted(lines), ["CHANGE", "changed", "deleted", "deleted", "new", "new"])
        self.assertEqual(self.read()[0], [])

    def test_a_deletion_replaces_the_file_of_the_item_and_has_its_time(self):
        self.make(2)
        times = {one["PIMID"]: one["lastModifiedTime"] for one in self.read()[0]}
        first = sorted(file.name for file in self.out.iterdir())
        self.file(0).unlink()
        [document] = self.read()[0]
        self.assertEqual(set(document), {"lFlag", "PIMID", "LastModifiedTime"})
        self.assertEqual(document["LastModifiedTime"], times[document["PIMID"]])
        self.assertIn([file.name for file in self.out.iterdir()][0], first)

    def test_documents_can_go_to_standard_output(self):
        self.make(2)
        status, output, _ = self.place.run_desktop("read", "contacts", "--changed", harness.windows_path(self.map),
                                                   "--xml")
        self.assertEqual((status, output.count("<lFlag>8</lFlag>")), (0, 2))
        self.assertEqual(self.read()[0], [])

    def test_what_is_told_once_must_go_somewhere(self):
        for options in (["--changed", "map"], ["--changed", "map", "--tabs"], ["--accept-deletions"],
                        ["--changed=", "--xml"]):
            status, output, errors = self.place.run_desktop("read", "contacts", *options)
            self.assertEqual((status, output), (1, ""), errors)

    # Cut short: the map stays as it was, so the next read brings all.

    def kill_at(self, tenth, count, victim):
        """Kills a process during a read, when some tenths of the documents are there. Gives the read's exit status."""
        process = self.start()
        while process.poll() is None:
            if self.out.exists() and len(os.listdir(self.out)) >= count * tenth // 10:
                (victim or process).kill()
                break
        return process.wait(harness.PATIENCE)

    def assert_nothing_lost_when_killed(self, tenth, kill_agent):
        count = 200
        agent = self.place.start_agent()
        status = self.kill_at(tenth, count, agent if kill_agent else None)
        if status == 0:
            # It was quicker than the kill; then everything is there.
            self.assertEqual(len(self.arrived()), count)
        else:
            self.assertFalse(self.map.exists())
            # The agent may still be at work for the one that was killed.
            self.assertEqual(self.place.run_desktop("shutdown")[0], 0)
            self.assert_new(self.read()[0], names(count))
        self.assertEqual(self.read()[0], [])
        self.map.unlink()
        self.assertEqual(self.place.run_desktop("shutdown")[0], 0)
        return status != 0

    def test_a_desktop_program_that_is_killed_at_each_tenth_loses_nothing(self):
        self.make(200)
        kills = [self.assert_nothing_lost_when_killed(tenth, kill_agent=False) for tenth in range(10)]
        self.assertGreaterEqual(kills.count(True), 5)

    def test_an_agent_that_is_killed_at_each_tenth_loses_nothing(self):
        self.make(200)
        kills = [self.assert_nothing_lost_when_killed(tenth, kill_agent=True) for tenth in range(10)]
        self.assertGreaterEqual(kills.count(True), 5)

    def test_a_document_that_cannot_be_written_comes_again(self):
        self.make(20)
        self.read()
        some = sorted(file.name for file in self.out.iterdir())[10]
        self.map.unlink()
        self.reads += 1
        (self.place.path / f"changes{self.reads}" / some).mkdir(parents=True)
        self.reads -= 1
        _, _, errors = self.read(status=6)
        self.assertIn(f"{some} cannot be written", errors)
        self.assertFalse(self.map.exists())
        self.assert_new(self.read()[0], names(20))

    def test_a_disk_that_is_full_for_the_agents_map_loses_nothing(self):
        self.make(150)
        agent = self.place.start_agent(FENNIC64_LEVEL="", prepare=harness.limit_file_size(8192))
        _, _, errors = self.read(status=6)
        self.assertIn("could not bring the map up to date", errors)
        self.assertIn("cannot be written (error", self.place.log())
        self.assertFalse(self.map.exists())
        agent.kill()
        agent.wait()
        self.assert_new(self.read()[0], names(150))
        self.assertEqual(self.read()[0], [])

    def test_a_disk_that_is_full_for_the_copy_of_the_map_stops_the_read_before_it_begins(self):
        self.make(150)
        self.read()
        known = self.map.read_bytes()
        self.file(7).unlink()
        documents, _, errors = self.read(status=6, prepare=harness.limit_file_size(8192))
        self.assertEqual(documents, [])
        self.assertIn("cannot be copied", errors)
        self.assertEqual(self.map.read_bytes(), known)
        self.assertEqual(list(self.flags(self.read()[0]).values()), [DELETED])

    # Maps that are no good.

    def test_a_damaged_map_is_kept_and_all_items_come_as_new(self):
        self.make(6)
        self.read()
        good = self.map.read_bytes()
        kept = set()
        for damaged in (b"", b"DunmereMap 2\n", good[:-1], good.replace(b"contact", b"kontakt"), os.urandom(500)):
            with self.subTest(damaged=damaged[:20]):
                self.map.write_bytes(damaged)
                documents, _, errors = self.read()
                self.assert_new(documents, names(6))
                self.assertIn("the map is damaged or of a later version, so all items came as new\n", errors)
                self.assertEqual(self.map.read_bytes(), good)
                [aside] = set(self.place.path.glob("contacts.map.*")) - kept
                self.assertIn(f"the damaged map is kept as {harness.windows_path(aside)}\n", errors)
                self.assertEqual(aside.read_bytes(), damaged)
                kept.add(aside)
                self.assertEqual(self.read()[0], [])

    def test_a_damaged_map_stays_until_a_read_succeeds(self):
        self.make(300)
        self.map.write_bytes(b"damaged")
        self.place.start_agent()
        for _ in range(2):
            status, _, _ = self.place.interrupt_desktop("read", "contacts", "--changed",
                                                        harness.windows_path(self.map), "--xml")
            self.assertEqual(status, 5)
            self.assertEqual([file.name for file in self.place.path.glob("contacts.map*")], ["contacts.map"])
            self.assertEqual(self.map.read_bytes(), b"damaged")
        self.assert_new(self.read()[0], names(300))
        self.assertEqual(self.read()[0], [])

    def test_what_a_killed_program_left_beside_a_good_map_does_not_count(self):
        self.make(3)
        self.read()
        for ending in (".working", ".working.aside"):
            (self.place.path / ("contacts.map" + ending)).write_bytes(b"left over")
        documents, _, errors = self.read()
        self.assertEqual((documents, errors), ([], "contacts: 0 new, 0 changed, 0 deleted\n"))
        self.assertEqual([file.name for file in self.place.path.glob("contacts.map*")], ["contacts.map"])

    def test_contacts_that_go_while_the_read_runs_are_told_next_time(self):
        self.make(300)
        process = self.start()
        harness.wait_until(lambda: self.out.exists() and any(self.out.iterdir()), "the first document arrives")
        for number in range(290, 300):
            self.file(number).rename(self.place.path / f"{number}.msg")
        status, _, errors = self.place.finish(process)
        self.assertEqual(status, 4, errors)
        self.assertIn("10 of 300 changes did not arrive; the next read brings them again", errors)
        self.assert_new(self.arrived(), names(290))
        for number in range(290, 295):
            (self.place.path / f"{number}.msg").rename(self.file(number))
        self.assert_new(self.read()[0], names(295)[290:])
        self.assertEqual(self.read()[0], [])

    def test_a_map_that_cannot_be_used_is_refused_before_the_read(self):
        self.make(1)
        self.map.mkdir()
        self.assertIn("is a folder", self.read(status=6)[2])
        self.map.rmdir()
        self.map = self.place.path / "nowhere" / "map"
        self.assertIn("cannot be written to", self.read(status=6)[2])
        self.assertNotIn("ReadContacts", self.place.log())

    # Deletions that nobody believes.

    def assert_doubted(self, known_map):
        documents, _, errors = self.read(status=10)
        self.assertIn("--accept-deletions", errors)
        self.assertEqual(self.map.read_bytes(), known_map)
        return documents

    def test_a_folder_that_reads_as_empty_after_a_full_one_makes_it_ask(self):
        self.make(5)
        identifiers = {one["PIMID"] for one in self.read()[0]}
        known = self.map.read_bytes()
        aside = self.place.contacts.rename(self.place.path / "away")
        self.place.contacts.mkdir()
        self.assertEqual(self.assert_doubted(known), [])
        # The folder comes back, and nothing has happened.
        self.place.contacts.rmdir()
        aside.rename(self.place.contacts)
        self.assertEqual(self.read()[0], [])
        for file in self.place.contacts.glob("*.msg"):
            file.unlink()
        self.assert_doubted(known)
        documents, _, _ = self.read("--accept-deletions")
        self.assertEqual(self.flags(documents), {one: DELETED for one in identifiers})
        self.assertEqual(self.read()[0], [])

    def test_a_message_that_cannot_be_read_for_a_while_is_not_taken_for_deleted(self):
        self.make(3)
        self.read()
        known = self.map.read_bytes()
        # A new agent has not read it before.
        self.place.run_desktop("shutdown")
        holder = self.place.start(harness.TEST_BIN / "write_messages.exe", harness.windows_path(self.place.bin / "MAPI32.dll"),
                                  "lock", harness.windows_path(self.file(1)))
        harness.wait_until(lambda: holder.streams[0].stat().st_size != 0, "the file is held")
        documents, _, _ = self.read(status=4)
        self.assertEqual(documents, [])
        self.assertEqual(self.map.read_bytes(), known)
        holder.kill()
        holder.wait()
        self.assertEqual(self.read()[0], [])

    def test_ctrl_c_in_the_middle_loses_nothing(self):
        self.make(300)
        self.place.start_agent()
        status, _, _ = self.place.interrupt_desktop("read", "contacts", "--changed", harness.windows_path(self.map),
                                                    "--xml")
        self.assertEqual(status, 5)
        self.assertFalse(self.map.exists())
        self.assert_new(self.read()[0], names(300))
        self.assertEqual(self.read()[0], [])

    def test_few_items_may_all_be_deleted(self):
        self.make(4)
        self.read()
        for number in range(4):
            self.file(number).unlink()
        self.assertEqual(len(self.read()[0]), 4)

    def test_more_than_half_of_fifty_is_doubted_and_half_is_not(self):
        self.make(50)
        self.read()
        known = self.map.read_bytes()
        for number in range(26):
            self.file(number).unlink()
        edit(self.file(30), "no0030", "edited")
        # What is not doubted arrives, and arrives again.
        self.assertEqual(self.flags(self.assert_doubted(known)), {"edited": CHANGED})
        shutil.copyfile(self.file(40), self.file(0))
        self.map.write_bytes(known)
        documents, _, _ = self.read(status=0)
        self.assertEqual(sorted(self.flags(documents).values()), sorted([DELETED] * 25 + [CHANGED]))

    # The speeds are printed for whoever wants to know; nothing depends on them.

    def make_many(self, count):
        self.make(min(count, 10000))
        for number in range(10000, count):
            os.link(self.file(number % 10000), self.place.contacts / f"{number}.msg")

    def test_the_walk_of_a_hundred_thousand_contacts(self):
        # What a comparison of as many takes, another test tells.
        self.make_many(HUNDRED_THOUSAND)
        self.place.start_agent()
        begin = time.monotonic()
        status, output, errors = self.place.run_desktop("count")
        harness.tell_measured(f"walk of {HUNDRED_THOUSAND} contacts, all of them read from the disk, with logon and logoff: "
                              f"{time.monotonic() - begin:.1f} s")
        self.assertEqual((status, output), (0, f"contacts: {HUNDRED_THOUSAND}\n"), errors)

    def test_a_read_without_changes_of_many_contacts(self):
        count = int(os.environ.get("ZEB_MANY_CONTACTS", MANY))
        self.make_many(count)
        for what in ("first read of changes", "without a change", "without a change again"):
            begin = time.monotonic()
            documents, _, _ = self.read("-q")
            seconds = time.monotonic() - begin
            harness.tell_measured(f"{what}: {count} contacts in {seconds:.2f} s, {count / seconds:.0f} a second")
            self.assertEqual(len(documents), count if what.startswith("first") else 0)


if __name__ == "__main__":
    harness.run()
