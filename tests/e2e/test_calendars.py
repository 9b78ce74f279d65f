"""Appointments through the whole agent: each kind of series, damaged and strange ones, in one zone and in many."""

import datetime
import struct
import time
import unittest
import zoneinfo

import appointments
import harness
from appointments import Change, Series, appointment, fields, minutes

MONDAY = minutes(2011, 3, 7)
DAY, WEEK = 1440, 7 * 1440
# What series of ten times until the 4th of May say of their end.
END = {"dtRecurEndDate": "05/04/2011 00:00:00", "bRecurHasEndDate": "TRUE", "lRecurRepeat": "10"}
ELEMENTS = ("lRecurMonth", "lRecurInterval", "lRecurInstance", "lRecurWeekMask", "lRecurWeekDay", "lRecurDay",
            "dtRecurEndDate", "bRecurHasEndDate", "lRecurRepeat", "ExceptionRule")
# The zones that the machine is put into: with and without daylight saving, on both halves of the globe, some with parts
# of an hour. Whenever the tests run, daylight saving is on in some of them and off in others.
ZONES = ("America/New_York", "America/Los_Angeles", "America/St_Johns", "America/Phoenix", "Europe/Berlin",
         "Asia/Kolkata", "Asia/Kathmandu", "Asia/Yangon", "Asia/Tokyo", "Australia/Adelaide", "Australia/Darwin",
         "Pacific/Auckland")
CHANGES = 2191


def weekly(**more):
    """Every second week on Monday and Wednesday."""
    return Series(appointments.WEEKLY, 1, 2, [0x0A], **more)


def moved(day, **more):
    """An instance that was moved to the next day, at nine."""
    return Change(day, day + DAY + 540, day + DAY + 600, **more)


def zone_blob(bias, daylight_bias, standard, daylight):
    """The zone property, with rules as month, weekday, nth and hour."""
    date = lambda month, weekday, nth, hour: struct.pack("<8H", 0, month, weekday, nth, hour, 0, 0, 0)
    return struct.pack("<iiiH", bias, 0, daylight_bias, 0) + date(*standard) + struct.pack("<H", 0) + date(*daylight)


class CalendarCase(harness.Case):
    def setUp(self):
        super().setUp()
        self.folder = self.place.folder("Work/Mail/Calendar")

    def read(self, *options, **more):
        """Reads all appointments. Gives their fields by subject."""
        documents = self.place.read_with_desktop(*options, kind="calendars", **more).values()
        found = [fields(document.decode()) for document in documents]
        subjects = {item.get("Description", ""): item for item in found}
        self.assertEqual(len(subjects), len(found))
        return subjects

    def recurrence_of(self, **items):
        """The recurrence elements of appointments with these series, by their names."""
        self.place.make_items(appointment(name, kind=kind, series=series) for name, (kind, series) in items.items())
        return {name: {element: item[element] for element in ("lRecurType", *ELEMENTS) if element in item}
                for name, item in self.read().items()}


