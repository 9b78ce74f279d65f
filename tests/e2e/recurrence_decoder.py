"""A recurrence property taken apart and expanded, sharing nothing with the agent: the published format (MS-OXOCAL 2.2.1.44.1
and 2.2.1.44.5) in its strict reading, and what its fields mean.

As a program it prints what a property says: recurrence_decoder.py HEX...
"""

import calendar
import dataclasses
import datetime
import itertools
import struct
import sys

DAILY, WEEKLY, MONTHLY, YEARLY = 0x200A, 0x200B, 0x200C, 0x200D
BY_DAY, BY_WEEK, BY_MONTH, BY_MONTH_NTH, BY_MONTH_END = range(5)
END_BY_DATE, END_AFTER, NEVER, NEVER_OLD = 0x2021, 0x2022, 0x2023, 0xFFFFFFFF
LAST = 5
MINUTES_OF_DAY = 1440
MINUTES_OF_WEEK = 7 * MINUTES_OF_DAY
EPOCH = datetime.datetime(1601, 1, 1)

# The patterns that a frequency may have.
PATTERNS = {DAILY: {BY_DAY, BY_WEEK}, WEEKLY: {BY_WEEK}, MONTHLY: {BY_MONTH, BY_MONTH_NTH, BY_MONTH_END},
            YEARLY: {BY_MONTH, BY_MONTH_NTH, BY_MONTH_END}}


class _Reader:
    """Little-endian numbers out of bytes that must all be there."""

    def __init__(self, data):
        self._data, self._place = data, 0

    def take(self, form):
        form = "<" + form
        if self._place + struct.calcsize(form) > len(self._data):
            raise ValueError(f"the property ends within the field at {self._place}")
        values = struct.unpack_from(form, self._data, self._place)
        self._place += struct.calcsize(form)
        return values

    def number(self, form="I"):
        return self.take(form)[0]

    def list(self):
        return list(self.take(f"{self.number()}I"))

    def end(self):
        if self._place != len(self._data):
            raise ValueError(f"{len(self._data) - self._place} bytes stand behind the property")


def time_of(minutes):
    """A local time out of its minutes since 1601."""
    return EPOCH + datetime.timedelta(minutes=minutes)


def minutes_of(time):
    return int((time - EPOCH).total_seconds()) // 60


