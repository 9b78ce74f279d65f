"""Appointments for tests: their properties as make_contacts takes them, the recurrence property laid out as published
(MS-OXOCAL 2.2.1.44.5), and how to look at the documents that the agent sends."""

import base64
import datetime
import struct
import xml.etree.ElementTree

from contact_fields import normal, tag_line

APPOINTMENT = "00062002"
COMMON = "00062008"
DAILY, WEEKLY, MONTHLY, YEARLY = 0x200A, 0x200B, 0x200C, 0x200D
END_BY_DATE, END_AFTER, NEVER = 0x2021, 0x2022, 0x2023
EPOCH = datetime.datetime(1601, 1, 1)

# The elements of a document in their order; the reminder's two stand in either.
ALWAYS_FIRST = ["CsFolder"]
ROW = ["CreateTime", "lastModifiedTime", "Description", "Priority"]
DETAILS = ["Body", "Location", "bAlldayEvent", "dtStartTime", "dtEndTime"]
RECURRENCE = ["lRecurMonth", "lRecurInterval", "lRecurInstance", "lRecurWeekMask", "lRecurWeekDay", "lRecurDay",
              "dtRecurEndDate", "bRecurHasEndDate", "lRecurRepeat", "ExceptionRule"]


def minutes(year, month, day, hour=0, minute=0):
    """A local time as the recurrence property counts it."""
    return int((datetime.datetime(year, month, day, hour, minute) - EPOCH).total_seconds()) // 60


def filetime(*utc):
    return int((datetime.datetime(*utc) - EPOCH).total_seconds()) * 10_000_000


def day_text(count):
    return (EPOCH + datetime.timedelta(minutes=count)).strftime("%Y/%m/%d")


def moment_text(count):
    return (EPOCH + datetime.timedelta(minutes=count)).strftime("%Y/%m/%d %H:%M:%S")


