"""A place for tests of the writing of appointments, and what their messages have to hold."""

import datetime
import zoneinfo

from appointments import APPOINTMENT, COMMON, EPOCH, fields
from message_case import MessageCase
from writing_case import item_document

APPOINTMENT_SET = f"{APPOINTMENT}-0000-0000-c000-000000000046"
COMMON_SET = f"{COMMON}-0000-0000-c000-000000000046"
SUBJECT = 0x0037001F
BODY = 0x1000001F
START, END = (APPOINTMENT_SET, 0x820D), (APPOINTMENT_SET, 0x820E)
LOCATION = (APPOINTMENT_SET, 0x8208)
RECUR = (APPOINTMENT_SET, 0x8216)


def moment(*parts):
    """A time as documents carry it."""
    return datetime.datetime(*parts).strftime("%m/%d/%Y %H:%M:%S")


def filetime(utc):
    return (utc.replace(tzinfo=None) - EPOCH) // datetime.timedelta(microseconds=1) * 10


def utc_of(text, zone):
    """The file time of a local time that a document carries."""
    local = datetime.datetime.strptime(text, "%m/%d/%Y %H:%M:%S").replace(tzinfo=zoneinfo.ZoneInfo(zone))
    return filetime(local.astimezone(datetime.timezone.utc))


class CalendarWritingCase(MessageCase):
    KIND = "calendars"
    FOLDER = "Work/Mail/Calendar"
    WRITE, READ, COUNT_ITEMS = "write-calendar", "read-calendars", "count-calendars"
    ROOT, NAME, NAME_TAG = "Calendar", "Description", SUBJECT
    fields_of = staticmethod(fields)
    # Without these nothing is written, the appointment has no time, and there is a reminder.
    NEEDED = {"lCalType": "3", "dtStartTime": moment(2026, 3, 2, 9), "dtEndTime": moment(2026, 3, 2, 10),
              "lReminderMinutes": "-1"}

    def document(self, flag, identifier=None, **elements):
        return item_document(self.ROOT, flag, identifier, self.NEEDED | elements)

    def read_fields(self):
        """The fields of all appointments by subject."""
        return {item.get("Description", ""): item for item in map(fields, self.read_all())}
