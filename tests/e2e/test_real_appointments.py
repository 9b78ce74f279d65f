"""Appointments that a mail program saved: what independent readers find in them arrives in their documents, and what is written
back is the same.

The files are not part of the project. ZEB_REAL_ITEMS names the folder that holds them with their descriptions.
"""

import datetime
import json
import unittest

import appointments
import harness
from contact_fields import date_and_time, normal

# The zone in which the appointments were saved.
ZONE = "Asia/Tokyo"
JAPAN = datetime.timezone(datetime.timedelta(hours=9))


def descriptions():
    """The descriptions of the appointments that are there, by the paths of their messages."""
    found = {}
    for file in sorted(harness.REAL_ITEMS.glob("*.json")) if harness.REAL_ITEMS.is_dir() else []:
        content = json.loads(file.read_text(encoding="utf-8"))
        if content.get("message_class") == "IPM.Appointment" and file.with_suffix(".msg").exists():
            found[file.with_suffix(".msg")] = content
    return found


REAL = descriptions()


def number(text):
    return int(text, 16) if isinstance(text, str) else text


class Expected:
    """The document of a real appointment, from its description alone."""

    def __init__(self, content):
        self.content = content
        self.item = content["appointment"]
        self.tags = {entry["tag"][2:].upper(): entry["value"] for entry in content["properties"]}
        self.lids = {entry["lid"]: entry["value"] for entry in content["named_properties"] if "lid" in entry}
        self.blob = self.item["recurrence_0x8216"]["decoded"]
        self.pattern = self.blob["RecurrencePattern"]

    def fields(self):
        item = self.item
        body = self.content["body"] or ""
        expected = {
            "CsFolder": "Calendar",
            "CreateTime": date_and_time(self.content["PR_CREATION_TIME"]["filetime"], JAPAN),
            "lastModifiedTime": date_and_time(self.content["PR_LAST_MODIFICATION_TIME"]["filetime"], JAPAN),
            "Description": self.content["subject"],
            "Body": "" if body in ("\r\n", "\n") else normal(body),
            "Location": item["location_0x8208"] or "",
            "bAlldayEvent": "TRUE" if item["all_day_0x8215"] else "FALSE",
            "dtStartTime": date_and_time(item["start_0x820D"]["filetime"], JAPAN),
            "dtEndTime": date_and_time(item["end_0x820E"]["filetime"], JAPAN),
            "TimeZone": self.zone(),
        }
        if "00260003" in self.tags:
            expected["Priority"] = str(self.tags["00260003"])
        return expected | self.reminder() | self.recurrence()

    def zone(self):
        zone = self.item["timezone_struct_0x8233"]["decoded"]
        assert not any(zone["stDaylightDate"].values()), "a zone with daylight saving needs more than this"
        return f"GMT:{zone['lBias']:+d};DST:0;STD:{'0' * 16};DLT:{'0' * 16}"

    def reminder(self):
        if not self.item["reminder_set_0x8503"]:
            return {"lReminderMinutes": "-1", "nRingTone": "0"}
        silent = self.lids.get("0x851C") and not self.lids.get("0x851E")
        return {"nRingTone": "0" if silent else "1", "lReminderMinutes": str(self.item["reminder_delta_0x8501"])}

    def recurrence(self):
        if not self.item["recurring_0x8223"]:
            return {"RecurType": "0"}
        pattern = self.pattern
        frequency, kind = number(pattern["RecurFrequency"]), number(pattern["PatternType"])
        assert frequency in (appointments.DAILY, appointments.WEEKLY), "another frequency needs more than this"
        on_weekdays = frequency == appointments.DAILY and kind != 0
        ends = number(pattern["EndType"]) not in (0x2023, 0xFFFFFFFF)
        days = {"lRecurInterval": "0" if on_weekdays else
                str(pattern["Period"] // (1440 if frequency == appointments.DAILY else 1)),
                "lRecurInstance": "0", "lRecurWeekMask": str(number(pattern.get("DayOfWeekBits", 0))),
                "lRecurWeekDay": "0", "lRecurDay": "0"}
        end = datetime.datetime.fromisoformat(pattern["EndDate"]["local"]).strftime("%m/%d/%Y %H:%M:%S")
        result = {"lRecurType": "2" if on_weekdays else str(self.item["recurrence_type_0x8231"]), **days,
                  "dtRecurEndDate": end if ends else "NULL", "bRecurHasEndDate": "TRUE" if ends else "FALSE",
                  "lRecurRepeat": str(pattern["OccurrenceCount"] if ends else 0)}
        if pattern["DeletedInstanceDates"]:
            result["ExceptionRule"] = self.rule()
        return result

    def rule(self):
        pattern = self.pattern
        changed = [date["minutes"] for date in pattern["ModifiedInstanceDates"]]
        lines = ["<exceptions>"]
        lines += [f'<deletion time = "{appointments.day_text(date["minutes"])}"></deletion>'
                  for date in pattern["DeletedInstanceDates"] if date["minutes"] not in changed]
        minutes = int(self.reminder()["lReminderMinutes"])
        for day, info, extended in zip(changed, self.blob["ExceptionInfo"], self.blob["ExtendedException"]):
            flags = number(info["OverrideFlags"])
            lines += appointments.modification(
                day, extended.get("StartDateTime", info["StartDateTime"])["minutes"],
                extended.get("EndDateTime", info["EndDateTime"])["minutes"],
                extended["WideCharSubject"] if flags & 0x1 else self.content["subject"],
                extended["WideCharLocation"] if flags & 0x10 else self.item["location_0x8208"] or "",
                info["ReminderSet"] if flags & 0x8 else int(minutes != -1),
                info["ReminderDelta"] if flags & 0x4 else minutes, info["SubType"] if flags & 0x80 else 0)
        return "\n".join([*lines, "</exceptions>"])


@unittest.skipUnless(REAL, harness.NO_REAL_ITEMS)
class RealAppointments(harness.Case):
    def setUp(self):
        super().setUp()
        self.folder = self.place.folder("Work/Mail/Calendar")
        for message in REAL:
            (self.folder / message.name).write_bytes(message.read_bytes())
        self.expected = {content["subject"]: Expected(content) for content in REAL.values()}

    def assert_are_the_appointments(self, documents):
        arrived = [appointments.fields(document) for document in documents]
        self.assertEqual(len(arrived), len(REAL))
        for item in arrived:
            self.assertRegex(item.pop("PIMID"), "^([0-9A-F]{2}){1,100}$")
            self.assertEqual(item, self.expected[item["Description"]].fields())
        self.assertEqual({item["Description"] for item in arrived}, set(self.expected))

    def test_every_field_arrives_as_independent_readers_find_it(self):
        documents = self.place.read_with_desktop(kind="calendars", TZ=ZONE)
        self.assert_are_the_appointments(document.decode() for document in documents.values())

    def test_a_read_of_changes_brings_the_same_with_a_flag(self):
        out = self.place.path / "changed"
        options = ["read", "calendars", "--changed", harness.windows_path(self.place.path / "map"), "--out",
                   harness.windows_path(out)]
        status, output, errors = self.place.run_desktop(*options, TZ=ZONE)
        self.assertEqual(status, 0, output + errors)
        documents = [file.read_bytes().decode() for file in out.iterdir()]
        self.assertTrue(all("<lFlag>8</lFlag>" in document for document in documents))
        self.assert_are_the_appointments(document.replace("<lFlag>8</lFlag>", "") for document in documents)
        status, output, errors = self.place.run_desktop(*options, TZ=ZONE)
        self.assertEqual((status, output), (0, ""), errors)

    def test_the_series_are_told_in_words(self):
        status, output, errors = self.place.run_desktop("read", "calendars", "--tabs", "--quiet", TZ=ZONE)
        self.assertEqual(status, 0, errors)
        words = {row.split("\t")[2]: row.split("\t")[4] for row in output.splitlines()[1:]}
        self.assertEqual(set(words), set(self.expected))
        changed = [expected for expected in self.expected.values() if expected.pattern["ModifiedInstanceDates"]]
        for expected in changed:
            deleted = len(expected.pattern["DeletedInstanceDates"])
            end = expected.pattern["EndDate"]["local"][:10]
            self.assertTrue(words[expected.content["subject"]].endswith(f" until {end}, {deleted} deleted, 1 changed"), words)

    def read_to(self, name):
        out = self.place.path / name
        status, _, errors = self.place.run_desktop("read", "calendars", "--out", harness.windows_path(out), TZ=ZONE)
        self.assertEqual(status, 0, errors)
        return [harness.windows_path(file) for file in out.iterdir()], {
            item.pop("Description"): item for item in (appointments.fields(file.read_text(encoding="utf-8"))
                                                       for file in out.iterdir())}

    def test_written_back_they_lose_their_exceptions_and_little_else(self):
        files, before = self.read_to("before")
        converted = self.place.path / "converted"
        status, _, errors = self.place.run_desktop("convert", "--out", harness.windows_path(converted), *files, TZ=ZONE)
        self.assertEqual(status, 0, errors)
        with_exceptions = [item for item in before.values() if "ExceptionRule" in item]
        self.assertEqual((errors.count("warning:"), errors.count("exceptions")), (len(with_exceptions),) * 2, errors)
        status, output, errors = self.place.run_desktop("write", "calendars", "--tabs",
                                                        *map(harness.windows_path, converted.iterdir()), TZ=ZONE)
        self.assertEqual((status, output.count("\nwritten\t")), (0, len(REAL)), errors)
        after = self.read_to("after")[1]
        for item in [*before.values(), *after.values()]:
            del item["lastModifiedTime"]
        for item in before.values():
            item.pop("ExceptionRule", None)
            # Blanks around a text do not come through.
            item["Body"] = item["Body"].strip(" \t\n")
        self.assertEqual(after, before)

    def test_the_files_stay_as_they_are(self):
        self.place.read_with_desktop(kind="calendars")
        self.assertEqual({file.name: file.read_bytes() for file in self.folder.iterdir()},
                         {message.name: message.read_bytes() for message in REAL})


if __name__ == "__main__":
    harness.run()