class SeriesOfAllKinds(CalendarCase):
    def elements(self, kind, interval, instance, mask, week_day, day, **more):
        values = dict(zip(("lRecurType", *ELEMENTS[1:6]), map(str, (kind, interval, instance, mask, week_day, day))))
        return values | END | more

    def test_each_kind_has_its_elements(self):
        months, years = appointments.MONTHLY, appointments.YEARLY
        found = self.recurrence_of(
            days=(1, Series(appointments.DAILY, 0, 3 * DAY)), weekdays=(1, Series(appointments.DAILY, 1, DAY, [0x3E])),
            weeks=(2, weekly()), months=(3, Series(months, 2, 2, [31])), month_ends=(3, Series(months, 4, 1, [31])),
            nth=(3, Series(months, 3, 1, [0x04, 2])), last=(3, Series(months, 3, 1, [0x20, 5])),
            years=(4, Series(years, 2, 12, [29], start=minutes(2012, 2, 29))),
            nth_of_years=(4, Series(years, 3, 24, [0x02, 4])))
        self.assertEqual(found, {
            "days": self.elements(1, 3, 0, 0, 0, 0), "weekdays": self.elements(2, 0, 0, 62, 0, 0),
            "weeks": self.elements(2, 2, 0, 10, 0, 0), "months": self.elements(3, 2, 0, 0, 0, 31),
            "month_ends": self.elements(3, 1, 0, 0, 0, 31), "nth": self.elements(3, 1, 1, 4, 2, 0),
            "last": self.elements(3, 1, 1, 32, -1, 0), "years": self.elements(4, 1, 0, 0, 0, 29, lRecurMonth="2"),
            "nth_of_years": self.elements(4, 2, 1, 2, 4, 0, lRecurMonth="3")})

    def test_ends(self):
        never = {"dtRecurEndDate": "NULL", "bRecurHasEndDate": "FALSE", "lRecurRepeat": "0"}
        ends = {"never": 0x2023, "of_old": 0xFFFFFFFF, "by_date": 0x2021, "after": 0x2022, "strange": 77}
        found = self.recurrence_of(**{name: (2, weekly(end_type=end)) for name, end in ends.items()})
        for name, elements in found.items():
            self.assertEqual({element: elements[element] for element in END},
                             never if name in ("never", "of_old") else END, name)

    def test_exceptions_with_each_override(self):
        day = iter(range(MONDAY, MONDAY + 100 * WEEK, WEEK))
        changes = [moved(next(day)), moved(next(day), subject="Other \u4f1a \U0001F600"), moved(next(day), location="Else"),
                   moved(next(day), delta=45), moved(next(day), reminder=0), moved(next(day), sub_type=1),
                   moved(next(day), meeting=3, busy=2, attachment=1, color=7),
                   moved(next(day), subject="All", location="Of them", delta=5, reminder=1, sub_type=1, busy=1)]
        series = weekly(deleted=[next(day), *[change.day for change in changes]], changes=changes)
        self.place.make_items([appointment("Review", location="Room 4", kind=2, series=series, reminder=15),
                               appointment("Silent", kind=2, series=series)])
        found = self.read()
        self.assertEqual(found["Review"]["ExceptionRule"], series.rule("Review", "Room 4", 15))
        self.assertEqual(found["Silent"]["ExceptionRule"], series.rule("Silent", "", -1))

    def test_a_series_with_2191_changed_instances_is_one_document(self):
        changes = [moved(MONDAY + number * DAY, subject=f"Instance {number}", location="Elsewhere")
                   for number in range(CHANGES)]
        series = Series(appointments.DAILY, 0, DAY, deleted=[change.day for change in changes], changes=changes)
        self.place.make_items([appointment("Long", kind=1, series=series)])
        begin = time.monotonic()
        item = self.read()["Long"]
        spent = time.monotonic() - begin
        self.assertEqual(item["ExceptionRule"], series.rule("Long"))
        harness.tell_measured(f"a series with {CHANGES} changed instances: property of {len(series.blob())} bytes, text of "
                              f"{len(item['ExceptionRule'])} characters, {spent:.2f} s with start and end of the programs")


