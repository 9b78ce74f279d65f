"""Texts that no user can type: the documents parse all the same and hold every character that a document can hold."""

import random

import contact_fields
import harness
from contact_fields import fields, keywords_line, named_line, normal, tag_line

# One text for each kind of trouble. A string of MAPI ends with its first U+0000, so that one cannot come.
TEXTS = {
    "control characters": "a" + "".join(map(chr, range(1, 32))) + "\x7f\x80\x9fb",
    "lone surrogates": "a\ud800b\udc00c\udbffd\udfffe\udc00\ud800f",
    "pairs and noncharacters": "a\U0001F600b\ufffec\uffffd\ufdd0e\U0001FFFFf\ufffd",
    "markup": "<a b='c' d=\"e\">&amp;&#1;&undefined;]]></a><!-- --><?x?><![CDATA[",
    "white space": " \t x \t ",
    "byte order marks and directions": "\ufeffa\u202eb\u2028c\u0085d",
    "format directives": "%s%n%d%08X%%\\n\\0",
}


def is_permitted(character):
    """Whether XML 1.0 has the character."""
    code = ord(character)
    return (code in (9, 10, 13) or 0x20 <= code <= 0xD7FF or 0xE000 <= code <= 0xFFFD or
            0x10000 <= code <= 0x10FFFF)


def permitted(text):
    """What a document can hold of a text."""
    return normal("".join(character for character in text if is_permitted(character)))


def contact(text):
    """A contact with the text in every field."""
    lines = [tag_line(tag, text) for tag in contact_fields.ROW_ELEMENTS]
    lines += [named_line(number, text) for number in contact_fields.MESSAGE_ELEMENTS]
    for number in contact_fields.MAIL_ELEMENTS:
        lines += [named_line(f"{number - 1:04X}", "SMTP"), named_line(f"{number:04X}", text)]
    return lines + [tag_line(contact_fields.BODY, text), named_line(contact_fields.IM_ADDRESS, text),
                    keywords_line(text)]


# Every field but the identity and the times.
ELEMENTS = [*contact_fields.ROW_ELEMENTS.values(), *contact_fields.MESSAGE_ELEMENTS.values(), "SP-BODY",
            *contact_fields.MAIL_ELEMENTS.values(), "SP-IMADRESS", "SP-CATEGORIES"]


class HostileTexts(harness.Case):
    def assert_arrives(self, texts):
        self.place.make_contacts([contact(text) for text in texts])
        self.place.start_agent()
        lines, documents = self.place.run_client("logon", "read", "logoff")
        self.assertEqual(lines, ["logon 0", f"read 0 {len(texts)}"])
        arrived = sorted(documents, key=lambda document: fields(document)["PIMID"])
        missing = [permitted(text) for text in texts]
        for document in arrived:
            values = fields(document)
            self.assertIn(values["LastName"], missing)
            missing.remove(values["LastName"])
            for element in ELEMENTS:
                self.assertEqual(values[element], values["LastName"], element)
        self.assertEqual(missing, [])

    def test_each_kind_of_trouble(self):
        self.assert_arrives(list(TEXTS.values()))

    def test_random_units(self):
        # The same at every run.
        source = random.Random(64)
        texts = ["".join(chr(source.randrange(1, 0x10000)) for _ in range(500)) for _ in range(5)]
        self.assert_arrives([join_pairs(text) for text in texts])

    def test_100000_characters_in_every_field(self):
        self.assert_arrives(["0123456789" * 10000, "<&\r\n>\x01\"'\u65e5\t" * 10000])

    def test_the_desktop_program_writes_them_as_utf_8(self):
        texts = list(TEXTS.values())
        self.place.make_contacts([contact(text) for text in texts])
        documents = self.place.read_with_desktop().values()
        self.assertEqual(sorted(fields(document.decode("utf-8"))["LastName"] for document in documents),
                         sorted(permitted(text) for text in texts))


def join_pairs(text):
    """The text with surrogates that happen to make a pair taken as the character that they are."""
    return text.encode("utf-16-le", "surrogatepass").decode("utf-16-le", "surrogatepass")


if __name__ == "__main__":
    harness.run()
