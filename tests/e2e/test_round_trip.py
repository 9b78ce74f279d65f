"""Contacts that are written with every field: each comes back and stands in the message."""

import datetime
import os
import re
import unittest.mock
import xml.etree.ElementTree

import harness
from contact_fields import ADDRESS, fields, named_line, parse, tag_line
from message_case import JPEG, MessageCase
from writing_case import (ADD, ADDRESS_SET, CHANGE, KEYWORDS, LAST_MODIFICATION_TIME, PICTURE, SERVICES, TEXT_FIELDS,
                          document, stored)

# A text of every length class and script in every field; names are given, since more is made of them.
TEXTS = {name: f"{name} <&> \u00E4\u5C71\U0001F600 {number}" for number, (name, _, _) in enumerate(TEXT_FIELDS)}
TEXTS |= {"FirstName": "\u00C4nn\u00E4", "MiddleName": "Maria  Sofia", "LastName": "<Doe & S\u00F6hne>",
          "Body": "First line\r\n\tsecond \u5C71\r\n" * 4000 + "end"}
NAME = "\u00C4nn\u00E4 Maria  Sofia <Doe & S\u00F6hne>"
INITIALS = "\u00C4.M. .S.<."
# What a write makes of an address beside the address itself.
MAIL_COMPANIONS = {"Email1": (0x8080, 0x8082, 0x8083, 0x8084), "Email2": (0x8090, 0x8092, 0x8093, 0x8094),
                   "Email3": (0x80A0, 0x80A2, 0x80A3, 0x80A4)}


def normal(text):
    return text.replace("\r\n", "\n")


def filetime(*moment):
    """A moment in UTC as the store has it."""
    return (datetime.datetime(*moment) - datetime.datetime(1601, 1, 1)) // datetime.timedelta(microseconds=1) * 10


# The dates of a contact that is written in Japan, nine hours ahead of UTC the whole year: the midnight there, and the same
# nine hours later.
DATES = {0x3A420040: filetime(1984, 2, 28, 15), 0x3A410040: filetime(2012, 6, 15, 15)}
LOCAL_DATES = {0x80DE: filetime(1984, 2, 29), 0x80DF: filetime(2012, 6, 16)}
HAS_ATTACHMENT = 0x0E1B000B
JOB_TITLE = 0x3A17001F


