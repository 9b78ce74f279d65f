"""A place for tests that read appointments, convert them and write them back."""

import os
import unittest.mock

import harness
from calendar_case import CalendarWritingCase

# The zone of the machine.
ZONE = "Europe/Berlin"
BERLIN = "GMT:-60;DST:60;STD:0000100503000000;DLT:0000030502000000"
EXCEPTIONS = "exceptions of its series cannot be written"
OTHER_ZONE = "its series is of another time zone"
WHOLE_DAYS = "not from midnight to midnight"


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