class StrangeSeries(CalendarCase):
    def rules_of(self, **series):
        return {name: elements.get("ExceptionRule")
                for name, elements in self.recurrence_of(**{name: (2, one) for name, one in series.items()}).items()}

    def test_exceptions_out_of_the_order_of_their_days_stay_as_they_stand(self):
        changes = [moved(MONDAY + 2 * WEEK), moved(MONDAY), moved(MONDAY + WEEK)]
        series = weekly(deleted=[MONDAY + 3 * WEEK, MONDAY + WEEK, MONDAY, MONDAY + 2 * WEEK], changes=changes)
        self.assertEqual(self.rules_of(Order=series), {"Order": series.rule("Order")})

    def test_counts_that_disagree_leave_the_days_of_the_changes_alone(self):
        rules = {}
        for listed in (0, 1, 3, 0xFFFF):
            series = weekly(deleted=[MONDAY, MONDAY + WEEK], changes=[moved(MONDAY, subject="A"), moved(MONDAY + WEEK)],
                            listed=listed)
            rules[f"Listed {listed}"] = series
        found = self.rules_of(**rules)
        for name, rule in found.items():
            # Nothing but the day of a change is read, so its times are those of 1601.
            bare = [line for day in (MONDAY, MONDAY + WEEK)
                    for line in appointments.modification(day, 0, 0, name, "", 0, -1, 0)]
            self.assertEqual(rule, "\n".join(["<exceptions>", *bare, "</exceptions>"]), name)

    def test_bytes_behind_a_series_do_not_count(self):
        series = weekly(deleted=[MONDAY], changes=[moved(MONDAY)], tail=b"\xD9" * 316)
        self.assertEqual(self.rules_of(Tail=series), {"Tail": series.rule("Tail")})

    def test_a_change_highlight_may_have_any_size(self):
        series = {f"Highlight {size}": weekly(deleted=[MONDAY], changes=[
            moved(MONDAY, location="Kept", highlight=size), moved(MONDAY + 1, subject="Behind it")])
            for size in (4, 5, 8, 100, 60_000)}
        self.assertEqual(self.rules_of(**series), {name: one.rule(name) for name, one in series.items()})

    def test_a_text_with_a_null_in_it_ends_there(self):
        series = weekly(deleted=[MONDAY], changes=[moved(MONDAY, subject="ab\0cd", location="\0none"),
                                                   moved(MONDAY + WEEK, subject="Whole")])
        self.assertEqual(self.rules_of(Null=series), {"Null": series.rule("Null")})

    def test_a_subject_of_384_characters_is_there_and_one_of_385_is_empty(self):
        series = {f"Of {length}": weekly(deleted=[MONDAY], changes=[moved(MONDAY, subject="\u4f1a" * length)])
                  for length in (384, 385, 10_000)}
        found = self.rules_of(**series)
        self.assertEqual(found, {name: one.rule(name) for name, one in series.items()})
        self.assertIn("<subject></subject>", found["Of 385"])
        self.assertNotIn("<subject></subject>", found["Of 384"])

    def test_series_of_other_calendars_are_named_as_such(self):
        items = {f"Calendar {number}": (3, Series(appointments.MONTHLY, pattern, 1, [15], calendar=number,
                                                  deleted=[MONDAY]))
                 for number, pattern in ((6, 0xA), (6, 0xC), (8, 2), (1, 2), (23, 4))}
        self.place.make_items(appointment(name, kind=kind, series=series) for name, (kind, series) in items.items())
        for name, item in self.read().items():
            self.assertEqual((item["lRecurType"], item["lCalType"]), ("3", "-1"), name)
            self.assertFalse(set(item) & set(ELEMENTS), name)

    def test_a_hijri_pattern_in_the_default_calendar_has_its_elements(self):
        found = self.recurrence_of(Day=(3, Series(appointments.MONTHLY, 0xA, 1, [15])),
                                   Nth=(3, Series(appointments.MONTHLY, 0xB, 1, [0x04, 2])))
        self.assertEqual((found["Day"]["lRecurDay"], found["Day"]["lRecurInstance"]), ("15", "0"))
        self.assertEqual((found["Nth"]["lRecurWeekDay"], found["Nth"]["lRecurInstance"]), ("2", "1"))

    def test_whatever_the_property_holds_a_document_arrives(self):
        blob = weekly(deleted=[MONDAY], changes=[moved(MONDAY, subject="S")]).blob()
        items = {f"Cut {size}": blob[:size] for size in range(0, len(blob), 7)}
        items |= {f"Count {count} at {place}": blob[:place] + struct.pack("<L", count) + blob[place + 4:]
                  for place in (38, 46) for count in (4096, 0xFFFF, 0xFFFFF, 0x7FFFFFFF)}
        items["Noise"] = bytes((number * 73 + 41) % 256 for number in range(500))
        self.place.make_items(appointment(name, kind=2, series=series) for name, series in items.items())
        self.assertEqual(set(self.read()), set(items))


