"""The 32-bit desktop program with the 64-bit agent."""

import unittest

import appointments
import harness
from appointments import Change, Series, appointment, minutes
from contact_fields import BODY, fields, tag_line

RUNNER = "run-wine32.sh"
PROGRAM = "zebdesk32.exe"
LONG = "y" * 100000
MONDAY, DAY, WEEK = minutes(2011, 3, 7), 1440, 7 * 1440
TEXTS = ["plain", "\u65e5\u672c\u8a9e \U0001F600", "x" * 2000]


class Desktop32(harness.Case):
    def setUp(self):
        super().setUp()
        if not (self.place.bin / PROGRAM).exists():
            raise unittest.SkipTest(f"{PROGRAM} IS NOT BUILT (cmake --preset desktop32)")
        process = self.place.start(self.place.bin / PROGRAM, "--help", runner=RUNNER)
        status, output, errors = self.place.finish(process)
        if status == harness.SKIPPED:
            raise unittest.SkipTest(errors.strip())
        self.assertEqual(status, 0, output + errors)
        self.place.make_contacts([[tag_line("3A11001F", text), tag_line(BODY, LONG)] for text in TEXTS])

    def read32(self):
        return self.place.read_with_desktop(program=PROGRAM, runner=RUNNER)

    def test_it_reads_what_the_64_bit_one_reads(self):
        self.place.start_agent()
        documents = self.read32()
        self.assertEqual(sorted(fields(document.decode())["LastName"] for document in documents.values()),
                         sorted(TEXTS))
        for document in documents.values():
            self.assertEqual(fields(document.decode())["SP-BODY"], LONG)
        self.assertEqual(documents, self.place.read_with_desktop())

    def test_it_reads_the_appointments_that_the_64_bit_one_reads(self):
        changes = [Change(MONDAY + number * WEEK, MONDAY + number * WEEK + DAY + 540, MONDAY + number * WEEK + DAY + 600,
                          subject="\u4f1a " + "x" * 300, location="Elsewhere", delta=5) for number in range(100)]
        series = Series(appointments.WEEKLY, 1, 1, [0x02], deleted=[MONDAY - WEEK, *[change.day for change in changes]],
                        changes=changes)
        self.place.folder("Work/Mail/Calendar")
        self.place.make_items([appointment("Review", location="Room 4", kind=2, series=series, reminder=15),
                               appointment(TEXTS[1], all_day=True), appointment(TEXTS[2])])
        self.place.start_agent()
        documents = self.place.read_with_desktop(kind="calendars", program=PROGRAM, runner=RUNNER)
        found = {item["Description"]: item for item in (appointments.fields(one.decode()) for one in documents.values())}
        self.assertEqual(set(found), {"Review", *TEXTS[1:]})
        self.assertEqual(found["Review"]["ExceptionRule"], series.rule("Review", "Room 4", 15))
        self.assertEqual(documents, self.place.read_with_desktop(kind="calendars"))
        for command in (["count", "calendars"], ["read", "calendars", "--quiet"]):
            shown = self.place.run_desktop(*command, program=PROGRAM, runner=RUNNER)
            self.assertEqual((shown[0], shown[2]), (0, ""), shown)
            self.assertEqual(shown, self.place.run_desktop(*command))
        self.assertEqual(shown[1].count("every week on Mon until 2011-05-04, 1 deleted, 100 changed"), 1)

    def desktop32(self, *arguments):
        """Runs the 32-bit desktop program, which has to succeed. Gives its output."""
        status, output, errors = self.place.run_desktop(*arguments, program=PROGRAM, runner=RUNNER)
        self.assertEqual((status, errors), (0, ""), output)
        return output

    def test_it_writes_an_appointment_that_the_64_bit_one_reads(self):
        self.place.folder("Work/Mail/Calendar")
        self.place.start_agent()
        write = lambda *what: [row.split("\t") for row in self.desktop32("write", "calendars", "--tabs",
                                                                         *what).splitlines()[1:]]
        file = self.place.path / "series.xml"
        elements = {"lFlag": "8", "lCalType": "3", "Description": TEXTS[1], "Location": TEXTS[2], "Body": LONG,
                    "dtStartTime": "03/02/2026 09:00:00", "dtEndTime": "03/02/2026 10:00:00", "lReminderMinutes": "15",
                    "lRecurType": "2", "lRecurInterval": "2", "lRecurWeekMask": "2", "lRecurRepeat": "5"}
        file.write_text("<Calendar>" + "".join(f"<{name}>{text}</{name}>" for name, text in elements.items()) +
                        "</Calendar>", encoding="utf-8")
        [(result, _, _, identifier)] = write(harness.windows_path(file))
        self.assertEqual(result, "written")
        [read] = self.place.read_with_desktop(kind="calendars").values()
        item = appointments.fields(read.decode())
        names = [name for name in elements if name in item and name != "lFlag"]
        self.assertEqual({name: item[name] for name in names}, {name: elements[name] for name in names})
        self.assertEqual((item["PIMID"], len(names)), (identifier, 10))
        # Read, converted and written back by the 32-bit one it is the same still.
        file.write_bytes(read)
        converted = self.place.path / "converted"
        self.desktop32("convert", "--out", harness.windows_path(converted), harness.windows_path(file))
        self.assertEqual(write(harness.windows_path(converted / file.name))[0][0], "written")
        [again] = self.place.read_with_desktop(kind="calendars").values()
        without_time = lambda text: {name: value for name, value in appointments.fields(text.decode()).items()
                                     if name != "lastModifiedTime"}
        self.assertEqual(without_time(again), without_time(read))
        self.assertEqual(write("--delete", identifier)[0][0], "deleted")
        self.assertEqual(self.place.read_with_desktop(kind="calendars"), {})

    def test_it_starts_the_agent_and_ends_it(self):
        self.assertEqual(len(self.read32()), len(TEXTS))
        self.assertEqual(self.place.run_desktop("shutdown", program=PROGRAM, runner=RUNNER), (0, "", ""))
        self.assertIn("Calling RpcMgmtStopServerListening\n", self.place.log())

    def test_an_unknown_profile_is_refused(self):
        status, output, _ = self.place.run_desktop("count", "--profile", "nobody", program=PROGRAM, runner=RUNNER)
        self.assertEqual((status, output), (3, ""))


if __name__ == "__main__":
    harness.run()
