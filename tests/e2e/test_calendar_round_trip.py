"""Appointments that are read, converted and written back: what comes with the next read is the same, but for what is documented
to get lost."""

import os
import unittest.mock

import appointments
import harness
from appointments import Change, Series, appointment, minutes
from calendar_case import RECUR, CalendarWritingCase
from message_case import Message
from recurrence_decoder import END_AFTER, decode

ZEBSAMPLE = harness.TEST_BIN.parent / "tools/zebsample.exe"
# The zone of the machine.
ZONE = "Europe/Berlin"
BERLIN = "GMT:-60;DST:60;STD:0000100503000000;DLT:0000030502000000"
EXCEPTIONS = "exceptions of its series cannot be written"
OTHER_ZONE = "its series is of another time zone"
WHOLE_DAYS = "not from midnight to midnight"
# What of the sample's appointments is not as before, with the warnings of it. A series of another zone goes into the
# machine's.
SERIES_LOSSES = {
    "Chorprobe": [EXCEPTIONS + " (4 deleted, 1 changed)"], "Review": [EXCEPTIONS + " (11 changed)"],
    "Stand-up": [EXCEPTIONS + " (2 deleted)", OTHER_ZONE], "Invoice run": [EXCEPTIONS + " (1 deleted)", OTHER_ZONE],
    "Training": [OTHER_ZONE], "Book club": [OTHER_ZONE], "Town hall meeting": [OTHER_ZONE], "Election": [OTHER_ZONE]}
MONDAY, DAY, WEEK = minutes(2011, 3, 7), 1440, 7 * 1440


class RoundTrip(CalendarWritingCase):
    def setUp(self):
        super().setUp()
        zone = unittest.mock.patch.dict(os.environ, TZ=ZONE)
        zone.start()
        self.addCleanup(zone.stop)
        self.rounds = 0

    def read_files(self):
        """Reads all appointments to files. Gives the files by subject."""
        self.rounds += 1
        out = self.place.path / f"round{self.rounds}"
        status, _, errors = self.place.run_desktop("read", "calendars", "--out", harness.windows_path(out))
        self.assertEqual(status, 0, errors)
        return {self.fields_of(file.read_text(encoding="utf-8"))["Description"]: file for file in out.iterdir()}

    def fields_of_files(self, files):
        return {subject: self.fields_of(file.read_text(encoding="utf-8")) for subject, file in files.items()}

    def convert(self, files, *options):
        """Converts documents. Gives the new files, and the warnings by subject."""
        out = self.place.path / f"converted{self.rounds}"
        status, output, errors = self.place.run_desktop("convert", *options, "--out", harness.windows_path(out),
                                                        *map(harness.windows_path, files.values()))
        self.assertEqual((status, output), (0, ""), errors)
        subjects = {harness.windows_path(file): subject for subject, file in files.items()}
        warnings = {}
        for line in errors.splitlines():
            name, warning = line.split(": warning: ")
            warnings.setdefault(subjects[name], []).append(warning)
        return {subject: out / file.name for subject, file in files.items()}, warnings

    def write_files(self, files):
        status, output, errors = self.place.run_desktop("write", "calendars", "--tabs",
                                                        *map(harness.windows_path, files.values()))
        self.assertEqual((status, {row.split("\t")[0] for row in output.splitlines()[1:]}), (0, {"written"}), errors)

    def assert_warnings(self, found, expected):
        self.assertEqual(set(found), set(expected))
        for subject, warnings in expected.items():
            self.assertEqual(len(found[subject]), len(warnings), found[subject])
            for warning, text in zip(found[subject], warnings):
                self.assertIn(text, warning, subject)

    def write_back(self, *options):
        """Reads all, converts it and writes it. Gives the fields before and after, and the warnings."""
        files = self.read_files()
        converted, warnings = self.convert(files, *options)
        if "--new" in options:
            self.empty_folder()
        self.write_files(converted)
        return self.fields_of_files(files), self.fields_of_files(self.read_files()), warnings

    def without(self, item, *names):
        return {name: text for name, text in item.items() if name not in names}

    def make_sample(self):
        self.place.root = self.place.path / "sample"
        process = self.place.start(ZEBSAMPLE, harness.windows_path(self.place.root), 1)
        self.assert_exit(process)
        # In the sample's own store.
        self.items = next(self.place.root.glob("Sample/*/Calendar"))


class OfTheSample(RoundTrip):
    def test_each_appointment_comes_back_but_for_what_is_told(self):
        self.make_sample()
        before, after, warnings = self.write_back()
        self.assertEqual(set(after), set(before))
        self.assert_warnings(warnings, SERIES_LOSSES)
        for subject, item in before.items():
            expected = self.without(item, "lastModifiedTime")
            if any(EXCEPTIONS in loss for loss in SERIES_LOSSES.get(subject, [])):
                del expected["ExceptionRule"]
            if OTHER_ZONE in SERIES_LOSSES.get(subject, []):
                self.assertNotEqual(expected["TimeZone"], BERLIN)
                expected["TimeZone"] = BERLIN
            self.assertEqual(self.without(after[subject], "lastModifiedTime"), expected, subject)

    def test_written_back_a_second_time_nothing_more_gets_lost(self):
        self.make_sample()
        self.write_back()
        before, after, warnings = self.write_back()
        self.assertEqual(warnings, {})
        self.assertEqual({subject: self.without(item, "lastModifiedTime") for subject, item in after.items()},
                         {subject: self.without(item, "lastModifiedTime") for subject, item in before.items()})

    def test_each_can_become_a_new_appointment(self):
        self.make_sample()
        before, after, warnings = self.write_back("--new")
        self.assertEqual(set(after), set(before))
        self.assert_warnings(warnings, SERIES_LOSSES)
        own = ["lastModifiedTime", "CreateTime", "PIMID"]
        for subject, item in before.items():
            mine = own + (["ExceptionRule", "TimeZone"] if subject in SERIES_LOSSES else [])
            self.assertEqual(self.without(after[subject], *mine), self.without(item, *mine), subject)


