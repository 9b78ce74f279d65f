"""The items that the measurements read: one message of each kind, made through the mail system, and as many copies of its file
as are wanted, which differ in a text."""

import pathlib
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "e2e"))

from appointments import COMMON, END_AFTER, WEEKLY, Change, Series, appointment, minutes  # noqa: E402
from contact_fields import BODY, keywords_line, named_line, tag_line, time_line  # noqa: E402

# Stands once in each message, and each copy has a number of as many digits in its place.
MARK = "no-000000"
WEEK = 7 * 1440
NEXT_SUNDAY = "The first Sunday of the month is the day on which the others meet. "

CONTACT_TEXTS = {
    "3A06001F": "Ada", "3A44001F": "Byron", "3A11001F": "Lovelace", "3A4F001F": MARK, "3A45001F": "Lady",
    "3A08001F": "+44 20 5550 0101", "3A1B001F": "+44 20 5550 0102", "3A09001F": "+44 20 5550 0103",
    "3A1C001F": "+44 7700 900104", "3A24001F": "+44 20 5550 0105", "3A16001F": "Analytical Engines Ltd",
    "3A17001F": "Head of Programming", "3A51001F": "https://engines.example.org/ada", "3A5A001F": "United Kingdom",
    "3A59001F": "London", "3A5D001F": "12 St James's Square", "3A5B001F": "SW1Y 4JH",
}
CONTACT_NAMES = {
    "8005": "Lady Ada Byron Lovelace", "8045": "1 Dorset Street", "8046": "London", "8047": "Greater London",
    "8048": "W1U 4EG", "8049": "United Kingdom", "8062": "SKYPE:ada.lovelace", "8082": "SMTP", "8083": "ada@example.org",
    "8092": "SMTP", "8093": "lovelace@engines.example.org",
}
# PidLidTimeZoneStruct of Central Europe (MS-OXOCAL 2.2.1.39): biases, then year, date and time of both changes.
ZONE = bytes.fromhex("c4ffffff00000000c4ffffff" + "0000" + "00000a0000000500030000000000" + "0000" + "0000" +
                     "00000300000005000200000000000000")


def contact():
    return (["contact"] + [tag_line(tag, text) for tag, text in CONTACT_TEXTS.items()] +
            [named_line(number, text) for number, text in CONTACT_NAMES.items()] +
            [tag_line(BODY, NEXT_SUNDAY * 4), time_line("3A420040", 94_354_848_000_000_000),
             keywords_line("Friends", "Engines")])


def any_appointment(**more):
    return (appointment("Review of the engines", location=f"Room 4, second floor, {MARK}", zone=ZONE, reminder=15, **more) +
            [tag_line(BODY, NEXT_SUNDAY * 4), "number 00260003 1", f"namedflag {COMMON} 851C 0"])


def series(deleted=(), changes=()):
    first = minutes(2011, 3, 7)
    return Series(WEEKLY, 1, 1, specific=(2,), deleted=sorted([*deleted, *(change.day for change in changes)]),
                  changes=changes, start=first, end=first + 99 * WEEK, end_type=END_AFTER, count=100)


def change(number):
    """The instance of a week, moved by an hour and a half to another place."""
    day = minutes(2011, 3, 7) + number * WEEK
    start = day + 9 * 60 + 90
    return Change(day, start, start + 45, subject=f"Review {number} of the engines, moved", location=f"Room {number}")


def series_with_exceptions():
    """Fifty instances are not as the others: forty are changed and ten are deleted."""
    return series([minutes(2011, 3, 7) + number * WEEK for number in range(50, 60)], [change(number) for number in range(40)])


# The kinds that are measured: the lines of make_contacts and the folder.
KINDS = {
    "contacts": (contact, "Contacts"),
    "appointments": (any_appointment, "Calendar"),
    "recurring": (lambda: any_appointment(kind=2, series=series()), "Calendar"),
    "exceptions": (lambda: any_appointment(kind=2, series=series_with_exceptions()), "Calendar"),
}


def make_messages(place):
    """Makes one message of each kind through the mail system. Gives the bytes of the files by the kinds."""
    messages = {}
    for kind, (lines, folder) in KINDS.items():
        where = place.folder(f"Work/Mail/{folder}")
        place.make_items([lines()])
        [file] = where.glob("*.msg")
        messages[kind] = file.read_bytes()
        file.unlink()
    return messages


def fill_profile(place, name, messages, kind, count):
    """Makes a profile with a folder of copies of a kind's message, and with one item of the other sort in its folder.

    The one item lets a process do beforehand what it does but once.
    """
    folder = KINDS[kind][1]
    other = "Calendar" if folder == "Contacts" else "Contacts"
    content, mark = messages[kind], MARK.encode("utf-16-le")
    if content.count(mark) != 1:
        raise AssertionError(f"{MARK} is not where it can be replaced")
    front, behind = content.split(mark)
    target = place.folder(f"{name}/Mail/{folder}")
    for number in range(count):
        (target / f"{number:06}.msg").write_bytes(front + f"no-{number:06}".encode("utf-16-le") + behind)
    other_kind = next(kind for kind, (_, where) in KINDS.items() if where == other)
    (place.folder(f"{name}/Mail/{other}") / "other.msg").write_bytes(messages[other_kind])
    return target
