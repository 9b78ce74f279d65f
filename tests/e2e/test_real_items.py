"""A contact that a mail program saved: everything that independent readers find in it arrives under its element.

The file is not part of the project. ZEB_REAL_ITEMS names the folder that holds contactUnicode.msg and
contactUnicode.json.
"""

import datetime
import json
import unittest

import contact_fields
import harness
from contact_fields import date_and_time, date_only, fields, normal

MESSAGE = harness.REAL_ITEMS / "contactUnicode.msg"
DESCRIPTION = harness.REAL_ITEMS / "contactUnicode.json"
# The zone in which the contact was saved. Its birthday is a midnight there.
ZONE = "Asia/Tokyo"
JAPAN = datetime.timezone(datetime.timedelta(hours=9))
COPIES = 500


class Description:
    """What the independent readers found."""

    def __init__(self):
        content = json.loads(DESCRIPTION.read_text(encoding="utf-8"))
        self.tags = {entry["tag"][2:].upper(): entry["value"] for entry in content["properties"]}
        self.named = {int(entry["lid"], 16): entry["value"] for entry in content["named_properties"]
                      if entry["set"] == "PSETID_Address"}
        self.keywords = content["keywords_PS_PUBLIC_STRINGS"]

    def mail_address(self, number):
        kind = self.named.get(number - 1)
        if kind is None:
            return ""
        return self.named.get(number + 1 if kind == "EX" else number, "")

    def fields(self):
        """The elements that a document of the contact has, but for its identity and place."""
        expected = {element: normal(self.tags[tag])
                    for tag, element in contact_fields.ROW_ELEMENTS.items() if tag in self.tags}
        for elements, text in ((contact_fields.DATE_ELEMENTS, date_only), (contact_fields.TIME_ELEMENTS, date_and_time)):
            expected |= {element: text(self.tags[tag]["filetime"], JAPAN)
                         for tag, element in elements.items() if tag in self.tags}
        expected |= {element: normal(self.named.get(int(number, 16), ""))
                     for number, element in contact_fields.MESSAGE_ELEMENTS.items()}
        body = self.tags.get(contact_fields.BODY, "")
        expected["SP-BODY"] = "" if body in ("\r\n", "\n") else normal(body)
        expected |= {element: self.mail_address(number) for number, element in contact_fields.MAIL_ELEMENTS.items()}
        expected["SP-IMADRESS"] = self.named.get(int(contact_fields.IM_ADDRESS, 16), "")
        expected["SP-CATEGORIES"] = ";".join(self.keywords or [])
        return expected


@unittest.skipUnless(MESSAGE.exists() and DESCRIPTION.exists(), harness.NO_REAL_ITEMS)
class RealItems(harness.Case):
    def setUp(self):
        super().setUp()
        self.message = MESSAGE.read_bytes()
        (self.place.contacts / "contact.msg").write_bytes(self.message)

    def assert_is_the_contact(self, document):
        arrived = fields(document)
        self.assertRegex(arrived.pop("PIMID"), "^([0-9A-F]{2}){1,100}$")
        self.assertEqual(arrived.pop("CsFolder"), "Contacts")
        self.assertEqual(arrived, Description().fields())

    def test_every_field_arrives_under_its_element(self):
        documents = self.place.read_with_desktop(TZ=ZONE)
        self.assertEqual(len(documents), 1)
        self.assert_is_the_contact(documents.popitem()[1].decode("utf-8"))

    def test_it_is_counted_and_read_under_the_profiles_name_and_under_none(self):
        self.place.start_agent(TZ=ZONE)
        lines, documents = self.place.run_client("logon=Work", "count", "read", "logon", "count", "read", "logoff")
        self.assertEqual(lines, ["logon 0", "count 1 0", "read 0 1"] * 2)
        for document in documents:
            self.assert_is_the_contact(document)

    def test_the_file_stays_as_it_is(self):
        self.place.read_with_desktop()
        self.assertEqual({file.name: file.read_bytes() for file in self.place.contacts.iterdir()},
                         {"contact.msg": self.message})

    def test_500_copies_are_500_contacts(self):
        for number in range(1, COPIES):
            (self.place.contacts / f"contact{number}.msg").write_bytes(self.message)
        self.place.start_agent(TZ=ZONE)
        lines, documents = self.place.run_client("--stop-after", "100", "logon", "count", "read", "read", "logoff")
        self.assertEqual(lines, ["logon 0", f"count {COPIES} 0", "read 1 100", f"read 0 {COPIES}"])
        self.assertEqual(len({fields(document)["PIMID"] for document in documents[100:]}), COPIES)
        for document in documents:
            self.assert_is_the_contact(document)


if __name__ == "__main__":
    harness.run()