class Zones(CalendarCase):
    SERIES = weekly(deleted=[MONDAY, MONDAY + WEEK], changes=[moved(MONDAY)])
    MOVING = ("CreateTime", "lastModifiedTime", "dtStartTime", "dtEndTime")

    def make_starts(self, year):
        """Makes a series for each of three starts in a year. Gives the starts, which are UTC, by their subjects."""
        starts = {"Winter": (year, 1, 15, 12, 0), "Summer": (year, 7, 15, 12, 0), "New Year": (year, 1, 1, 0, 30)}
        zone = zone_blob(300, -60, (11, 0, 1, 2), (3, 0, 2, 2))
        self.place.make_items(appointment(name, start=start, end=start, kind=2, series=self.SERIES, zone=zone, reminder=15)
                              for name, start in starts.items())
        return starts

    def local(self, utc, name):
        """What the clocks of a zone show at a moment, as documents tell it."""
        moment = datetime.datetime(*utc, tzinfo=datetime.timezone.utc).astimezone(zoneinfo.ZoneInfo(name))
        return moment.strftime("%m/%d/%Y %H:%M:%S")

    def assert_local(self, found, starts, name):
        for subject, start in starts.items():
            self.assertEqual([found[subject][element] for element in ("dtStartTime", "dtEndTime")],
                             [self.local(start, name)] * 2, (name, subject))

    def unmoving(self, found, starts):
        """The fields of the series in which no zone of a machine plays a part."""
        return {subject: {element: text for element, text in found[subject].items() if element not in self.MOVING}
                for subject in starts}

    def assert_same(self, everywhere):
        """All reads gave these fields alike, and as they were made."""
        for others in everywhere[1:]:
            self.assertEqual(others, everywhere[0])
        for subject, item in everywhere[0].items():
            self.assertEqual(item["TimeZone"], "GMT:+300;DST:60;STD:0000110102000000;DLT:0000030202000000")
            self.assertEqual(item["ExceptionRule"], self.SERIES.rule(subject, "", 15))
            self.assertEqual(item["dtRecurEndDate"], END["dtRecurEndDate"])

    def test_the_machines_zone_decides_on_times_of_day_and_on_nothing_else(self):
        starts = self.make_starts(datetime.date.today().year)
        everywhere = []
        for name in ZONES:
            found = self.read(TZ=name)
            self.assertEqual(self.place.run_desktop("shutdown")[0], 0)
            self.assert_local(found, starts, name)
            everywhere.append(self.unmoving(found, starts))
        self.assert_same(everywhere)

    def write_today(self):
        """Has the agent write an appointment, which then has the time of its clock."""
        document = self.place.path / "today.xml"
        document.write_text("<Calendar><lFlag>8</lFlag><lCalType>3</lCalType><Description>Today</Description>"
                            "<dtStartTime>01/01/2021 00:00:00</dtStartTime><dtEndTime>01/01/2021 01:00:00</dtEndTime>"
                            "</Calendar>")
        before = set(self.folder.iterdir())
        status, output, errors = self.place.run_desktop("write", "calendars", harness.windows_path(document))
        self.assertEqual(status, 0, output + errors)
        [file] = set(self.folder.iterdir()) - before
        return file

    @unittest.skipUnless(harness.OTHER_CLOCK, harness.NO_OTHER_CLOCK)
    def test_what_is_read_in_winter_and_in_summer_is_the_same(self):
        starts = self.make_starts(2021)
        self.place.make_items([appointment("Absent")])
        everywhere = []
        for name in ZONES:
            machines = []
            # The days on which the agent runs; where it is summer on one of them it is winter on the other.
            for noon in ((2021, 1, 15, 12, 0), (2021, 7, 15, 12, 0)):
                with self.subTest(zone=name, today=noon):
                    agent = self.place.start_agent(TZ=name, **harness.clock_at(datetime.datetime(*noon)))
                    written = self.write_today()
                    found = self.read()
                    agent.kill()
                    agent.wait()
                    written.unlink()
                    # The agent takes that day for today.
                    hour = len("01/15/2021 12")
                    self.assertEqual(found["Today"]["lastModifiedTime"][:hour], self.local(noon, name)[:hour])
                    self.assert_local(found, starts, name)
                    everywhere.append(self.unmoving(found, starts))
                    machines.append(found["Absent"]["TimeZone"])
            # An appointment without a zone has the machine's, of which the bias is that of its winter.
            winter = min(datetime.datetime(2021, month, 15, tzinfo=zoneinfo.ZoneInfo(name)).utcoffset() for month in (1, 7))
            self.assertEqual(len(set(machines)), 1, machines)
            self.assertTrue(machines[0].startswith(f"GMT:{-winter // datetime.timedelta(minutes=1):+d};"), (name, machines))
        self.assertEqual(len(everywhere), 2 * len(ZONES))
        self.assert_same(everywhere)

    def test_a_zone_without_bytes_is_of_zeros_and_an_absent_one_is_the_machines(self):
        self.place.make_items([appointment("Empty", zone=b""), appointment("Short", zone=b"\x01" * 47),
                               appointment("Absent")])
        found = {subject: item["TimeZone"] for subject, item in self.read(TZ="Asia/Kolkata").items()}
        zeros = "0" * 16
        self.assertEqual(found, {"Empty": f"GMT:+0;DST:0;STD:{zeros};DLT:{zeros}",
                                 "Short": f"GMT:+0;DST:0;STD:{zeros};DLT:{zeros}",
                                 "Absent": f"GMT:-330;DST:0;STD:{zeros};DLT:{zeros}"})


