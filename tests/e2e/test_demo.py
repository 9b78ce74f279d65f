"""The demo as its users run it: what it shows of writing is what became of the contacts and appointments."""

import os
import re
import subprocess
import tempfile
import unittest
import xml.etree.ElementTree

import harness
from message_case import Message
from writing_case import LAST_NAME

DEMO = harness.ROOT / "build/demo"
PEOPLE = ["Okafor", "Pe\u00F1a Ruiz", "\u10D1\u10D4\u10E0\u10D8\u10EB\u10D4"]
FIRST_NAME, JOB_TITLE, SUBJECT = 0x3A06001F, 0x3A17001F, 0x0037001F


class Demo(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        # To a file: programs that Wine starts for itself keep a pipe open.
        with tempfile.TemporaryFile() as output:
            environment = {**os.environ, "DEMO_CONTACTS": "5"}
            demo = subprocess.run([str(harness.ROOT / "tools/demo.sh")], env=environment, stdin=subprocess.DEVNULL,
                                  stdout=output, stderr=subprocess.STDOUT, timeout=harness.PATIENCE)
            output.seek(0)
            cls.text = output.read().decode()
        if demo.returncode != 0:
            raise AssertionError(f"the demo ended with {demo.returncode}: {cls.text}")
        # What each command showed, in order.
        parts = re.split(r"^\$ (.*)\n", cls.text, flags=re.MULTILINE)
        cls.shown = list(zip(parts[1::2], parts[2::2]))

    def outputs(self, start):
        """What was shown behind the commands that begin so."""
        return [output for command, output in self.shown if command.startswith(start)]

    def rows(self, output):
        """The first words of a table's rows."""
        return [line.split()[0] for line in output.splitlines()[1:] if line.strip() and not line.startswith("\x1b")]

    def messages(self):
        """The contacts in the store when the demo has ended."""
        return [Message(file) for file in (DEMO / "store/Sample").rglob("Contacts/*.msg")]

    def identifier(self):
        return xml.etree.ElementTree.parse(DEMO / "edited.xml").findtext("PIMID")

    def test_people_are_added(self):
        [output] = self.outputs("zebdesk write contacts people/")
        self.assertEqual(self.rows(output), ["written"] * len(PEOPLE))
        names = [message.tags.get(LAST_NAME) for message in self.messages()]
        # One of them is deleted later on.
        self.assertEqual([names.count(name) for name in PEOPLE], [0, 1, 1])

    def test_one_is_changed(self):
        [output] = self.outputs("zebdesk write contacts edited.xml")
        self.assertEqual(self.rows(output), ["written"])
        self.assertIn(self.identifier(), output)
        changed, _ = self.outputs("zebdesk read contacts --changed")
        self.assertRegex(changed, r"(?m)^changed +Chidinma Okafor ")
        self.assertIn("contacts: 0 new, 1 changed, 0 deleted\n", changed)
        [found] = self.outputs("grep JobTitle changes/")
        self.assertIn("<JobTitle>Head of the gauging station</JobTitle>", found)
        # Nobody else has become that.
        self.assertEqual([message.tags[FIRST_NAME] for message in self.messages()
                          if message.tags.get(JOB_TITLE) == "Head of the gauging station"], [])

    def test_and_deleted(self):
        [output] = self.outputs("zebdesk write contacts --delete")
        self.assertEqual(self.rows(output), ["deleted"])
        _, deleted = self.outputs("zebdesk read contacts --changed")
        self.assertRegex(deleted, f"(?m)^deleted +{self.identifier()}")
        self.assertIn("contacts: 0 new, 0 changed, 1 deleted\n", deleted)
        counts = [output.split("\n")[0] for command, output in self.shown if command == "zebdesk count"]
        self.assertEqual(counts, ["contacts: 21", "contacts: 20"])

    def test_a_series_is_added_changed_and_deleted(self):
        identifier = xml.etree.ElementTree.parse(DEMO / "series.xml").findtext("PIMID")
        for what, result in (("appointments/", "written"), ("series.xml", "written"), ("--delete", "deleted")):
            [output] = self.outputs(f"zebdesk write calendars {what}")
            self.assertEqual(self.rows(output), [result])
            self.assertIn(identifier, output)
        new, changed, deleted = self.outputs("zebdesk read calendars --changed")
        self.assertRegex(new, r"(?m)^new +2026-09-04 07:30 .* Lower weir +every week on Fri until 2026-12-25 ")
        self.assertRegex(changed, r"(?m)^changed +2026-09-04 07:30 .* Upper weir +every 2 weeks on Fri until 2026-12-25 ")
        self.assertRegex(deleted, f"(?m)^deleted +{identifier}")
        counts = [output.split("\n")[0] for output in self.outputs("zebdesk count calendars")]
        self.assertEqual(counts, ["calendars: 21"] * 2)
        subjects = [Message(file).tags.get(SUBJECT) for file in (DEMO / "store/Sample").rglob("Calendar/*.msg")]
        self.assertIn("Chorprobe", subjects)
        self.assertNotIn("Reading of the gauge", subjects)

    def test_what_a_series_would_lose_is_told(self):
        [output] = [output for command, output in self.shown if command.endswith("> choir.xml")]
        self.assertIn("(4 deleted, 1 changed)", output)
        self.assertNotIn("ExceptionRule", (DEMO / "choir.xml").read_text(encoding="utf-8"))

    def test_its_documents_name_the_pictures_beside_them(self):
        pictures = sorted((DEMO / "documents").glob("*.jpg"))
        self.assertEqual(len(pictures), 8)
        paths = [xml.etree.ElementTree.parse(file).findtext("PICPath") for file in (DEMO / "documents").glob("*.xml")]
        self.assertEqual(sorted(path for path in paths if path), [harness.windows_path(file) for file in pictures])


if __name__ == "__main__":
    harness.run()
