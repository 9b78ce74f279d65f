"""Recurring appointments as documents ask for them, written as properties: the days that the property means, expanded from its
bytes by its published format, are those that an independent library of recurrences makes of what was asked for. Where the
property says something else than its format would have it, a test names it."""

import dataclasses
import datetime
import itertools
import random
import shutil
import sys
import unittest

import harness
from recurrence_decoder import (BY_DAY, BY_MONTH, BY_MONTH_NTH, BY_WEEK, DAILY, END_AFTER, END_BY_DATE, EPOCH, MONTHLY, NEVER,
                                WEEKLY, YEARLY, decode, minutes_of)

try:
    from dateutil import rrule
except ImportError:
    print("SKIPPED: the dateutil library is not there", file=sys.stderr)
    sys.exit(harness.SKIPPED)

# Instances of each series that are compared.
MOST = 50
EVERY_DAY, EVERY_WEEK, EVERY_MONTH, EVERY_YEAR = 1, 2, 3, 4
WORKING_DAYS = 62
WEEKEND = 65
LAST_WEEK = -1
# The library's days, from the bit of Sunday on.
DAYS = (rrule.SU, rrule.MO, rrule.TU, rrule.WE, rrule.TH, rrule.FR, rrule.SA)
START = datetime.datetime(2011, 3, 9, 9, 30)

# MS-OXOCAL 4.1.1.1: every week on Monday, Thursday and Friday from 10:00 to 10:30, twelve times.
EXAMPLE = bytes.fromhex("0430 0430 0B20 0100 0000 C0210000 01000000 00000000 32000000 22200000 0C000000 00000000 00000000"
                        "00000000 8020BC0C 20ADBC0C 06300000 09300000 58020000 76020000 0000 00000000 00000000")


@dataclasses.dataclass
class Asked:
    """What a document asks for, under the names of its elements."""

    lRecurType: int
    lRecurInterval: int = 1
    lRecurInstance: int = 0
    lRecurWeekMask: int = 0
    lRecurWeekDay: int = 0
    lRecurDay: int = 0
    lRecurMonth: int = 0
    lRecurRepeat: int = 0
    start: datetime.datetime = START
    length: datetime.timedelta = datetime.timedelta(minutes=45)
    until: datetime.datetime = None
    has_until: bool = None

    def document(self):
        date = lambda value: value.strftime("%m/%d/%Y %H:%M:%S")
        elements = {field.name: getattr(self, field.name) for field in dataclasses.fields(self) if field.name.startswith("l")
                    and field.name != "length"}
        elements |= {"lCalType": 3, "dtStartTime": date(self.start), "dtEndTime": date(self.start + self.length)}
        has_until = self.until is not None if self.has_until is None else self.has_until
        elements["bRecurHasEndDate"] = "TRUE" if has_until else "FALSE"
        if self.until is not None:
            elements["dtRecurEndDate"] = date(self.until)
        return "<Calendar>" + "".join(f"<{name}>{value}</{name}>" for name, value in elements.items()) + "</Calendar>"

    def _days(self):
        return [day for bit, day in enumerate(DAYS) if self.lRecurWeekMask >> bit & 1]

    def _of_months(self):
        """Which days of the months that the rule comes to."""
        if self.lRecurInstance:
            week = -1 if self.lRecurWeekDay in (LAST_WEEK, 5) else self.lRecurWeekDay
            return {"byweekday": self._days(), "bysetpos": week}
        if self.lRecurDay <= 28:
            return {"bymonthday": self.lRecurDay}
        # The day, or the last one of a month that is too short.
        return {"bymonthday": range(28, self.lRecurDay + 1), "bysetpos": -1}

    def rule(self):
        """The same in the library's words."""
        end = {}
        if self.until is not None and self.has_until is not False:
            end = {"until": datetime.datetime.combine(self.until, datetime.time.max)}
        elif self.lRecurRepeat:
            end = {"count": self.lRecurRepeat}
        common = {"dtstart": self.start, "interval": self.lRecurInterval, "wkst": rrule.SU, **end}
        if self.lRecurType == EVERY_DAY:
            return rrule.rrule(rrule.DAILY, **common)
        if self.lRecurType == EVERY_WEEK and self.lRecurInterval == 0:
            return rrule.rrule(rrule.WEEKLY, byweekday=self._days(), **common | {"interval": 1})
        if self.lRecurType == EVERY_WEEK:
            return rrule.rrule(rrule.WEEKLY, byweekday=self._days(), **common)
        if self.lRecurType == EVERY_MONTH:
            return rrule.rrule(rrule.MONTHLY, **self._of_months(), **common)
        return rrule.rrule(rrule.YEARLY, bymonth=self.start.month, **self._of_months(), **common)

    def instances(self):
        """Start and end of the first instances."""
        return [(start, start + self.length) for start in itertools.islice(self.rule(), MOST)]