class ReadingCalendars(CalendarCase):
    def setUp(self):
        super().setUp()
        self.map = self.place.path / "calendars.map"
        self.place.make_items([appointment("One", location="Room 4"),
                               appointment("Two", kind=2, series=weekly(deleted=[MONDAY]))])

    def desktop(self, *arguments):
        status, output, errors = self.place.run_desktop(*arguments)
        self.assertEqual(status, 0, output + errors)
        return output

    def changes(self, out):
        """Reads what changed. Gives what happened to which subject."""
        output = self.desktop("read", "calendars", "--changed", harness.windows_path(self.map), "--out",
                              harness.windows_path(self.place.path / out), "--quiet")
        return [line.split()[0] for line in output.splitlines()[1:]]

    def test_they_are_counted(self):
        self.assertEqual(self.desktop("count", "calendars"), "calendars: 2\n")
        self.assertEqual(self.desktop("count"), "contacts: 0\n")

    def test_the_table_tells_time_texts_and_the_series_in_words(self):
        headings, *rows = self.desktop("read", "calendars", "--tabs", "--quiet").splitlines()
        self.assertEqual(headings.split("\t"), ["START", "END", "SUBJECT", "LOCATION", "RECURRENCE", "FOLDER"])
        self.assertEqual({row.split("\t")[2]: row.split("\t")[3:] for row in rows}, {
            "One": ["Room 4", "", "Calendar"],
            "Two": ["", "every 2 weeks on Mon, Wed until 2011-05-04, 1 deleted", "Calendar"]})

    def test_changes_come_once_and_deletions_too(self):
        self.assertEqual(self.changes("first"), ["new", "new"])
        self.assertEqual(self.changes("second"), [])
        gone, kept = sorted(self.folder.glob("*.msg"))
        gone.unlink()
        self.place.make_items([appointment("Three")])
        self.assertEqual(sorted(self.changes("third")), ["deleted", "new"])
        documents = [file.read_text(encoding="utf-8") for file in (self.place.path / "third").iterdir()]
        [deletion] = [document for document in documents if "<CsFolder>" not in document]
        self.assertRegex(deletion.replace("\r\n", "\n"), "<Calendar>\n\t<lFlag>32</lFlag>\n\t<PIMID>[0-9A-F]+</PIMID>\n"
                         r"\t<lCalType>3</lCalType>\n\t<LastModifiedTime>[0-9/]+ [0-9:]+</LastModifiedTime></Calendar>")

    def test_changes_under_long_term_identifiers_come_once_too(self):
        (self.place.root / "Work/Mail/folder.ini").write_text("[Store]\nLongTermIds=1\n")
        self.assertEqual(self.changes("first"), ["new", "new"])
        self.assertEqual(self.changes("second"), [])
        one, _ = sorted(self.folder.glob("*.msg"))
        one.rename(self.place.path / "one.msg")
        self.assertEqual(self.changes("third"), ["deleted"])
        (self.place.path / "one.msg").rename(one)
        self.assertEqual(self.changes("fourth"), ["new"])
        self.assertEqual(self.changes("fifth"), [])

    def test_changes_are_read_to_their_end_whatever_the_user_presses(self):
        self.place.make_items(appointment(f"More {number}") for number in range(100))
        self.place.start_agent()
        status, output, errors = self.place.interrupt_desktop("read", "calendars", "--changed",
                                                              harness.windows_path(self.map), "--xml")
        self.assertEqual((status, output.count("<lFlag>8</lFlag>")), (0, 102), errors)
        self.assertEqual(self.changes("next"), [])

    def test_another_folder_is_read_by_its_identifier(self):
        self.place.settings(XMLPath=harness.windows_path(self.place.path))
        plans = self.place.folder("Work/Mail/Calendar/Plans")
        next(self.folder.glob("*.msg")).rename(plans / "moved.msg")
        document = self.desktop("folders", "--xml")
        identifier = document[document.index("<fname>Plans<"):].split("<id>")[1].split("</id>")[0]
        self.assertEqual(self.desktop("count", "calendars", "--folder", identifier), "calendars: 1\n")
        self.assertEqual([item["CsFolder"] for item in self.read("--folder", identifier).values()], ["Plans"])

    def test_sub_folders_are_read_by_setting(self):
        self.place.settings(subfolder="TRUE")
        next(self.folder.glob("*.msg")).rename(self.place.folder("Work/Mail/Calendar/Plans") / "moved.msg")
        self.assertEqual(sorted(item["CsFolder"] for item in self.read().values()), ["Calendar", "Calendar\\Plans"])


if __name__ == "__main__":
    harness.run()