def in_month(day, months):
    """The first day of the month that lies some months behind that of a day."""
    count = day.year * 12 + day.month - 1 + months
    return datetime.datetime(count // 12, count % 12 + 1, 1)


def days_of_week(mask):
    """The days of a mask in which Sunday is bit 0, as datetime counts them: Monday is 0."""
    return {(bit - 1) % 7 for bit in range(7) if mask >> bit & 1}


@dataclasses.dataclass
class Series:
    """What a property says, under the names of the format. Its lists of days are minutes since 1601."""

    ReaderVersion: int
    WriterVersion: int
    RecurFrequency: int
    PatternType: int
    CalendarType: int
    FirstDateTime: int
    Period: int
    SlidingFlag: int
    WeekDays: int = None
    NthWeek: int = None
    DayOfMonth: int = None
    EndType: int = None
    OccurrenceCount: int = None
    FirstDOW: int = None
    DeletedInstanceDates: list = None
    ModifiedInstanceDates: list = None
    StartDate: int = None
    EndDate: int = None
    ReaderVersion2: int = None
    WriterVersion2: int = None
    StartTimeOffset: int = None
    EndTimeOffset: int = None

    def first_week(self):
        """The first day of the week of the start, by FirstDOW."""
        start = time_of(self.StartDate)
        return start - datetime.timedelta(days=(start.weekday() + 1 - self.FirstDOW) % 7)

    def published_first_date_time(self):
        """What FirstDateTime is to be by the description of the format."""
        if self.PatternType == BY_DAY:
            return self.StartDate % self.Period
        if self.PatternType == BY_WEEK:
            return minutes_of(self.first_week()) % (self.Period * MINUTES_OF_WEEK)
        start = time_of(self.StartDate)
        months = (start.year - EPOCH.year) * 12 + start.month - 1
        return minutes_of(in_month(EPOCH, months % self.Period))

    def _all_days(self):
        """The days of the pattern without an end, from the one on which its first period begins."""
        if self.PatternType == BY_DAY:
            # On the grid that FirstDateTime lays over all time.
            first = self.StartDate + (self.FirstDateTime - self.StartDate) % self.Period
            return (time_of(minutes) for minutes in itertools.count(first, self.Period))
        if self.PatternType == BY_WEEK:
            return self._days_of_weeks()
        return self._days_of_months()

    def _days_of_weeks(self):
        span = self.Period * MINUTES_OF_WEEK
        week = minutes_of(self.first_week())
        week += (self.FirstDateTime - week) % span
        days = days_of_week(self.WeekDays)
        for first in itertools.count(week, span):
            for day in range(7):
                date = time_of(first) + datetime.timedelta(days=day)
                if date.weekday() in days:
                    yield date

    def _days_of_months(self):
        """Counted from the month of the start. FirstDateTime says which months are meant too, but not every writer means
        the same by it (see published_first_date_time)."""
        for months in itertools.count(0, self.Period):
            first = in_month(time_of(self.StartDate), months)
            days = [first + datetime.timedelta(days=day) for day in range(calendar.monthrange(first.year, first.month)[1])]
            if self.PatternType == BY_MONTH_NTH:
                wanted = days_of_week(self.WeekDays)
                days = [day for day in days if day.weekday() in wanted]
                if self.NthWeek == LAST:
                    yield days[-1]
                elif self.NthWeek <= len(days):
                    yield days[self.NthWeek - 1]
            else:
                # A month that is too short has its instance on its last day.
                yield days[min(self.DayOfMonth, len(days)) - 1]

    def days(self):
        """The days of the instances, as far as the calendar goes. A series by count has an end date too, and one by date a
        count: what the end is not by is not looked at."""
        if self.Period == 0:
            raise ValueError("a series without a period has no days")
        found = 0
        for day in self._all_days():
            if self.EndType == END_BY_DATE and minutes_of(day) > self.EndDate:
                return
            if self.EndType == END_AFTER and found == self.OccurrenceCount:
                return
            if minutes_of(day) < self.StartDate:
                continue
            found += 1
            if minutes_of(day) not in self.DeletedInstanceDates:
                yield day

    def instances(self, most):
        """Start and end of the first instances, as local times."""
        span = lambda minutes: datetime.timedelta(minutes=minutes)
        return [(day + span(self.StartTimeOffset), day + span(self.EndTimeOffset))
                for day in itertools.islice(self.days(), most)]


def _require(condition, what):
    if not condition:
        raise ValueError(what)


def _read_specific(reader, series):
    if series.PatternType == BY_WEEK:
        series.WeekDays = reader.number()
    elif series.PatternType == BY_MONTH_NTH:
        series.WeekDays, series.NthWeek = reader.take("II")
        _require(1 <= series.NthWeek <= LAST, f"NthWeek is {series.NthWeek}")
    elif series.PatternType in (BY_MONTH, BY_MONTH_END):
        series.DayOfMonth = reader.number()
        _require(1 <= series.DayOfMonth <= 31, f"DayOfMonth is {series.DayOfMonth}")
    _require(series.WeekDays is None or 0 < series.WeekDays < 0x80, f"WeekDays is {series.WeekDays}")


def decode(data):
    """Takes a property apart. Raises ValueError for one that the format does not allow, one with bytes behind it, and one
    with changed instances, which are not for this decoder."""
    reader = _Reader(data)
    series = Series(*reader.take("HHHHHIII"))
    _require((series.ReaderVersion, series.WriterVersion) == (0x3004, 0x3004), "the versions are unknown")
    _require(series.PatternType in PATTERNS.get(series.RecurFrequency, ()),
             f"there is no pattern {series.PatternType} of the frequency {series.RecurFrequency:#x}")
    _require(series.CalendarType == 0, "the calendar is not the Gregorian one")
    _read_specific(reader, series)
    series.EndType, series.OccurrenceCount, series.FirstDOW = reader.take("III")
    _require(series.EndType in (END_BY_DATE, END_AFTER, NEVER, NEVER_OLD), f"EndType is {series.EndType:#x}")
    _require(series.FirstDOW < 7, f"FirstDOW is {series.FirstDOW}")
    series.DeletedInstanceDates, series.ModifiedInstanceDates = reader.list(), reader.list()
    series.StartDate, series.EndDate = reader.take("II")
    _require(series.StartDate % MINUTES_OF_DAY == 0, "StartDate is no midnight")
    series.ReaderVersion2, series.WriterVersion2, series.StartTimeOffset, series.EndTimeOffset = reader.take("IIII")
    _require(series.ReaderVersion2 == 0x3006 and series.WriterVersion2 >= 0x3006, "the later versions are unknown")
    _require(reader.number("H") == len(series.ModifiedInstanceDates), "ExceptionCount differs from the list")
    _require(not series.ModifiedInstanceDates, "the series has changed instances")
    _require(reader.take("II") == (0, 0), "there are reserved blocks")
    reader.end()
    return series


if __name__ == "__main__":
    for text in sys.argv[1:]:
        decoded = decode(bytes.fromhex(text))
        print(decoded)
        for start, end in decoded.instances(10):
            print(f"  {start:%a %Y-%m-%d %H:%M} - {end:%a %Y-%m-%d %H:%M}")
