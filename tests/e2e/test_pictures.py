"""Pictures of contacts that are read into files: they lie beside the documents, which stay true when the agent is another one."""

import xml.etree.ElementTree

import harness
from message_case import JPEG, MessageCase
from writing_case import ADD, CHANGE, PICTURE, document

OUTPUT_FAILED = 6


class Pictures(MessageCase):
    def setUp(self):
        super().setUp()
        self.out = self.place.path / "out & in"
        self.left_before = self.agents_files()
        self.addCleanup(lambda: [file.unlink() for file in self.agents_files() - self.left_before])

    def content(self, text):
        """A picture like no other one."""
        return JPEG + text.encode()

    def picture_of(self, text):
        """A file with the picture of that text. Gives its Windows path."""
        path = self.place.path / f"{text}.jpg"
        path.write_bytes(self.content(text))
        return harness.windows_path(path)

    def add_all(self, *names):
        """Adds contacts with a picture each. Gives their identifiers."""
        rows = self.write(*(document(ADD, LastName=name, PICPath=self.picture_of(name)) for name in names))
        self.assertEqual([row[0] for row in rows], ["written"] * len(names))
        return [row[2] for row in rows]

    def read(self, *options, status=0):
        """Reads the contacts into the folder. Gives what went to standard error."""
        code, output, errors = self.place.run_desktop("read", "contacts", "--out", harness.windows_path(self.out), *options)
        self.assertEqual(code, status, output + errors)
        return errors

    def documents(self):
        """The documents in the folder: each file with its root element."""
        return {file: xml.etree.ElementTree.parse(file).getroot() for file in self.out.glob("*.xml")}

    def assert_each_has_its_own(self, expected):
        """The documents name the pictures beside them. `expected` has the text of each by last name, or None."""
        found = {}
        for file, root in self.documents().items():
            path = root.findtext("PICPath")
            beside = file.with_suffix(".jpg")
            self.assertEqual(path, harness.windows_path(beside) if beside.exists() else None)
            found[root.findtext("LastName")] = beside.read_bytes() if beside.exists() else None
        self.assertEqual(found, {name: text and self.content(text) for name, text in expected.items()})
        # Nothing else is there.
        self.assertEqual(len(list(self.out.iterdir())), len(found) + len([text for text in expected.values() if text]))

    def agents_files(self):
        """The pictures in the agent's own folder."""
        return set((self.place.application_data() / "Outlook").glob("PIC*.jpg"))

    def test_they_move_to_the_documents(self):
        self.add_all("Anna", "Berta")
        self.write(document(ADD, LastName="Carla"))
        self.read()
        self.assert_each_has_its_own({"Anna": "Anna", "Berta": "Berta", "Carla": None})
        self.assertEqual(self.agents_files() - self.left_before, set())

    def test_a_contact_that_was_read_is_written_back_with_its_own_one_by_another_agent(self):
        names = ["Anna", "Berta", "Carla"]
        self.add_all(*names)
        self.read()
        self.place.run_desktop("shutdown")
        # The next agent numbers its pictures anew, and has more of them.
        self.write(*(document(ADD, LastName=name, PICPath=self.picture_of(name)) for name in ("Dora", "Edda")))
        status, _, errors = self.place.run_desktop("read", "contacts", "--xml")
        self.assertEqual(status, 0, errors)
        documents = [harness.windows_path(file) for file in self.documents()]
        converted = self.place.path / "converted"
        status, _, errors = self.place.run_desktop("convert", "--out", harness.windows_path(converted), *documents)
        self.assertEqual(status, 0, errors)
        self.place.run_desktop("shutdown")
        rows = self.write(*(file.read_text(encoding="utf-8").replace("<LastName>", "<JobTitle>Edited</JobTitle><LastName>")
                            for file in converted.iterdir()))
        self.assertEqual([row[0] for row in rows], ["written"] * len(names))
        messages = self.messages()
        self.assertEqual({name: messages[name].tags.get(0x3A17001F) for name in messages},
                         {**{name: "Edited" for name in names}, "Dora": None, "Edda": None})
        for name, message in messages.items():
            self.assertEqual([part.tags[PICTURE] for part in message.attachments.values()], [self.content(name)])

    def test_of_a_read_of_changes_they_come_change_and_go_with_the_documents(self):
        changes = ("--changed", harness.windows_path(self.place.path / "changes.map"))
        anna, berta, carla = self.add_all("Anna", "Berta", "Carla")
        self.read(*changes)
        self.assert_each_has_its_own({"Anna": "Anna", "Berta": "Berta", "Carla": "Carla"})
        self.place.run_desktop("shutdown")
        self.write(document(CHANGE, anna, LastName="Anna", PICPath=self.picture_of("new")),
                   document(CHANGE, berta, LastName="Berta"))
        self.delete(carla)
        self.read(*changes)
        # Of the deletion there is a document without a name.
        self.assert_each_has_its_own({"Anna": "new", "Berta": None, None: None})

    def test_without_files_they_stay_with_the_agent(self):
        self.add_all("Anna")
        status, output, errors = self.place.run_desktop("read", "contacts", "--xml")
        self.assertEqual(status, 0, errors)
        contact = {element.tag: element.text for element in xml.etree.ElementTree.fromstring(output.encode())}
        self.assertRegex(contact["PICPath"], r"\AC:\\.*\\Outlook\\PIC\d+\.jpg\Z")
        self.assertEqual(self.take_picture(contact), self.content("Anna"))

    def test_one_that_cannot_be_copied_loses_no_document(self):
        self.add_all("Anna", "Berta")
        self.read()
        [file] = [file for file, root in self.documents().items() if root.findtext("LastName") == "Anna"]
        beside = file.with_suffix(".jpg")
        beside.unlink()
        (beside / "in the way").mkdir(parents=True)
        changes = harness.windows_path(self.place.path / "changes.map")
        for options in ((), ("--changed", changes)):
            errors = self.read(*options, status=OUTPUT_FAILED)
            self.assertIn("1 of the pictures could not be copied", errors)
            found = {root.findtext("LastName"): root.findtext("PICPath") for root in self.documents().values()}
            self.assertEqual(sorted(found), ["Anna", "Berta"])
            # The agent's own file is still there.
            self.assertEqual(self.take_picture({"PICPath": found["Anna"]}), self.content("Anna"))
            self.assertIn(found["Anna"], errors)
        # What did not come whole comes again.
        self.assertFalse((self.place.path / "changes.map").exists())


if __name__ == "__main__":
    harness.run()
