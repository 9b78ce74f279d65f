"""Contacts that are written: every field comes back and stands in the message, and whatever goes wrong leaves it whole."""

import datetime
import random
import re
import sys
import time
import xml.etree.ElementTree
import zoneinfo

import harness
from contact_fields import date_and_time, fields, parse, tag_line
from writing_case import (ADD, ADDRESS_SET, CHANGE, DELETE, KEYWORDS, LAST_MODIFICATION_TIME, LAST_NAME, PICTURE,
                          REFUSED, SERVICES, TEXT_FIELDS, WritingCase, document, stored, time_of)

try:
    import read_msg
except ImportError:
    print("SKIPPED: the olefile library is not there", file=sys.stderr)
    sys.exit(harness.SKIPPED)

# A text of every length class and script in every field; names are given, since more is made of them.
TEXTS = {name: f"{name} <&> \u00E4\u5C71\U0001F600 {number}" for number, (name, _, _) in enumerate(TEXT_FIELDS)}
TEXTS |= {"FirstName": "\u00C4nn\u00E4", "MiddleName": "Maria  Sofia", "LastName": "<Doe & S\u00F6hne>",
          "Body": "First line\r\n\tsecond \u5C71\r\n" * 4000 + "end"}
NAME = "\u00C4nn\u00E4 Maria  Sofia <Doe & S\u00F6hne>"
INITIALS = "\u00C4.M. .S.<."
JPEG = b"\xFF\xD8\xFF" + bytes(i % 251 for i in range(70000)) + b"\xFF\xD9"
# What a write makes of an address beside the address itself.
MAIL_COMPANIONS = {"Email1": (0x8080, 0x8082, 0x8083, 0x8084), "Email2": (0x8090, 0x8092, 0x8093, 0x8094),
                   "Email3": (0x80A0, 0x80A2, 0x80A3, 0x80A4)}


def normal(text):
    return text.replace("\r\n", "\n")


class Writing(WritingCase):
    def messages(self):
        """The messages of the contact folder by last name."""
        found = map(read_msg.Message, self.place.contacts.glob("*.msg"))
        return {message.tags.get(LAST_NAME): message for message in found}

    def the_message(self):
        [file] = self.place.contacts.glob("*.msg")
        return read_msg.Message(file)

    def picture(self, content=JPEG):
        path = self.place.path / "picture.jpg"
        path.write_bytes(content)
        return harness.windows_path(path)

    def read_one(self):
        [content] = self.place.read_with_desktop().values()
        return content.decode()

    def take_picture(self, contact):
        """The picture of a contact that was read, which is removed."""
        file = self.place.host_path(contact["PICPath"])
        content = file.read_bytes()
        file.unlink()
        return content


