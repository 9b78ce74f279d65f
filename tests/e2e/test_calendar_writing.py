"""Appointments that are written by the desktop program and with single calls, with and without somebody at the callback
endpoint, and in twelve zones."""

import datetime
import unittest
import xml.etree.ElementTree
import zoneinfo

import harness
from calendar_case import (APPOINTMENT_SET, COMMON_SET, END, RECUR, START, SUBJECT, CalendarWritingCase, filetime, moment)
from contact_fields import date_and_time
from recurrence_decoder import decode
from test_calendars import ZONES
from writing_case import ADD, CHANGE, DELETE, LAST_MODIFICATION_TIME, REFUSED

# The status of a remote call that finds no server.
SERVER_UNAVAILABLE = 1722


class Desktop(CalendarWritingCase):
    def test_files_are_added_changed_and_deleted(self):
        rows = self.write(*(self.named(ADD, None, name) for name in ("one", "two", "three")))
        self.assertEqual([row[0] for row in rows], ["written"] * 3)
        one, two, three = (row[2] for row in rows)
        for name, (_, time, _) in zip(("one", "two", "three"), rows):
            changed = self.messages()[name].tags[LAST_MODIFICATION_TIME]
            self.assertEqual(time, date_and_time(changed, datetime.datetime.now().astimezone().tzinfo))
        rows = self.write(self.named(CHANGE, one, "changed"), self.document(DELETE, two))
        self.assertEqual([(row[0], row[2]) for row in rows], [("written", one), ("deleted", two)])
        self.assertEqual(self.delete(three), "deleted")
        self.assertEqual(list(self.messages()), ["changed"])
        # The contacts are another folder.
        self.assertEqual(self.files(self.place.contacts), {})

    def test_what_cannot_be_done_is_refused_beside_what_can(self):
        rows = self.write("no document", "<Contact/>", self.named(0, None, "x"), self.named(CHANGE, None, "x"),
                          self.named(ADD, None, "x", lCalType="2"), self.named(ADD, None, "good"), status=REFUSED)
        self.assertEqual([row[0] for row in rows], ["refused"] * 5 + ["written"])
        for reason in ("no document of this kind", "lFlag asks for nothing", "no PIMID", "lCalType is not 3", "only 1 of 6 documents"):
            self.assertIn(reason, self.errors)
        self.assertEqual(list(self.messages()), ["good"])

    def test_one_appointment_is_written_once_in_a_command(self):
        _, identifier = self.write_one(self.named(ADD, None, "old"))
        rows = self.write(self.named(CHANGE, identifier, "new"), self.document(DELETE, identifier), status=REFUSED)
        self.assertEqual([row[0] for row in rows], ["written", "refused"])
        self.assertEqual(list(self.messages()), ["new"])

    def test_a_document_of_a_read_is_not_taken_for_one_to_write(self):
        self.write_one(self.named(ADD, None, "read"))
        before = self.files()
        [(result, _, _)] = self.write(self.read_one(), status=REFUSED)
        self.assertEqual((result, self.files()), ("refused", before))

    def test_another_folder_is_written_to_by_its_identifier(self):
        plans = self.place.folder(self.FOLDER + "/Plans")
        self.place.settings(XMLPath=harness.windows_path(self.place.path))
        listed = self.place.run_desktop("folders", "--xml")[1]
        folder = listed[listed.index("<fname>Plans<"):].split("<id>")[1].split("</id>")[0]
        rows = self.write(self.named(ADD, None, "planned"), options=("--folder", folder))
        self.assertEqual(rows[0][0], "written")
        self.assertEqual(len(self.files(plans)), 1)

    def test_stores_with_long_term_identifiers_prove_adds_and_changes(self):
        (self.place.root / "Work/Mail/folder.ini").write_text("[Store]\nLongTermIds=1\n")
        rows = self.write(self.named(ADD, None, "one"), self.named(ADD, None, "two"))
        self.assertEqual([row[0] for row in rows], ["written"] * 2)
        identifiers = {item["Description"]: item["PIMID"] for item in map(self.fields_of, self.read_all())}
        self.assertNotEqual(set(identifiers.values()), {row[2] for row in rows})
        rows = self.write(self.named(CHANGE, identifiers["one"], "changed"), self.document(DELETE, identifiers["two"]))
        self.assertEqual([row[0] for row in rows], ["written", "deleted"])
        self.assertEqual(list(self.messages()), ["changed"])
        # What an add hands back is an identifier that the lists of such a store do not have.
        [(_, _, identifier)] = self.write(self.named(ADD, None, "three"))
        rows = self.write(self.named(CHANGE, identifier, "changed too"), status=REFUSED)
        self.assertEqual([row[0] for row in rows], ["unproven"])
        self.assertEqual(set(self.messages()), {"changed", "changed too"})

    def test_own_writes_come_with_the_next_read_of_changes_and_can_be_told_by_identifier_and_time(self):
        self.assertEqual(self.read_changes(), "")
        time, identifier = self.write_one(self.named(ADD, None, "own", lRecurType="1"))
        self.assert_comes_once(ADD, identifier, time)
        time, _ = self.write_one(self.named(CHANGE, identifier, "changed"))
        self.assert_comes_once(CHANGE, identifier, time)
        self.delete(identifier)
        self.assert_comes_once(DELETE, identifier, None)

    def read_changes(self):
        changes = harness.windows_path(self.place.path / "changes.map")
        status, output, errors = self.place.run_desktop("read", "calendars", "--changed", changes, "--xml")
        self.assertEqual(status, 0, errors)
        return output.strip()

    def assert_comes_once(self, flag, identifier, time):
        root = xml.etree.ElementTree.fromstring(self.read_changes().encode())
        self.assertEqual([root.findtext(name) for name in ("lFlag", "PIMID", "lastModifiedTime")],
                         [str(flag), identifier, time])
        self.assertEqual(self.read_changes(), "")