class OfEachKind(RoundTrip):
    def rewritten(self, **items):
        """The recurrence elements of series before and after, which are made from kind and property."""
        self.place.make_items(appointment(name, kind=kind, series=series) for name, (kind, series) in items.items())
        return self.write_back()

    def test_series_and_their_ends(self):
        months, years = appointments.MONTHLY, appointments.YEARLY
        before, after, warnings = self.rewritten(
            days=(1, Series(appointments.DAILY, 0, 3 * DAY)), weekdays=(1, Series(appointments.DAILY, 1, DAY, [0x3E])),
            weekends=(1, Series(appointments.DAILY, 1, DAY, [0x41])),
            weeks=(2, Series(appointments.WEEKLY, 1, 2, [0x0A])), months=(3, Series(months, 2, 2, [31])),
            month_ends=(3, Series(months, 4, 1, [31])), nth=(3, Series(months, 3, 1, [0x04, 2])),
            last=(3, Series(months, 3, 1, [0x20, 5])), hijri=(3, Series(months, 0xB, 1, [0x04, 2])),
            years=(4, Series(years, 2, 12, [7])),
            nth_of_years=(4, Series(years, 3, 24, [0x02, 4])),
            never=(2, Series(appointments.WEEKLY, 1, 1, [2], end_type=appointments.NEVER)),
            by_date=(2, Series(appointments.WEEKLY, 1, 1, [2], end_type=appointments.END_BY_DATE)),
            by_date_alone=(2, Series(appointments.WEEKLY, 1, 1, [2], end_type=appointments.END_BY_DATE, count=1)))
        self.assertEqual(warnings, {})
        for name, item in before.items():
            expected = self.without(item, "lastModifiedTime")
            if name == "weekends":
                # Written it is a weekly series, which has an interval.
                expected["lRecurInterval"] = "1"
            self.assertEqual(self.without(after[name], "lastModifiedTime"), expected, name)

    def test_a_series_keeps_its_last_day_and_its_count_and_ends_by_the_count(self):
        self.rewritten(One=(2, Series(appointments.WEEKLY, 1, 1, [2], end_type=appointments.END_BY_DATE, count=9,
                                      end=MONDAY + 8 * WEEK)))
        [file] = self.items.glob("*.msg")
        series = decode(Message(file).named[RECUR])
        self.assertEqual((series.EndType, series.OccurrenceCount, series.EndDate), (END_AFTER, 9, MONDAY + 8 * WEEK))

    def test_exceptions_are_gone_from_the_store_once_the_series_is_written(self):
        change = Change(MONDAY + WEEK, MONDAY + WEEK + 600, MONDAY + WEEK + 660, subject="Moved")
        series = Series(appointments.WEEKLY, 1, 1, [2], deleted=[MONDAY, MONDAY + WEEK], changes=[change])
        _, after, warnings = self.rewritten(Review=(2, series))
        self.assert_warnings(warnings, {"Review": [EXCEPTIONS + " (1 deleted, 1 changed)"]})
        self.assertNotIn("ExceptionRule", after["Review"])
        [file] = self.items.glob("*.msg")
        self.assertEqual(decode(Message(file).named[RECUR]).DeletedInstanceDates, [])

    def test_whole_days_of_another_zone_move_to_midnight_here(self):
        # A day of Tokyo, in UTC.
        self.place.make_items([appointment("Day", start=(2011, 3, 6, 15, 0), end=(2011, 3, 7, 15, 0), all_day=True)])
        before, after, warnings = self.write_back()
        self.assert_warnings(warnings, {"Day": [WHOLE_DAYS]})
        times = lambda item: (item["dtStartTime"], item["dtEndTime"])
        self.assertEqual(times(before["Day"]), ("03/06/2011 16:00:00", "03/07/2011 16:00:00"))
        self.assertEqual(times(after["Day"]), ("03/06/2011 00:00:00", "03/07/2011 00:00:00"))

    def test_what_does_not_tell_how_it_recurs_is_not_converted(self):
        weekly = Series(appointments.WEEKLY, 1, 1, [2])
        self.place.make_items([appointment("Unknown", kind=0, series=weekly), appointment("Empty", kind=2, series=b""),
                               appointment("Strange", kind=9, series=weekly),
                               appointment("Hijri", kind=3, series=Series(appointments.MONTHLY, 0xA, 1, [15], calendar=6))])
        files = self.read_files()
        out = self.place.path / "converted"
        status, _, errors = self.place.run_desktop("convert", "--out", harness.windows_path(out),
                                                   *map(harness.windows_path, files.values()))
        self.assertEqual((status, list(out.iterdir())), (11, []), errors)
        self.assertEqual((errors.count("how it recurs"), errors.count("Gregorian")), (3, 1), errors)


if __name__ == "__main__":
    harness.run()