class RoundTrip(Writing):
    def write_every_field(self):
        return self.write_one(document(
            ADD, **TEXTS, FullName="Somebody Else", PrimaryNumber="+1 425 555 0100", Categories="a b;\u53CB\u9054",
            Birthday="1984-02-29", Anniversary="2012-06-16", SKYPE="anna.example", PICPath=self.picture(),
            CsFolder="Nowhere"))

    def test_every_field_comes_back_under_its_other_name(self):
        _, identifier = self.write_every_field()
        document_read = self.read_one()
        contact = fields(document_read)
        self.assertEqual({out: contact[out] for _, out, _ in TEXT_FIELDS},
                         {out: normal(TEXTS[name]) for name, out, _ in TEXT_FIELDS})
        self.assertEqual((contact["SP-CATEGORIES"], contact["Birthday"], contact["Anniversary"], contact["SP-IMADRESS"]),
                         ("a b;\u53CB\u9054", "1984-02-29", "2012-06-16", "anna.example"))
        self.assertEqual(parse(document_read).find("SP-IMADRESS").get("IMType"), "4026")
        self.assertEqual((contact["PIMID"], contact["CsFolder"]), (identifier, "Contacts"))
        self.assertEqual(self.take_picture(contact), JPEG)
        # The name is made of its parts, and the primary number belongs to nobody who writes.
        self.assertEqual(contact["FULLNAME"], NAME)
        self.assertNotIn("PrimaryNumber", contact)

    def test_every_field_stands_in_the_message(self):
        self.write_every_field()
        message = self.the_message()
        self.assertEqual({name: stored(message, field) for name, _, field in TEXT_FIELDS}, TEXTS)
        for name, numbers in MAIL_COMPANIONS.items():
            self.assertEqual([message.named[(ADDRESS_SET, number)] for number in numbers],
                             [TEXTS[name], "SMTP", TEXTS[name], TEXTS[name]])
        self.assertEqual(message.named[(ADDRESS_SET, 0x8062)], "SKYPE:anna.example")
        self.assertEqual(message.named[KEYWORDS], ["a b", "\u53CB\u9054"])
        self.assertEqual((message.tags[0x001A001F], message.tags[0x3A0A001F]), ("IPM.Contact", INITIALS))
        self.assertEqual([message.tags[tag] for tag in (0x3001001F, 0x0037001F, 0x0E1D001F)], [NAME] * 3)
        self.assertEqual(message.named[(ADDRESS_SET, 0x8005)], NAME)
        self.assertEqual(message.named[(ADDRESS_SET, 0x8015)], True)
        # Nothing but these stands under a name, and neither the primary number nor the row's business address.
        numbers = {0x8005, 0x8015, 0x8062, 0x80DE, 0x80DF, *(n for four in MAIL_COMPANIONS.values() for n in four)}
        numbers |= {field for _, _, field in TEXT_FIELDS if field <= 0xFFFF}
        self.assertEqual(set(message.named), {(ADDRESS_SET, number) for number in numbers} | {KEYWORDS})
        self.assertEqual({0x3A1A001F, *range(0x3A26001F, 0x3A2C001F, 0x10000)} & set(message.tags), set())

    def test_the_picture_is_described_as_one(self):
        self.write_every_field()
        [attachment] = self.the_message().attachments.values()
        expected = {0x3001001F: "ContactPicture.jpg", 0x37020102: b"", 0x3703001F: ".jpg", 0x3704001F: "", 0x37050003: 1,
                    0x3707001F: "ContactPicture.jpg", 0x370B0003: -1, 0x37140003: 0, 0x7FFA0003: 0, 0x7FFD0003: 0,
                    0x7FFE000B: False, 0x7FFF000B: True, PICTURE: JPEG}
        self.assertEqual({tag: attachment.tags.get(tag) for tag in expected}, expected)
        self.assertEqual(attachment.tags[0x7FFB0040], attachment.tags[0x7FFC0040])

    def test_every_instant_messaging_service(self):
        rows = self.write(*(document(ADD, LastName=name, **{name: f"{name}@x"}) for name, _, _ in SERVICES))
        self.assertEqual([row[0] for row in rows], ["written"] * len(SERVICES))
        found = {name: message.named[(ADDRESS_SET, 0x8062)] for name, message in self.messages().items()}
        self.assertEqual(found, {name: f"{prefix}{name}@x" for name, prefix, _ in SERVICES})
        read = [parse(content.decode()) for content in self.place.read_with_desktop().values()]
        self.assertEqual({contact.findtext("LastName"): (contact.find("SP-IMADRESS").get("IMType"),
                                                         contact.findtext("SP-IMADRESS")) for contact in read},
                         {name: (number, f"{name}@x") for name, _, number in SERVICES})

    def test_a_contact_is_read_edited_and_written_back(self):
        _, identifier = self.write_every_field()
        before = self.the_message()
        out = self.place.path / "out"
        status, _, errors = self.place.run_desktop("read", "contacts", "--out", harness.windows_path(out))
        self.assertEqual(status, 0, errors)
        [file] = out.iterdir()
        self.addCleanup(lambda: self.take_picture(fields(file.read_bytes().decode())))
        status, converted, errors = self.place.run_desktop("convert", harness.windows_path(file))
        self.assertEqual(status, 0, errors)
        root = xml.etree.ElementTree.fromstring(converted.encode())
        self.assertEqual((root.findtext("lFlag"), root.findtext("PIMID")), (str(CHANGE), identifier))
        edited = re.sub("(?<=<JobTitle>).*(?=</JobTitle>)", "Edited", converted)
        self.assertEqual(self.write_one(edited)[1], identifier)
        after = self.the_message()
        changed = {tag for tag in before.tags | after.tags if before.tags.get(tag) != after.tags.get(tag)}
        self.assertEqual(changed, {0x3A17001F, LAST_MODIFICATION_TIME})
        self.assertEqual(after.tags[0x3A17001F], "Edited")
        self.assertEqual([part.tags[PICTURE] for part in after.attachments.values()], [JPEG])

    def test_a_picture_that_was_read_outlives_the_agent_that_wrote_it(self):
        self.write_every_field()
        out = self.place.path / "out"
        self.place.run_desktop("read", "contacts", "--out", harness.windows_path(out))
        [file] = out.iterdir()
        self.addCleanup(lambda: self.take_picture(fields(file.read_bytes().decode())))
        # The next agent gives its first picture the same name.
        self.place.run_desktop("shutdown")
        converted = self.place.run_desktop("convert", harness.windows_path(file))[1]
        self.write_one(re.sub("(?<=<JobTitle>).*(?=</JobTitle>)", "Edited", converted))
        after = self.the_message()
        self.assertEqual(after.tags[0x3A17001F], "Edited")
        self.assertEqual([part.tags[PICTURE] for part in after.attachments.values()], [JPEG])

    def test_a_write_removes_what_the_document_lacks_and_nothing_else(self):
        self.place.make_contacts([[tag_line("3A11001F", "old"), tag_line("3A1A001F", "primary"),
                                   tag_line("3A18001F", "department")]])
        self.write_every_field()
        for content in list(self.place.read_with_desktop().values()):
            contact = fields(content.decode())
            if "PICPath" in contact:
                self.take_picture(contact)
            self.write_one(document(CHANGE, contact["PIMID"], LastName=f"now{len(contact)}"))
        for message in self.messages().values():
            left = {name for name, _, field in TEXT_FIELDS if stored(message, field) is not None}
            self.assertEqual(left, {"LastName"})
            self.assertEqual(set(message.named), {(ADDRESS_SET, 0x8005), (ADDRESS_SET, 0x8015)})
            self.assertFalse(message.named[(ADDRESS_SET, 0x8015)])
            self.assertEqual((message.attachments, message.tags.get(0x3A42_0040)), ({}, None))
        kept = [(message.tags.get(0x3A1A001F), message.tags.get(0x3A18001F)) for message in self.messages().values()]
        self.assertEqual(sorted(kept, key=str), [("primary", "department"), (None, None)])