class RoundTrip(MessageCase):
    def setUp(self):
        super().setUp()
        zone = unittest.mock.patch.dict(os.environ, TZ="Asia/Tokyo")
        zone.start()
        self.addCleanup(zone.stop)

    def convert_all_read(self):
        """Reads the contacts into files and converts them. Gives the documents to write by last name."""
        out = self.place.path / "out"
        status, _, errors = self.place.run_desktop("read", "contacts", "--out", harness.windows_path(out))
        self.assertEqual(status, 0, errors)
        documents = [self.place.run_desktop("convert", harness.windows_path(file))[1] for file in out.glob("*.xml")]
        return {xml.etree.ElementTree.fromstring(one.encode()).findtext("LastName"): one for one in documents}

    def write_every_field(self):
        return self.write_one(document(
            ADD, **TEXTS, FullName="Somebody Else", PrimaryNumber="+1 425 555 0100", Categories="a b;\u53CB\u9054",
            Birthday="1984-02-29", Anniversary="2012-06-16", SKYPE="anna.example", PICPath=self.picture(),
            CsFolder="Nowhere"))

    def test_every_field_comes_back_under_its_other_name(self):
        _, identifier = self.write_every_field()
        document_read = self.read_one()
        contact = fields(document_read)
        self.assertEqual({out: contact[out] for _, out, _ in TEXT_FIELDS},
                         {out: normal(TEXTS[name]) for name, out, _ in TEXT_FIELDS})
        self.assertEqual((contact["SP-CATEGORIES"], contact["Birthday"], contact["Anniversary"], contact["SP-IMADRESS"]),
                         ("a b;\u53CB\u9054", "1984-02-29", "2012-06-16", "anna.example"))
        self.assertEqual(parse(document_read).find("SP-IMADRESS").get("IMType"), "4026")
        self.assertEqual((contact["PIMID"], contact["CsFolder"]), (identifier, "Contacts"))
        self.assertEqual(self.take_picture(contact), JPEG)
        # The name is made of its parts, and the primary number belongs to nobody who writes.
        self.assertEqual(contact["FULLNAME"], NAME)
        self.assertNotIn("PrimaryNumber", contact)

    def test_every_field_stands_in_the_message(self):
        self.write_every_field()
        message = self.the_message()
        self.assertEqual({name: stored(message, field) for name, _, field in TEXT_FIELDS}, TEXTS)
        for name, numbers in MAIL_COMPANIONS.items():
            self.assertEqual([message.named[(ADDRESS_SET, number)] for number in numbers],
                             [TEXTS[name], "SMTP", TEXTS[name], TEXTS[name]])
        self.assertEqual(message.named[(ADDRESS_SET, 0x8062)], "SKYPE:anna.example")
        self.assertEqual(message.named[KEYWORDS], ["a b", "\u53CB\u9054"])
        self.assertEqual((message.tags[0x001A001F], message.tags[0x3A0A001F]), ("IPM.Contact", INITIALS))
        self.assertEqual([message.tags[tag] for tag in (0x3001001F, 0x0037001F, 0x0E1D001F)], [NAME] * 3)
        self.assertEqual(message.named[(ADDRESS_SET, 0x8005)], NAME)
        self.assertEqual((message.named[(ADDRESS_SET, 0x8015)], message.tags[HAS_ATTACHMENT]), (True, True))
        self.assertEqual({tag: message.tags[tag] for tag in DATES}, DATES)
        self.assertEqual({number: message.named[(ADDRESS_SET, number)] for number in LOCAL_DATES}, LOCAL_DATES)
        # Nothing but these stands under a name, and neither the primary number nor the row's business address.
        numbers = {0x8005, 0x8015, 0x8062, 0x80DE, 0x80DF, *(n for four in MAIL_COMPANIONS.values() for n in four)}
        numbers |= {field for _, _, field in TEXT_FIELDS if field <= 0xFFFF}
        self.assertEqual(set(message.named), {(ADDRESS_SET, number) for number in numbers} | {KEYWORDS})
        self.assertEqual({0x3A1A001F, *range(0x3A26001F, 0x3A2C001F, 0x10000)} & set(message.tags), set())

    def test_the_picture_is_described_as_one(self):
        self.write_every_field()
        [attachment] = self.the_message().attachments.values()
        expected = {0x3001001F: "ContactPicture.jpg", 0x37020102: b"", 0x3703001F: ".jpg", 0x3704001F: "", 0x37050003: 1,
                    0x3707001F: "ContactPicture.jpg", 0x370B0003: -1, 0x37140003: 0, 0x7FFA0003: 0, 0x7FFD0003: 0,
                    0x7FFE000B: False, 0x7FFF000B: True, PICTURE: JPEG}
        self.assertEqual({tag: attachment.tags.get(tag) for tag in expected}, expected)
        self.assertEqual(attachment.tags[0x7FFB0040], attachment.tags[0x7FFC0040])

    def test_every_instant_messaging_service(self):
        rows = self.write(*(document(ADD, LastName=name, **{name: f"{name}@x"}) for name, _, _ in SERVICES))
        self.assertEqual([row[0] for row in rows], ["written"] * len(SERVICES))
        found = {name: message.named[(ADDRESS_SET, 0x8062)] for name, message in self.messages().items()}
        self.assertEqual(found, {name: f"{prefix}{name}@x" for name, prefix, _ in SERVICES})
        read = [parse(content.decode()) for content in self.place.read_with_desktop().values()]
        self.assertEqual({contact.findtext("LastName"): (contact.find("SP-IMADRESS").get("IMType"),
                                                         contact.findtext("SP-IMADRESS")) for contact in read},
                         {name: (number, f"{name}@x") for name, _, number in SERVICES})

    def test_a_contact_is_read_edited_and_written_back(self):
        _, identifier = self.write_every_field()
        before = self.the_message()
        [converted] = self.convert_all_read().values()
        root = xml.etree.ElementTree.fromstring(converted.encode())
        self.assertEqual((root.findtext("lFlag"), root.findtext("PIMID")), (str(CHANGE), identifier))
        edited = re.sub("(?<=<JobTitle>).*(?=</JobTitle>)", "Edited", converted)
        self.assertEqual(self.write_one(edited)[1], identifier)
        after = self.the_message()
        changed = {tag for tag in before.tags | after.tags if before.tags.get(tag) != after.tags.get(tag)}
        self.assertEqual(changed, {JOB_TITLE, LAST_MODIFICATION_TIME})
        self.assertEqual(after.tags[JOB_TITLE], "Edited")
        self.assertEqual([part.tags[PICTURE] for part in after.attachments.values()], [JPEG])

    def mail(self, message):
        """What a message has of its e-mail addresses, by number."""
        return {number: value for (_, number), value in message.named.items()
                if isinstance(number, int) and 0x8080 <= number <= 0x80AF}

    def test_what_a_contact_loses_of_its_addresses_when_it_is_read_and_written_back(self):
        """Documents carry one text an address, so a write cannot give back what stood beside it."""
        readable = "anna@example.com"
        self.place.make_contacts([[
            tag_line("3A11001F", "mixed"),
            # One of the mail system, one with a name beside it, and one whose type is missing, so that no read finds it.
            named_line("8080", "Anna Example"), named_line("8082", "EX"), named_line("8083", "/o=example/cn=anna"),
            named_line("8084", readable), f"namedbytes {ADDRESS} 8085 00010203",
            named_line("8090", "Anna at home"), named_line("8092", "SMTP"), named_line("8093", "home@example.com"),
            named_line("8094", "Anna at home (home@example.com)"),
            named_line("80A0", "Lost"), named_line("80A3", "lost@example.com"), named_line("80A4", "lost@example.com")],
            # One of the mail system without a readable form, and one of another system.
            [tag_line("3A11001F", "bare"), named_line("8082", "EX"), named_line("8083", "/o=example/cn=bare"),
             named_line("8092", "FAX"), named_line("8093", "Anna@+1 425 555 0100")]])
        converted = self.convert_all_read()
        for name in ("mixed", "bare"):
            self.write_one(converted[name])
        messages = self.messages()
        self.assertEqual(self.mail(messages["mixed"]), {
            0x8080: readable, 0x8082: "SMTP", 0x8083: readable, 0x8084: readable, 0x8085: bytes([0, 1, 2, 3]),
            0x8090: "home@example.com", 0x8092: "SMTP", 0x8093: "home@example.com", 0x8094: "home@example.com"})
        number = "Anna@+1 425 555 0100"
        self.assertEqual(self.mail(messages["bare"]), {0x8090: number, 0x8092: "SMTP", 0x8093: number, 0x8094: number})

    def test_a_write_removes_what_the_document_lacks_and_nothing_else(self):
        self.place.make_contacts([[tag_line("3A11001F", "old"), tag_line("3A1A001F", "primary"),
                                   tag_line("3A18001F", "department")]])
        self.write_every_field()
        for content in list(self.place.read_with_desktop().values()):
            contact = fields(content.decode())
            if "PICPath" in contact:
                self.take_picture(contact)
            self.write_one(document(CHANGE, contact["PIMID"], LastName=f"now{len(contact)}"))
        for message in self.messages().values():
            left = {name for name, _, field in TEXT_FIELDS if stored(message, field) is not None}
            self.assertEqual(left, {"LastName"})
            self.assertEqual(set(message.named), {(ADDRESS_SET, 0x8005), (ADDRESS_SET, 0x8015)})
            self.assertFalse(message.named[(ADDRESS_SET, 0x8015)])
            self.assertEqual((message.attachments, set(DATES) & set(message.tags)), ({}, set()))
            self.assertFalse(message.tags.get(HAS_ATTACHMENT))
        kept = [(message.tags.get(0x3A1A001F), message.tags.get(0x3A18001F)) for message in self.messages().values()]
        self.assertEqual(sorted(kept, key=str), [("primary", "department"), (None, None)])

    def test_blanks_at_the_ends_of_a_text_are_dropped_and_a_text_of_blanks_is_none(self):
        # What stands in the document, and what becomes of it; None is no property.
        texts = [("  a  b  ", "a  b"), ("\n\ta\n\tb\n", "a\n\tb"), ("&#32;&#9;a&#13;&#10;", "a"), (" <!-- c --> a", "a"),
                 ("a<!-- c -->  b", "a  b"), ("a\r\nb", "a\nb"), ("a&#13;&#10;b", "a\r\nb"), (" &amp; ", "&"),
                 ("   ", None), ("\t\r\n", None), ("&#32;", None), ("", None),
                 # Only the four blanks of XML count.
                 ("\u00A0a\u3000", "\u00A0a\u3000"), ("\u3000", "\u3000"), ("&#160;", "\u00A0")]
        self.place.start_agent()
        self.send(*(document(ADD, LastName=f"{number}").replace("</Contact>", f"<JobTitle>{text}</JobTitle></Contact>")
                    for number, (text, _) in enumerate(texts)))
        found = {int(name): message.tags.get(JOB_TITLE) for name, message in self.messages().items()}
        self.assertEqual(found, {number: expected for number, (_, expected) in enumerate(texts)})


if __name__ == "__main__":
    harness.run()
