"""A place for tests of the lists that the agent writes to files."""

import shutil
import xml.etree.ElementTree

import harness
from contact_fields import fields, tag_line

# Names of files beyond ASCII need a locale that has them.
LOCALE = {"LANG": "C.UTF-8", "LC_ALL": "C.UTF-8"}


class ListCase(harness.Case):
    """A place whose agent writes its lists to a folder of the test's own."""

    def setUp(self):
        super().setUp()
        self.xml_path = self.place.path.name
        self.place.settings(XMLPath=self.xml_path, subfolder="false")
        self.documents = self.place.application_data() / self.xml_path
        self.addCleanup(self.remove_documents)

    def remove_documents(self):
        if self.documents.is_dir():
            shutil.rmtree(self.documents)
        elif self.documents.exists():
            self.documents.unlink()

    def desktop(self, *arguments, **more):
        """Runs the desktop program, which has to succeed."""
        status, output, errors = self.place.run_desktop(*arguments, **(LOCALE | more))
        self.assertEqual(status, 0, output + errors)
        return output

    def refused(self, expected, *arguments, **more):
        """Runs the desktop program, which has to fail without any output. Gives its message."""
        status, output, errors = self.place.run_desktop(*arguments, **(LOCALE | more))
        self.assertEqual((status, output), (expected, ""), errors)
        self.assertRegex(errors, r"\Azebdesk: [^\n]+\n\Z")
        return errors

    def folder_document(self, *options):
        return xml.etree.ElementTree.fromstring(self.desktop("folders", "--xml", *options).encode())

    def identifier(self, *path):
        """The identifier of a folder by the names on the way from its store on."""
        node = self.folder_document()
        for name in path:
            [node] = [child for child in node.findall("node") if child.findtext("fname") == name]
        return node.findtext("id")

    def make_contact(self, folder, surname):
        """Moves a new contact to a folder."""
        self.place.make_contacts([[tag_line("3A11001F", surname)]])
        [file] = self.place.contacts.glob("*.msg")
        file.rename(self.place.folder(folder) / f"{surname}.msg")

    def surnames(self, *options):
        return surnames(document.decode() for document in self.place.read_with_desktop(*options).values())


def surnames(documents):
    return sorted(fields(document)["LastName"] for document in documents)