class WrittenSeries(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.place = harness.Place()
        cls.addClassCleanup(cls.place.close)
        cls.program = shutil.copy2(harness.TEST_BIN / "print_series.exe", cls.place.bin)

    def properties(self, asked):
        """The bytes that become of what is asked for, all in one run of the program."""
        documents = self.place.path / "documents"
        documents.write_text("".join(one.document() + "\n" for one in asked), encoding="ascii")
        status, output, errors = self.place.finish(self.place.start(self.program, harness.windows_path(documents)))
        self.assertEqual(status, 0, errors)
        lines = output.split()
        self.assertEqual(len(lines), len(asked))
        return [bytes.fromhex(line) for line in lines]

    def series(self, *asked):
        """The series that become of what is asked for, taken apart."""
        return [decode(data) for data in self.properties(asked)]

    def expect_same_days(self, asked, endless=True):
        """Expects each property to mean the days that were asked for; gives the series."""
        found = self.series(*asked)
        for one, series in zip(asked, found):
            with self.subTest(asked=one):
                expected = one.instances()
                self.assertEqual(series.instances(MOST), expected)
                if endless:
                    self.assertEqual(len(expected), MOST)
        return found

    def test_every_nth_day(self):
        found = self.expect_same_days([Asked(EVERY_DAY, n) for n in (1, 2, 3, 7, 10, 30, 99, 365)])
        self.assertTrue(all((one.RecurFrequency, one.PatternType) == (DAILY, BY_DAY) for one in found))

    def test_every_working_day(self):
        starts = [START + datetime.timedelta(days=day) for day in range(7)]
        found = self.expect_same_days([Asked(EVERY_WEEK, 0, lRecurWeekMask=WORKING_DAYS, start=start) for start in starts])
        self.assertTrue(all((one.RecurFrequency, one.PatternType, one.Period) == (DAILY, BY_WEEK, 1) for one in found))

    def test_every_nth_week_on_every_choice_of_days(self):
        starts = [START + datetime.timedelta(days=day) for day in range(7)]
        found = self.expect_same_days([Asked(EVERY_WEEK, n, lRecurWeekMask=mask, start=starts[mask % 7])
                                       for n in (1, 2, 3, 13) for mask in range(1, 128)])
        self.assertTrue(all((one.RecurFrequency, one.PatternType) == (WEEKLY, BY_WEEK) for one in found))

    def test_every_nth_month_on_a_day(self):
        found = self.expect_same_days([Asked(EVERY_MONTH, n, lRecurDay=day, start=START.replace(day=day))
                                       for n in (1, 2, 3, 7, 12) for day in range(1, 29)])
        self.assertTrue(all((one.RecurFrequency, one.PatternType) == (MONTHLY, BY_MONTH) for one in found))

    def test_a_day_that_a_month_does_not_have_is_its_last_day(self):
        january = datetime.datetime(2011, 1, 1, 8)
        asked = [Asked(EVERY_MONTH, n, lRecurDay=day, start=january.replace(day=day))
                 for n in (1, 2, 5) for day in (29, 30, 31)]
        found = self.expect_same_days(asked)
        months = [day.date() for day in itertools.islice(found[2].days(), 14)]
        self.assertEqual(months[1], datetime.date(2011, 2, 28))
        self.assertEqual(months[3], datetime.date(2011, 4, 30))
        self.assertEqual(months[13], datetime.date(2012, 2, 29))

    def test_every_nth_month_in_a_week(self):
        found = self.expect_same_days([Asked(EVERY_MONTH, n, 1, lRecurWeekMask=mask, lRecurWeekDay=week)
                                       for n in (1, 2, 6) for week in (1, 2, 3, 4, 5, LAST_WEEK)
                                       for mask in (1, 2, 4, 8, 16, 32, 64, WORKING_DAYS, WEEKEND, 127)])
        self.assertTrue(all((one.RecurFrequency, one.PatternType) == (MONTHLY, BY_MONTH_NTH) for one in found))
        self.assertEqual({one.NthWeek for one in found}, {1, 2, 3, 4, 5})

    def test_every_nth_year_on_a_day(self):
        days = [datetime.datetime(2012, 1, 1, 7) + datetime.timedelta(days=day) for day in range(366)]
        asked = [Asked(EVERY_YEAR, 1 + day.timetuple().tm_yday % 4, lRecurDay=day.day, lRecurMonth=day.month, start=day)
                 for day in days]
        found = self.expect_same_days(asked)
        self.assertTrue(all((one.RecurFrequency, one.PatternType) == (YEARLY, BY_MONTH) for one in found))

    def test_the_29th_of_february_is_the_28th_in_other_years(self):
        asked = Asked(EVERY_YEAR, lRecurDay=29, lRecurMonth=2, start=datetime.datetime(2012, 2, 29, 10))
        found, = self.expect_same_days([asked])
        self.assertEqual([day.day for day in itertools.islice(found.days(), 5)], [29, 28, 28, 28, 29])

    def test_every_nth_year_in_a_week(self):
        found = self.expect_same_days([Asked(EVERY_YEAR, n, 1, lRecurWeekMask=mask, lRecurWeekDay=week, lRecurMonth=month,
                                             start=datetime.datetime(2011, month, 1, 12))
                                       for n in (1, 2) for month in range(1, 13) for week in (1, 4, LAST_WEEK)
                                       for mask in (1, 8, WORKING_DAYS)])
        self.assertTrue(all((one.RecurFrequency, one.PatternType) == (YEARLY, BY_MONTH_NTH) for one in found))

    def test_times_of_the_day_and_ends_on_later_days(self):
        starts = [START.replace(hour=hour, minute=minute) for hour, minute in ((0, 0), (0, 1), (12, 0), (23, 30), (23, 59))]
        spans = [datetime.timedelta(minutes=minutes) for minutes in (0, 1, 30, 60, 1440, 1441, 10000)]
        self.expect_same_days([Asked(EVERY_DAY, 8, start=start, length=span) for start in starts for span in spans])

    def test_start_on_a_day_that_is_none_of_the_series(self):
        self.expect_same_days([Asked(EVERY_WEEK, 3, lRecurWeekMask=2), Asked(EVERY_MONTH, 2, lRecurDay=1),
                               Asked(EVERY_MONTH, 2, 1, lRecurWeekMask=4, lRecurWeekDay=1),
                               Asked(EVERY_YEAR, 2, lRecurDay=1), Asked(EVERY_YEAR, 1, lRecurDay=31)])

    def kinds(self, **end):
        """A series of each kind with an end."""
        return [Asked(EVERY_DAY, 3, **end), Asked(EVERY_WEEK, 0, lRecurWeekMask=WORKING_DAYS, **end),
                Asked(EVERY_WEEK, 2, lRecurWeekMask=42, **end), Asked(EVERY_MONTH, lRecurDay=9, **end),
                Asked(EVERY_MONTH, 1, 1, lRecurWeekMask=8, lRecurWeekDay=2, **end),
                Asked(EVERY_YEAR, lRecurDay=9, **end),
                Asked(EVERY_YEAR, 1, 1, lRecurWeekMask=8, lRecurWeekDay=LAST_WEEK, **end)]

    def test_end_after_a_count(self):
        asked = [one for count in (1, 2, 12, 49) for one in self.kinds(lRecurRepeat=count)]
        for one, series in zip(asked, self.expect_same_days(asked, endless=False)):
            self.assertEqual(series.EndType, END_AFTER)
            self.assertEqual(len(list(series.days())), one.lRecurRepeat)

    def test_end_by_date_counts_its_own_day(self):
        ends = (START, START + datetime.timedelta(days=61), datetime.datetime(2013, 3, 9))
        asked = [one for last in ends for one in self.kinds(until=last)]
        for series in self.expect_same_days(asked, endless=False):
            self.assertEqual(series.EndType, END_BY_DATE)

    def test_no_end(self):
        for series in self.expect_same_days(self.kinds()):
            self.assertEqual((series.EndType, series.OccurrenceCount), (NEVER, 10))
            self.assertEqual(series.EndDate, minutes_of(datetime.datetime(4500, 12, 31, 23, 59)))

    def test_series_of_random_wishes(self):
        chance = random.Random(20260)
        asked = []
        for _ in range(1000):
            start = datetime.datetime(1995, 1, 1) + datetime.timedelta(minutes=chance.randrange(40 * 525600))
            end = chance.choice(({}, {"lRecurRepeat": chance.randrange(1, 60)},
                                 {"until": start + datetime.timedelta(days=chance.randrange(4000))}))
            asked.append(Asked(chance.randrange(1, 5), chance.choice((1, 1, 2, 3, chance.randrange(1, 40))),
                               chance.randrange(2), chance.randrange(1, 128), chance.choice((1, 2, 3, 4, LAST_WEEK)),
                               chance.randrange(1, 32), chance.randrange(13), start=start, **end))
        self.expect_same_days(asked, endless=False)

    def test_published_example_is_written_but_for_its_later_version(self):
        asked = Asked(EVERY_WEEK, lRecurWeekMask=50, lRecurRepeat=12, start=datetime.datetime(2007, 3, 26, 10),
                      length=datetime.timedelta(minutes=30), until=datetime.datetime(2007, 4, 20), has_until=False)
        written, = self.properties([asked])
        self.assertEqual(written, EXAMPLE.replace(b"\x09\x30", b"\x08\x30"))

    # What the property says otherwise than its format describes it, and what becomes of strange wishes.

    def test_first_date_of_days_and_weeks_is_the_published_one(self):
        starts = [START + datetime.timedelta(days=day * 37) for day in range(40)]
        found = self.series(*[Asked(EVERY_DAY, 1 + number, start=start) for number, start in enumerate(starts)],
                            *[Asked(EVERY_WEEK, 1 + number, lRecurWeekMask=2, start=start)
                              for number, start in enumerate(starts)],
                            Asked(EVERY_WEEK, 0, lRecurWeekMask=WORKING_DAYS))
        for series in found:
            self.assertEqual(series.FirstDateTime, series.published_first_date_time())
        # The published example has the same.
        self.assertEqual(found[-1].FirstDateTime, 8640)

    def test_first_date_of_a_monthly_series_is_zero_whatever_its_month_is(self):
        every, second, third = self.series(*[Asked(EVERY_MONTH, n, lRecurDay=9) for n in (1, 2, 3)])
        self.assertEqual([series.FirstDateTime for series in (every, second, third)], [0, 0, 0])
        # With one month that is what the format has; of March it would otherwise be a month's minutes.
        self.assertEqual([series.published_first_date_time() for series in (every, second, third)],
                         [0, 0, minutes_of(datetime.datetime(1601, 3, 1))])

    def test_first_date_of_a_yearly_series_is_the_day_of_the_year_and_not_its_month(self):
        starts = [datetime.datetime(2011, month, 1, 8) for month in range(1, 13)]
        found = self.series(*[Asked(EVERY_YEAR, lRecurDay=1, start=start) for start in starts])
        for start, series in zip(starts, found):
            self.assertEqual(series.FirstDateTime, start.timetuple().tm_yday * 1440)
            # The day of the year counts from 1, and the format's minutes from 0.
            self.assertEqual(series.FirstDateTime - 1440, series.published_first_date_time())

    def test_count_of_a_series_with_an_end_date_is_one_though_it_has_more_instances(self):
        series, = self.series(Asked(EVERY_DAY, until=START + datetime.timedelta(days=9)))
        self.assertEqual((series.EndType, series.OccurrenceCount), (END_BY_DATE, 1))
        self.assertEqual(len(list(series.days())), 10)

    def test_end_date_of_a_series_with_a_count_is_its_start_though_it_goes_on(self):
        series, = self.series(Asked(EVERY_DAY, lRecurRepeat=10))
        self.assertEqual((series.EndType, series.EndDate), (END_AFTER, series.StartDate))
        self.assertEqual(len(list(series.days())), 10)

    def test_end_date_of_a_series_with_a_count_is_that_of_the_document_if_there_is_one(self):
        last = START + datetime.timedelta(days=99)
        series, = self.series(Asked(EVERY_DAY, lRecurRepeat=10, until=last, has_until=False))
        self.assertEqual((series.EndType, series.OccurrenceCount), (END_AFTER, 10))
        self.assertEqual(series.EndDate, minutes_of(last.replace(hour=0, minute=0)))

    def test_end_date_without_its_flag_ends_nothing(self):
        series, = self.series(Asked(EVERY_DAY, until=START + datetime.timedelta(days=9), has_until=False))
        self.assertEqual(series.EndType, NEVER)

    def test_week_without_days_is_one_of_working_days(self):
        series, = self.series(Asked(EVERY_WEEK, 2))
        self.assertEqual(series.WeekDays, WORKING_DAYS)
        self.assertEqual(series.instances(MOST), Asked(EVERY_WEEK, 2, lRecurWeekMask=WORKING_DAYS).instances())

    def test_month_of_the_document_is_not_used(self):
        may, november = self.properties([Asked(EVERY_YEAR, lRecurDay=9, lRecurMonth=month) for month in (5, 11)])
        self.assertEqual(may, november)
        self.assertEqual({day.month for day in itertools.islice(decode(may).days(), 5)}, {START.month})

    def test_first_day_of_the_week_is_sunday(self):
        # A start on Sunday begins a week, so every second week is another one than with weeks from Monday on.
        sunday = datetime.datetime(2011, 3, 13, 9)
        asked = Asked(EVERY_WEEK, 2, lRecurWeekMask=3, start=sunday)
        series, = self.expect_same_days([asked])
        self.assertEqual(series.FirstDOW, 0)
        self.assertEqual([day.day for day in itertools.islice(series.days(), 3)], [13, 14, 27])

    def test_series_without_an_interval_is_written_though_it_has_no_days(self):
        for one in self.series(Asked(EVERY_DAY, 0), Asked(EVERY_WEEK, 0, lRecurWeekMask=2), Asked(EVERY_MONTH, 0, lRecurDay=9),
                               Asked(EVERY_YEAR, 0, lRecurDay=9)):
            self.assertEqual(one.Period, 0)
            with self.assertRaises(ValueError):
                next(one.days())

    def test_month_without_a_day_and_week_without_a_number_are_written_though_the_format_has_none(self):
        for data in self.properties([Asked(EVERY_MONTH), Asked(EVERY_MONTH, 1, 1, lRecurWeekMask=2),
                                     Asked(EVERY_MONTH, 1, 1, lRecurWeekDay=1), Asked(7)]):
            with self.assertRaises(ValueError):
                decode(data)

    def test_start_is_counted_in_local_time(self):
        series, = self.series(Asked(EVERY_DAY))
        self.assertEqual(EPOCH + datetime.timedelta(minutes=series.StartDate + series.StartTimeOffset), START)


class Decoder(unittest.TestCase):
    """The decoder itself, by an example of the published format and by what it has to refuse."""

    def test_published_example_is_read_and_expanded(self):
        series = decode(EXAMPLE)
        self.assertEqual((series.RecurFrequency, series.Period, series.WeekDays), (WEEKLY, 1, 50))
        days = list(series.days())
        self.assertEqual(len(days), 12)
        self.assertEqual(series.published_first_date_time(), series.FirstDateTime)
        self.assertEqual({day.strftime("%a") for day in days}, {"Mon", "Thu", "Fri"})
        self.assertEqual(minutes_of(days[-1]), series.EndDate)

    def test_bytes_too_few_or_too_many_are_refused(self):
        for size in range(len(EXAMPLE)):
            with self.assertRaises(ValueError):
                decode(EXAMPLE[:size])
        with self.assertRaises(ValueError):
            decode(EXAMPLE + b"\0")

    def test_deleted_days_are_left_out_but_counted(self):
        series = decode(EXAMPLE)
        days = list(series.days())
        series.DeletedInstanceDates = [minutes_of(days[3])]
        self.assertEqual(list(series.days()), days[:3] + days[4:])


if __name__ == "__main__":
    harness.run()
