"""Agent, local store and desktop program together: contacts arrive whole, from where they were asked for."""

import datetime

import contact_fields
import harness
from contact_fields import date_only, fields, keywords_line, named_line, tag_line, time_line

NAMED = contact_fields.MESSAGE_ELEMENTS
BIRTHDAY = 125911260000000000  # 1999-12-31 15:00 UTC, a midnight in Japan
ANNIVERSARY = 126227700000000000  # 2000-12-31 21:00 UTC
JAPAN = datetime.timezone(datetime.timedelta(hours=9))


def surname(text):
    return [tag_line("3A11001F", text)]


def full_contact():
    lines = [tag_line(tag, f"{element}: value") for tag, element in contact_fields.ROW_ELEMENTS.items()]
    lines += [named_line(number, f"{element}: value") for number, element in NAMED.items()]
    lines += [
        tag_line(contact_fields.BODY, "line 1\r\nline 2"),
        time_line("3A420040", BIRTHDAY),
        time_line("3A410040", ANNIVERSARY),
        # An address of the internet, one of the mail system, whose readable form stands elsewhere, and one whose type is
        # missing, so that it does not count.
        named_line("8082", "SMTP"), named_line("8083", "one@example.com"),
        named_line("8092", "EX"), named_line("8093", "/o=first/cn=two"), named_line("8094", "two@example.com"),
        named_line("80A3", "three@example.com"),
        named_line(contact_fields.IM_ADDRESS, "aim:joe"),
        keywords_line("b", "a"),
    ]
    return lines


def full_fields():
    expected = {element: f"{element}: value"
                for element in [*contact_fields.ROW_ELEMENTS.values(), *NAMED.values()]}
    expected |= {
        "CsFolder": "Contacts",
        "SP-BODY": "line 1\nline 2",
        "Birthday": date_only(BIRTHDAY, JAPAN),
        "Anniversary": date_only(ANNIVERSARY, JAPAN),
        "SP-EMAIL1": "one@example.com",
        "SP-EMAIL2": "two@example.com",
        "SP-EMAIL3": "",
        "SP-IMADRESS": "joe",
        "SP-CATEGORIES": "b;a",
    }
    return expected


class Fields(harness.Case):
    def read_one(self, **more):
        documents = list(self.place.read_with_desktop(**more).values())
        self.assertEqual(len(documents), 1)
        return documents[0].decode("utf-8")

    def test_every_field_arrives_under_its_element(self):
        self.place.make_contacts([full_contact()])
        document = self.read_one(TZ="Asia/Tokyo")
        arrived = fields(document)
        for element in ("CreateTime", "lastModifiedTime"):
            datetime.datetime.strptime(arrived.pop(element), "%m/%d/%Y %H:%M:%S")
        self.assertRegex(arrived.pop("PIMID"), "^([0-9A-F]{2}){1,100}$")
        self.assertEqual(arrived, full_fields())
        self.assertEqual(contact_fields.parse(document).find("SP-IMADRESS").get("IMType"), "4023")

    def test_what_the_store_lacks_has_no_element_or_an_empty_one(self):
        self.place.make_contacts([surname("alone")])
        arrived = fields(self.read_one())
        self.assertEqual(set(arrived), {"CreateTime", "lastModifiedTime", "LastName", *contact_fields.ALWAYS})
        self.assertEqual({name for name, text in arrived.items() if text},
                         {"CsFolder", "CreateTime", "lastModifiedTime", "LastName", "PIMID"})


class Whereabouts(harness.Case):
    def surnames(self, *options, **more):
        documents = self.place.read_with_desktop(*options, **more).values()
        return sorted(fields(document.decode())["LastName"] for document in documents)

    def make_two_profiles(self):
        self.place.make_contacts([surname("at work"), surname("at work too")])
        home = self.place.folder("Second home/Mail/Contacts")
        for file in list(self.place.contacts.iterdir())[:1]:
            file.rename(home / file.name)

    def test_a_profile_is_found_by_its_name(self):
        self.make_two_profiles()
        work = self.surnames("--profile", "Work")
        home = self.surnames("--profile", "Second home")
        self.assertEqual(sorted(work + home), ["at work", "at work too"])
        self.assertEqual((len(work), len(home)), (1, 1))

    def test_no_name_stands_for_the_default_profile(self):
        self.make_two_profiles()
        (self.place.root / "Work" / "folder.ini").write_text("[Profile]\nDefault=1\n")
        self.assertEqual(self.surnames(), self.surnames("--profile", "Work"))

    def test_an_unknown_profile_is_refused(self):
        status, output, errors = self.place.run_desktop("count", "--profile", "nobody")
        self.assertEqual((status, output), (3, ""))
        self.assertIn("zebdesk: ", errors)

    def test_the_count_is_the_number_of_documents(self):
        self.place.make_contacts([surname(f"number {i}") for i in range(7)])
        self.assertEqual(self.place.run_desktop("count", "contacts")[:2], (0, "contacts: 7\n"))
        self.assertEqual(len(self.surnames()), 7)

    def test_another_message_class_is_no_contact(self):
        custom = surname("custom") + [tag_line("001A001F", "IPM.Contact.Custom")]
        self.place.make_contacts([surname("plain"), custom])
        self.assertEqual(self.place.run_desktop("count", "contacts")[1], "contacts: 1\n")
        self.assertEqual(self.surnames(), ["plain"])

    def make_sub_folders(self):
        """Three contacts, each one folder deeper than the one before."""
        for name, path in (("bottom", "Contacts/Friends/Close"), ("middle", "Contacts/Friends"), ("top", "Contacts")):
            self.place.make_contacts([surname(name)])
            [file] = self.place.contacts.glob("*.msg")
            file.rename(self.place.folder(f"Work/Mail/{path}") / file.name)

    def test_sub_folders_are_left_alone_without_the_setting(self):
        self.make_sub_folders()
        self.assertEqual(self.surnames(), ["top"])

    def test_sub_folders_come_behind_their_parent_with_the_setting(self):
        self.make_sub_folders()
        self.place.settings(subfolder="TRUE")
        self.place.start_agent()
        lines, documents = self.place.run_client("logon", "count", "read", "logoff")
        self.assertEqual(lines, ["logon 0", "count 3 0", "read 0 3"])
        arrived = [fields(document) for document in documents]
        self.assertEqual([(one["LastName"], one["CsFolder"]) for one in arrived],
                         [("top", "Contacts"), ("middle", "Contacts\\Friends"),
                          ("bottom", "Contacts\\Friends\\Close")])


if __name__ == "__main__":
    harness.run()