class Desktop(Writing):
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
        both = [read_msg.Message(file) for file in self.place.contacts.glob("*.msg")]
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


class Zones(Writing):
    """Dates in the store: midnight here as UTC, and once more with the whole hours of the offset taken off."""

    # The hours by which UTC is ahead of standard time, minutes dropped.
    ZONES = {"America/New_York": 5, "America/St_Johns": 3, "Europe/Berlin": -1, "Asia/Kolkata": -5,
             "Australia/Adelaide": -9, "Asia/Tokyo": -9}
    # In winter and summer, and the days around the changes of the zones.
    DATES = ["2020-01-15", "2020-07-15", "2021-03-14", "2021-03-15", "2021-11-07", "2021-11-08", "2021-03-28", "2021-03-29",
             "2021-10-31", "2021-11-01", "2021-10-03", "2021-10-04", "2021-04-04", "2021-04-05"]

    def filetime(self, moment, zone):
        """A local time of a zone as the store has it."""
        start = datetime.datetime(1601, 1, 1, tzinfo=datetime.timezone.utc)
        return (moment.replace(tzinfo=zone) - start) // datetime.timedelta(microseconds=1) * 10

    def test_dates_of_a_zone_on_both_sides_of_its_changes(self):
        for name, hours in self.ZONES.items():
            with self.subTest(zone=name):
                agent = self.place.start_agent(TZ=name)
                self.send(*(document(ADD, LastName=date, Birthday=date, Anniversary=f"{date} 00:00:00")
                            for date in self.DATES))
                zone = zoneinfo.ZoneInfo(name)
                for date, message in self.messages().items():
                    midnight = datetime.datetime.fromisoformat(date)
                    day = self.filetime(midnight, zone)
                    earlier = self.filetime(midnight - datetime.timedelta(hours=hours), zone)
                    self.assertEqual([message.tags[0x3A420040], message.tags[0x3A410040]], [day] * 2, date)
                    self.assertEqual([message.named[(ADDRESS_SET, number)] for number in (0x80DE, 0x80DF)],
                                     [earlier] * 2, date)
                _, documents = self.place.run_client("logon", "read", "logoff")
                read = list(map(fields, documents))
                self.assertEqual(sorted((one["LastName"], one["Birthday"], one["Anniversary"]) for one in read),
                                 sorted((date,) * 3 for date in self.DATES))
                agent.kill()
                agent.wait()
                for file in self.place.contacts.iterdir():
                    file.unlink()


class Refusals(Writing):
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
        message = read_msg.Message(below / "moved.msg")
        self.assertEqual((status, returned, moment), (0, identifier, self.moment_of(message)))
        self.assertEqual((message.tags[LAST_NAME], list(self.files())), ("changed", ["Family/moved.msg"]))
        self.write_one(document(CHANGE, identifier, LastName="again"))
        # Where reads do not go nothing is proved, and written all the same.
        self.place.settings(subfolder="FALSE")
        self.restart()
        [(result, _, _)] = self.write(document(CHANGE, identifier, LastName="unseen"), status=REFUSED)
        self.assertEqual((result, read_msg.Message(below / "moved.msg").tags[LAST_NAME]), ("unproven", "unseen"))
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
        self.assert_update_refused(identifier, self.moment_of(read_msg.Message(path)))
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
        self.assert_update_refused(identifier, self.moment_of(read_msg.Message(path)))
        path.chmod(0o644)
        self.write_one(document(CHANGE, identifier, LastName="new"))

    def test_a_full_disk_leaves_the_old_contact_and_makes_no_new_one(self):
        identifier = self.add(LastName="old", Body="x" * 20000)
        [path] = self.place.contacts.glob("*.msg")
        before = self.files()
        # Held open, so that the server of the prefix is there and not started under the limit.
        self.hold("keep", self.place.bin / "MAPI32.dll")
        moment = self.moment_of(read_msg.Message(path))
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


class Killing(Writing):
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
            found = {int(one.tags[0x3A06001F][2:]): one for one in map(read_msg.Message, self.place.contacts.glob("*.msg"))}
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
