"""Documents, identifiers and pictures of somebody who means harm: the agent does what is documented and goes on."""

import harness
from contact_fields import fields
from hostile_case import MEGABYTE, DocumentTests, HostileCase, IdentifierTests
from message_case import MessageCase
from writing_case import ADD, ADDRESS_SET, CHANGE, PICTURE, document

JPEG = b"\xFF\xD8\xFF" + bytes(i % 251 for i in range(MEGABYTE)) + b"\xFF\xD9"


class Documents(DocumentTests, MessageCase):
    TEXT, TEXT_PLACE = "BusinessPobox", (ADDRESS_SET, 0x804A)

    def test_any_text_in_every_field_that_means_more_than_a_text(self):
        for text in ("", ";", ";;a;;", "-", "2024-13-45 99:99:99", "99999999999-1-1", "-1-1-1", "%s%n", "a" * 100000,
                     "\u5C71-\u5C71", "\uFFFD", "2024-02-30"):
            with self.subTest(text=text[:20]):
                self.send(document(ADD, LastName="x", Birthday=text, Anniversary=text, Categories=text, CsFolder=text))
                message = self.the_message()
                self.assertEqual({0x3A420040, 0x3A410040} & set(message.tags), set())
                for file in self.place.contacts.iterdir():
                    file.unlink()


class Identifiers(IdentifierTests, MessageCase):
    pass


class Photos(HostileCase, MessageCase):
    def with_picture(self, path):
        """Adds a contact with a picture from that path. Gives the pictures that it has."""
        for file in self.place.contacts.iterdir():
            file.unlink()
        self.add(LastName="x", PICPath=path)
        message = self.the_message()
        pictures = [part.tags[PICTURE] for part in message.attachments.values()]
        self.assertEqual(message.named[(ADDRESS_SET, 0x8015)], bool(pictures))
        return pictures

    def write_picture(self, path, content=JPEG):
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(content)
        return harness.windows_path(path)

    def test_a_path_that_leads_to_no_file_gives_no_picture(self):
        here = harness.windows_path(self.place.path)
        for path in (here + "\\missing.jpg", here, here + "\\", "Z:\\", "Z:", "x" * 400, here + "\\" + "x" * 400, "NUL",
                     "CON", "\\\\.\\pipe\\MapiServer64", here + "\\*.jpg", "|<>", "\\\\?\\", "http://127.0.0.1/x.jpg"):
            with self.subTest(path=path[:60]):
                self.assertEqual(self.with_picture(path), [])

    def test_a_path_that_leads_nowhere_takes_the_old_picture_away(self):
        path = self.write_picture(self.place.path / "old.jpg")
        identifier = self.add(LastName="x", PICPath=path)
        self.assertEqual(len(self.the_message().attachments), 1)
        self.send(document(CHANGE, identifier, LastName="x", PICPath=path + "missing"))
        message = self.the_message()
        self.assertEqual((message.attachments, message.named[(ADDRESS_SET, 0x8015)]), ({}, False))

    def test_a_path_of_400_characters_is_taken_if_the_system_opens_it(self):
        base = self.place.path / "deep"
        room = 400 - len(harness.windows_path(base)) - 1
        path = base / ("d" * 150) / ("e" * (room - 151 - 8)) / "pic.jpg"
        windows_path = self.write_picture(path)
        self.assertEqual(len(windows_path), 400)
        # The limit of the system is 259 without the prefix for long paths, and Wine has none.
        self.assertIn(self.with_picture(windows_path), ([], [JPEG]))
        self.assertEqual(self.with_picture("\\\\?\\" + windows_path), [JPEG])

    def test_20_megabytes_go_in_and_come_out(self):
        content = JPEG * 20
        path = self.write_picture(self.place.path / "large.jpg", content)
        self.assertEqual(self.with_picture(path), [content])
        [document_read] = self.place.run_client("logon", "read", "logoff")[1]
        file = self.place.host_path(fields(document_read)["PICPath"])
        self.addCleanup(file.unlink)
        self.assertEqual(file.read_bytes(), content)

    def test_what_is_no_picture_is_taken_as_it_is(self):
        for content in (b"", b"x", b"<script>", bytes(1023), bytes(1024), bytes(1025)):
            self.assertEqual(self.with_picture(self.write_picture(self.place.path / "odd.jpg", content)), [content])


if __name__ == "__main__":
    harness.run()