class Callbacks(CalendarWritingCase):
    """Each write ends with a callback that carries nothing."""

    def setUp(self):
        super().setUp()
        self.agent = self.place.start_agent()

    def test_each_write_ends_with_one_empty_text_whatever_came_of_it(self):
        identifier = self.add_named("x")
        texts = [self.named(ADD, None, "y"), self.named(CHANGE, identifier, "z"), self.document(DELETE, identifier),
                 self.document(DELETE, identifier), self.named(ADD, None, "x", lCalType="1"), "no document", ""]
        for text in texts:
            lines, documents = self.place.run_client("logon", *self.writes([text]), "logoff")
            self.assertEqual((len(self.results(lines)), documents), (1, [""]), text)

    def test_the_desktop_program_takes_none_of_them_for_an_item(self):
        rows = self.write(*(self.named(ADD, None, name) for name in ("one", "two")))
        self.assertEqual([row[0] for row in rows], ["written"] * 2)
        self.assertEqual(self.errors, "")
        self.assertEqual(len(self.place.read_with_desktop(kind="calendars")), 2)

    def client_without_endpoint(self, *texts):
        """Writes without anybody at the callback endpoint. Gives the lines of the client and how its last call failed."""
        status, output, errors = self.place.finish(self.place.client("--no-endpoint", "logon", *self.writes(texts)))
        self.assertEqual(status, 1)
        return output.splitlines(), errors.strip()

    def test_without_an_endpoint_the_call_fails_and_the_appointment_is_written(self):
        old, gone = (self.add_named(name) for name in ("old", "gone"))
        for text in (self.named(ADD, None, "added"), self.named(CHANGE, old, "changed"), self.document(DELETE, gone)):
            lines, errors = self.client_without_endpoint(text)
            self.assertEqual((lines, errors), (["logon 0"],
                                               f"reader_client: a remote call failed, status {SERVER_UNAVAILABLE}"))
            self.assertIsNone(self.agent.poll())
        self.assertEqual(set(self.messages()), {"added", "changed"})
        self.assert_works()

    def test_an_endpoint_that_fails_fails_the_call_and_not_the_agent(self):
        for option in ("--fail-at", "--crash-after"):
            self.empty_folder()
            client = self.place.client(option, "1", "logon", *self.writes([self.named(ADD, None, option)]))
            status, output, _ = self.place.finish(client)
            self.assertNotEqual(status, 0)
            self.assertEqual(self.results(output.splitlines()), [])
            self.assertEqual(self.the_message().tags[SUBJECT], option)
            self.assertIsNone(self.agent.poll())
        self.assert_works()


class Zones(CalendarWritingCase):
    # In winter and summer, and around the changes of the clocks, though not in an hour that they leave out or repeat.
    TIMES = [(2021, 1, 15, 9, 30), (2021, 7, 15, 9, 30), (2021, 3, 14, 1, 30), (2021, 3, 14, 4, 30), (2021, 3, 28, 0, 30),
             (2021, 3, 28, 4, 30), (2021, 10, 31, 0, 30), (2021, 10, 31, 4, 30), (2021, 11, 7, 0, 30), (2021, 11, 7, 4, 30),
             (2021, 4, 4, 0, 30), (2021, 4, 4, 5, 30), (2021, 10, 3, 0, 30), (2021, 10, 3, 5, 30)]

    def write_times(self, name, **more):
        """Writes appointments at the times with an agent in a zone, and reads them back."""
        agent = self.place.start_agent(TZ=name, **more)
        self.send(*(self.named(ADD, None, moment(*time), dtStartTime=moment(*time),
                               dtEndTime=moment(*time[:4], time[4] + 15), lReminderMinutes="30", lRecurType="1")
                    for time in self.TIMES))
        messages = self.messages()
        self.assertEqual(len(messages), len(self.TIMES))
        for time in self.TIMES:
            self.assert_times(messages[moment(*time)], datetime.datetime(*time), name)
        for subject, item in self.read_fields().items():
            self.assertEqual(item["dtStartTime"], subject)
        agent.kill()
        agent.wait()
        self.empty_folder()

    def test_times_of_twelve_zones_on_both_sides_of_their_changes(self):
        self.assertEqual(len(ZONES), 12)
        for name in ZONES:
            with self.subTest(zone=name):
                self.write_times(name)

    @unittest.skipUnless(harness.OTHER_CLOCK, harness.NO_OTHER_CLOCK)
    def test_what_is_written_in_winter_and_in_summer_is_the_same(self):
        for today in (datetime.datetime(2021, 1, 15, 12), datetime.datetime(2021, 7, 15, 12)):
            for name in ZONES:
                with self.subTest(zone=name, today=today):
                    self.write_times(name, **harness.clock_at(today))

    def assert_times(self, message, local, zone):
        here = local.replace(tzinfo=zoneinfo.ZoneInfo(zone))
        utc = lambda minutes: filetime((here + datetime.timedelta(minutes=minutes)).astimezone(datetime.timezone.utc))
        self.assertEqual([message.named[place] for place in (START, END)], [utc(0), utc(15)], local)
        self.assertEqual([message.named[(COMMON_SET, number)] for number in (0x8516, 0x8517, 0x8502, 0x8560)],
                         [utc(0), utc(15), utc(0), utc(-30)], local)
        self.assertEqual(message.named[(APPOINTMENT_SET, 0x8235)], utc(0))
        # The series keeps the time on the clock.
        self.assertEqual(decode(message.named[RECUR]).instances(1)[0][0], local)


if __name__ == "__main__":
    harness.run()