class Change:
    """A changed instance: its day, its new times and what it has of its own."""

    NUMBERS = (("meeting", 0x2), ("delta", 0x4), ("reminder", 0x8), ("busy", 0x20), ("attachment", 0x40),
               ("sub_type", 0x80), ("color", 0x100))

    def __init__(self, day, start, end, subject=None, location=None, highlight=4, **numbers):
        self.day, self.start, self.end = day, start, end
        self.subject, self.location, self.highlight = subject, location, highlight
        self.numbers = numbers
        self.flags = (0x1 if subject is not None else 0) | (0x10 if location is not None else 0)
        for name, flag in self.NUMBERS:
            self.flags |= flag if name in numbers else 0

    def dates(self):
        return struct.pack("<III", self.start, self.end, self.day)

    @staticmethod
    def narrow(text):
        """The 8-bit form of a text, with its two lengths. Nobody reads its characters."""
        return struct.pack("<HH", len(text) + 1, len(text)) + b"?" * len(text)

    @staticmethod
    def wide(text):
        units = text.encode("utf-16-le")
        return struct.pack("<H", len(units) // 2) + units

    def info(self):
        number = lambda name: struct.pack("<I", self.numbers[name] & 0xFFFFFFFF) if name in self.numbers else b""
        return (self.dates() + struct.pack("<H", self.flags) +
                (self.narrow(self.subject) if self.subject is not None else b"") +
                number("meeting") + number("delta") + number("reminder") +
                (self.narrow(self.location) if self.location is not None else b"") +
                number("busy") + number("attachment") + number("sub_type") + number("color"))

    def extended(self):
        """The extended form, behind a ChangeHighlight of a size: its value and what is reserved behind it."""
        result = struct.pack("<I", self.highlight) + b"\x5A" * self.highlight + struct.pack("<I", 0)
        if self.flags & 0x11:
            result += self.dates()
            result += self.wide(self.subject) if self.subject is not None else b""
            result += self.wide(self.location) if self.location is not None else b""
            result += struct.pack("<I", 0)
        return result


class Series:
    """A series and its property."""

    def __init__(self, frequency, pattern, period, specific=(), deleted=(), changes=(), start=minutes(2011, 3, 7),
                 end=minutes(2011, 5, 4), end_type=END_AFTER, count=10, calendar=0, listed=None, tail=b"",
                 first_day=0, first_date_time=0):
        self.frequency, self.pattern, self.period, self.specific = frequency, pattern, period, specific
        self.deleted, self.changes = list(deleted), list(changes)
        self.start, self.end, self.end_type, self.count, self.calendar = start, end, end_type, count, calendar
        self.listed, self.tail = listed, tail
        self.first_day, self.first_date_time = first_day, first_date_time

    def blob(self):
        numbers = lambda values: b"".join(struct.pack("<I", value) for value in values)
        listed = len(self.changes) if self.listed is None else self.listed
        return (struct.pack("<HHHHHIII", 0x3004, 0x3004, self.frequency, self.pattern, self.calendar, self.first_date_time,
                            self.period, 0) +
                numbers(self.specific) + numbers([self.end_type, self.count, self.first_day]) +
                numbers([len(self.deleted), *self.deleted]) +
                numbers([len(self.changes), *[change.day for change in self.changes]]) +
                numbers([self.start, self.end, 0x3006, 0x3009, 540, 600]) + struct.pack("<H", listed) +
                b"".join(change.info() for change in self.changes) + numbers([0]) +
                b"".join(change.extended() for change in self.changes) + numbers([0]) + self.tail)

    def rule(self, subject="", location="", reminder=-1):
        """The text that tells of the instances, for a series with these texts and minutes of its own; None for none."""
        if not self.deleted:
            return None
        changed = {change.day for change in self.changes}
        lines = ["<exceptions>"]
        lines += [f'<deletion time = "{day_text(day)}"></deletion>' for day in self.deleted if day not in changed]
        for change in self.changes:
            lines += modification(change.day, change.start, change.end,
                                  subject if change.subject is None else change.subject,
                                  location if change.location is None else change.location,
                                  change.numbers.get("reminder", 0 if reminder == -1 else 1),
                                  change.numbers.get("delta", reminder), change.numbers.get("sub_type", 0))
        return "\n".join([*lines, "</exceptions>"])


def encoded(text):
    """A text of at most 384 characters, up to its first null, as a changed instance carries it."""
    text = text.split("\0")[0]
    return base64.b64encode(text.encode("utf-16-le")).decode() if len(text) <= 384 else ""


def modification(day, start, end, subject, location, reminder, delta, all_day):
    return [f'<modification time = "{day_text(day)}">', f"\t<subject>{encoded(subject)}</subject>",
            f"\t<location>{encoded(location)}</location>", f"\t<start>{moment_text(start)}</start>",
            f"\t<end>{moment_text(end)}</end>", f"\t<reminderset>{reminder}</reminderset>",
            f"\t<reminderdelta>{delta}</reminderdelta>", f"\t<allday>{all_day}</allday>", "</modification>"]


def appointment(subject, start=(2011, 3, 7, 9, 0), end=(2011, 3, 7, 10, 0), location=None, kind=None, series=None,
                zone=None, reminder=None, all_day=False):
    """The lines of make_contacts for an appointment. `kind` is the store's number for a series; times are UTC."""
    lines = ["appointment", tag_line("0037001F", subject),
             f"namedtime {APPOINTMENT} 820D {filetime(*start)}", f"namedtime {APPOINTMENT} 820E {filetime(*end)}",
             f"namedflag {APPOINTMENT} 8215 {int(all_day)}"]
    if location is not None:
        lines.append(f"named {APPOINTMENT} 8208 {location.encode('utf-16-be').hex() or '-'}")
    if series is not None:
        blob = series.blob() if isinstance(series, Series) else series
        lines += [f"namedflag {APPOINTMENT} 8223 1", f"namednumber {APPOINTMENT} 8231 {kind}",
                  f"namedbytes {APPOINTMENT} 8216 {blob.hex() or '-'}"]
    if zone is not None:
        lines.append(f"namedbytes {APPOINTMENT} 8233 {zone.hex() or '-'}")
    if reminder is not None:
        lines += [f"namedflag {COMMON} 8503 1", f"namednumber {COMMON} 8501 {reminder}"]
    return lines


def fields(document):
    """The texts of a document's elements by their names, but for the kind at its end. Fails on what is no appointment."""
    root = xml.etree.ElementTree.fromstring(document.encode("utf-8"))
    found = [(element.tag, normal(element.text or "")) for element in root]
    if root.tag != "Calendar" or any(len(element) for element in root) or found[-1:] != [("lCalType", "3")]:
        raise AssertionError(f"no proper appointment: {document}")
    names = [name for name, _ in found[:-1]]
    reminder = (["lReminderMinutes", "nRingTone"] if ("lReminderMinutes", "-1") in found
                else ["nRingTone", "lReminderMinutes"])
    order = ([*ALWAYS_FIRST, "lFlag", *ROW, "PIMID", *DETAILS, *reminder, "lRecurType", "RecurType", "lCalType",
              *RECURRENCE, "TimeZone"])
    positions = [order.index(name) for name in names]
    if positions != sorted(set(positions)):
        raise AssertionError(f"elements stand twice or in the wrong order: {names}")
    missing = [name for name in ("CsFolder", "PIMID", *DETAILS, *reminder, "TimeZone") if name not in names]
    if missing or ("RecurType" in names) == ("lRecurType" in names):
        raise AssertionError(f"elements are missing or exclude each other: {names}, {missing}")
    return dict(found[:-1])
