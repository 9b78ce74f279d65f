"""The sample store that the demo shows, written and read as the demo does it."""

import datetime
import os
import unittest.mock

import appointments
import harness
from contact_fields import fields, parse
from list_case import ListCase

ZEBSAMPLE = harness.TEST_BIN.parent / "tools/zebsample.exe"
PLAIN_CONTACTS = 5
# What a property value carries in one piece; what is longer comes as a stream.
LONGEST_VALUE = 32 * 1024
FAMILY = "Contacts\\Fam\u00EDlia"
# The surnames of the contacts, and for those without one the company.
IN_CONTACTS = {
    "\u00C5ngstr\u00F6m-N\u00FA\u00F1ez", "Gro\u00DFmann", "\u017B\u00F3\u0142kiewski", "\u5C71\u7530", "\u738B", "\uAE40",
    "\u062D\u062F\u0627\u062F", "\u05DC\u05D5\u05D9", "\u0421\u043E\u043A\u043E\u043B\u043E\u0432\u0430",
    "\u03A0\u03B1\u03C0\u03B1\u03B4\u03BF\u03C0\u03BF\u03CD\u03BB\u03BF\u03C5", "I\u015F\u0131k\u00E7\u0131",
    "\u0E43\u0E08\u0E14\u0E35", "Nguy\u1EC5n", "\u0936\u0930\u094D\u092E\u093E", "Quayside Bakery"}
IN_FAMILY = {"Concei\u00E7\u00E3o", "N\u00ED Bhriain", "\u00C6gisd\u00F3ttir"}
# Those who are not in the store yet and whose documents are written.
PEOPLE = {"Okafor", "Pe\u00F1a Ruiz", "\u10D1\u10D4\u10E0\u10D8\u10EB\u10D4"}
WITH_PICTURE = {
    "\u00C5ngstr\u00F6m-N\u00FA\u00F1ez", "Gro\u00DFmann", "\u5C71\u7530", "\u738B", "\u062D\u062F\u0627\u062F",
    "\u03A0\u03B1\u03C0\u03B1\u03B4\u03BF\u03C0\u03BF\u03CD\u03BB\u03BF\u03C5", "I\u015F\u0131k\u00E7\u0131",
    "Concei\u00E7\u00E3o"}
# Addresses by the number of their service. The last two of 4022 have a service that is not known, and none.
IM_ADDRESSES = {
    ("4022", ""), ("4022", "MSN:eleni"), ("4022", "maria.sokolova"), ("4023", "amelie.example"),
    ("4024", "juergen@example.com"), ("4025", "lukasz_z"), ("4026", "hanako.yamada"), ("4026", "recep.isikci"),
    ("4027", "555010014"), ("4028", "minjun@example.com"), ("4029", "555016016"), ("4030", "noa@chat.example.com")}
# What stands in the items and folders that a read passes by.
NEIGHBOURS = ["Custom", "Another", "Form<", "choir", "letter", "Filed", "Called", "Yesterday", "Quick"]
# The zone of the machine that makes the sample, and reads it unless a test says otherwise.
ZONE = "Europe/Berlin"
# What the clocks of that zone show at the beginning and the end of appointments of many zones: Berlin is
# one hour ahead of UTC and two in summer, Tokyo nine, Kolkata five and a half, New York five behind, Adelaide ten and a
# half ahead while it is summer there.
THERE_AND_HERE = {
    "Dentist": ("2026-01-14 08:15", "2026-01-14 09:00"),
    "\u30D7\u30ED\u30B8\u30A7\u30AF\u30C8\u4F1A\u8B70": ("2026-07-08 06:30", "2026-07-08 08:00"),
    "Call with the supplier": ("2026-05-06 12:30", "2026-05-06 13:00"),
    "Stand-up": ("2026-03-02 15:00", "2026-03-02 15:15"),
    "Invoice run": ("2026-01-14 22:30", "2026-01-14 23:00"),
    "\u0645\u0648\u0639\u062F": ("2026-06-01 10:00", "2026-06-01 11:00")}
NIGHT_SHIFT = "Night shift over the change of clocks"
# The whole days, of which one holds a change of the clocks.
WHOLE_DAYS = {
    "F\u00EAte nationale": ("2026-07-14", "2026-07-15"), "Trade fair <North & South>": ("2026-10-24", "2026-10-27"),
    "Backup tapes": ("2026-01-01", "2026-01-02"), "Oma Geburtstag": ("2026-02-28", "2026-03-01"),
    "\u656C\u8001\u306E\u65E5": ("2026-09-21", "2026-09-22")}


# The appointments and what makes series of some.
RECURRENCES = {
    "Backup tapes": "every day", "Book club": "every month on the second Tue", "Call with the supplier": "",
    "Chorprobe": "every 2 weeks on Thu until 2026-06-25, 4 deleted, 1 changed", "Dentist": "",
    "Election": "every 2 years on the first Tue of November", "F\u00EAte nationale": "",
    "Invoice run": "every 3 months on day 15 until 2027-10-15, 1 deleted",
    "Leap day party": "every 4 years on day 29 of February until 2040-02-29",
    NIGHT_SHIFT: "", "Oma Geburtstag": "every year on day 28 of February",
    "Rent": "every month on day 31", "Review": "every week on Tue until 2026-06-30, 11 changed",
    "Stand-up": "every weekday, 2 deleted", "Town hall meeting": "every month on the last Fri until 2026-12-25",
    "Trade fair <North & South>": "", "Training": "every week on Mon, Wed, Fri",
    "Water the plants": "every 3 days until 2026-04-29", "\u0645\u0648\u0639\u062F": "",
    "\u30D7\u30ED\u30B8\u30A7\u30AF\u30C8\u4F1A\u8B70": "",
    "\u656C\u8001\u306E\u65E5": "every year on the third Mon of September"}


def reviewed(month, day, start=None, lasts=60, **overrides):
    """A changed instance of 2026; the start is that of the series unless it is told."""
    begin = appointments.minutes(2026, *(start or (month, day, 10)))
    return appointments.Change(appointments.minutes(2026, month, day), begin, begin + lasts, **overrides)


# The changed instances of the review: with each thing of its own alone, with none and with all.
CHANGES = [
    reviewed(3, 10, (3, 11, 10)), reviewed(3, 17, subject="Review \u4E88\u5099"), reviewed(3, 24, location="Kantine"),
    reviewed(3, 31, meeting=1), reviewed(4, 7, delta=45), reviewed(4, 14, reminder=0), reviewed(4, 21, busy=1),
    reviewed(4, 28, attachment=1), reviewed(5, 5, (5, 5), 1440, sub_type=1), reviewed(5, 12, color=3),
    reviewed(5, 19, (5, 20, 14), 90, subject="Long review", location="Room 1", meeting=1, delta=30, reminder=1, busy=2,
             attachment=0, sub_type=0, color=5)]
REVIEW = appointments.Series(appointments.WEEKLY, 1, 1, [0x04], [change.day for change in CHANGES], CHANGES)


class Sample(ListCase):
    def setUp(self):
        super().setUp()
        zone = unittest.mock.patch.dict(os.environ, TZ=ZONE)
        zone.start()
        self.addCleanup(zone.stop)
        self.place.root = self.place.path / "sample"
        self.place.settings(XMLPath=self.xml_path, subfolder="true")
        output, _ = self.assert_exit(self.place.start(ZEBSAMPLE, harness.windows_path(self.place.root), PLAIN_CONTACTS))
        self.assertEqual(output.strip(), f"46 items in profile Sample, {PLAIN_CONTACTS} in profile Second")

    def test_more_than_a_million_contacts_are_refused_before_anything_is_made(self):
        root = self.place.path / "other"
        for count in ("1000001", "4294967297", "-1", "5x", ""):
            self.assert_exit(self.place.start(ZEBSAMPLE, harness.windows_path(root), count), 2)
            self.assertFalse(root.exists(), count)

    def test_it_has_two_profiles(self):
        table = [line.split() for line in self.desktop("profiles").splitlines()]
        self.assertEqual(table, [["PROFILE", "DEFAULT"], ["Sample", "default"], ["Second"]])

    def test_it_has_three_stores_of_which_one_cannot_be_opened(self):
        stores = {store.findtext("fname"): [folder.findtext("fname") for folder in store.findall("node")]
                  for store in self.folder_document()}
        self.assertEqual(stores, {
            "Archive of the sample": ["Contacts", "Drafts", "Inbox"],
            "Sample mailbox": ["Calendar", "Contacts", "Drafts", "Inbox", "Journal", "Notes", "Projects", "Tasks"],
            "Shared folders, out of reach": []})

    def test_contacts_are_counted(self):
        self.assertEqual(self.desktop("count"), "contacts: 18\n")
        family = self.identifier("Sample mailbox", *FAMILY.split("\\"))
        self.assertEqual(self.desktop("count", "--folder", family), "contacts: 3\n")
        self.assertEqual(self.desktop("count", "--profile", "Second"), f"contacts: {PLAIN_CONTACTS}\n")

    def test_appointments_are_told_in_words(self):
        self.assertEqual(self.desktop("count", "calendars"), "calendars: 21\n")
        rows = [row.split("\t") for row in self.desktop("read", "calendars", "--tabs").splitlines()[1:]]
        self.assertEqual({row[2]: row[4] for row in rows}, RECURRENCES)

    def appointment_times(self, **more):
        """Start and end of each appointment in the table, by subject."""
        rows = [row.split("\t") for row in self.desktop("read", "calendars", "--tabs", **more).splitlines()[1:]]
        return {row[2]: (row[0], row[1]) for row in rows}

    def appointments(self):
        """The fields of each appointment's document, by subject."""
        documents = self.place.read_with_desktop(kind="calendars").values()
        return {item["Description"]: item for item in (appointments.fields(document.decode()) for document in documents)}

    def test_appointments_are_at_the_time_of_their_own_zone(self):
        times = self.appointment_times()
        self.assertEqual({subject: times[subject] for subject in THERE_AND_HERE}, THERE_AND_HERE)

    def test_nine_hours_on_the_clocks_are_eight_where_they_change(self):
        self.assertEqual(self.appointment_times()[NIGHT_SHIFT], ("2026-03-28 22:00", "2026-03-29 07:00"))
        self.assertEqual(self.place.run_desktop("shutdown")[0], 0)
        self.assertEqual(self.appointment_times(TZ="UTC")[NIGHT_SHIFT], ("2026-03-28 21:00", "2026-03-29 05:00"))

    def test_whole_days_are_those_of_the_machine_that_made_them(self):
        times = self.appointment_times()
        self.assertEqual({subject: times[subject] for subject in WHOLE_DAYS}, WHOLE_DAYS)
        found = self.appointments()
        for subject, days in WHOLE_DAYS.items():
            midnights = [datetime.date.fromisoformat(day).strftime("%m/%d/%Y 00:00:00") for day in days]
            self.assertEqual([found[subject]["dtStartTime"], found[subject]["dtEndTime"]], midnights, subject)

    def test_appointments_are_whole(self):
        found = self.appointments()
        self.assertEqual(set(found), set(RECURRENCES))
        self.assertEqual(found["Stand-up"]["TimeZone"], "GMT:+300;DST:60;STD:0000110102000000;DLT:0000030202000000")
        for subject in ("Dentist", "F\u00EAte nationale", "\u656C\u8001\u306E\u65E5"):
            self.assertEqual(found[subject]["TimeZone"], "GMT:-60;DST:60;STD:0000100503000000;DLT:0000030502000000", subject)
        self.assertEqual((found["Call with the supplier"]["nRingTone"], found["Dentist"]["nRingTone"]), ("0", "1"))
        self.assertEqual(found["Review"]["ExceptionRule"], REVIEW.rule("Review", "Room 4", 15))

    def test_contacts_are_read_and_their_neighbours_are_not(self):
        documents = [document.decode() for document in self.place.read_with_desktop().values()]
        arrived = {contact.get("LastName", contact.get("CompanyX")): contact for contact in map(fields, documents)}
        self.remove_pictures(arrived.values())
        self.assertEqual(len(documents), 18)
        self.assertEqual({name for name, one in arrived.items() if one["CsFolder"] == "Contacts"}, IN_CONTACTS)
        self.assertEqual({name for name, one in arrived.items() if one["CsFolder"] == FAMILY}, IN_FAMILY)
        for name in NEIGHBOURS:
            self.assertNotIn(name, "".join(documents))
        im_elements = [parse(document).find("SP-IMADRESS") for document in documents]
        self.assertEqual({(element.get("IMType"), element.text or "") for element in im_elements}, IM_ADDRESSES)

    def test_people_come_in_through_the_agent(self):
        files = sorted((harness.ROOT / "localstore/sample/people").glob("*.xml"))
        rows = self.desktop("write", "contacts", "--tabs", *map(harness.windows_path, files)).splitlines()[1:]
        self.assertEqual([row.split("\t")[0] for row in rows], ["written"] * len(PEOPLE))
        documents = self.place.read_with_desktop().values()
        contacts = [fields(document.decode()) for document in documents]
        self.remove_pictures(contacts)
        self.assertEqual(len(contacts), 18 + len(PEOPLE))
        self.assertEqual(PEOPLE - {one.get("LastName") for one in contacts}, set())
        [okafor] = [one for one in contacts if one.get("LastName") == "Okafor"]
        self.assertEqual(okafor["SP-BODY"], "Measures the river every Friday.\nCalls back in the evening.")
        self.assertEqual((okafor["SuffixName"], okafor["Birthday"]), ("Prof.", "1982-11-04"))

    def test_addresses_are_readable_ones(self):
        documents = self.place.read_with_desktop().values()
        contacts = [fields(document.decode()) for document in documents]
        self.remove_pictures(contacts)
        addresses = {one.get("LastName"): [one[f"SP-EMAIL{number}"] for number in (1, 2, 3)] for one in contacts}
        self.assertEqual(addresses["\u00C5ngstr\u00F6m-N\u00FA\u00F1ez"],
                         ["amelie@example.com", "a.angstrom@observatoire.example.com", "meli@home.example.com"])
        # The first is one of the mail system, whose readable form stands elsewhere.
        self.assertEqual(addresses["Gro\u00DFmann"],
                         ["juergen.grossmann@example.com", "jg@muster.example.com", ""])

    def test_pictures_arrive_whole(self):
        contacts = [fields(document.decode()) for document in self.place.read_with_desktop().values()]
        pictures = self.remove_pictures(contacts)
        self.assertEqual(set(pictures), WITH_PICTURE)
        for name, picture in pictures.items():
            self.assertEqual((picture[:3], picture[-2:]), (b"\xFF\xD8\xFF", b"\xFF\xD9"), name)
        # One comes as a stream.
        self.assertGreater(len(pictures["I\u015F\u0131k\u00E7\u0131"]), LONGEST_VALUE)

    def remove_pictures(self, contacts):
        """Takes the pictures of contacts away. Gives them by surname."""
        pictures = {}
        for contact in contacts:
            if "PICPath" in contact:
                file = self.place.host_path(contact["PICPath"])
                pictures[contact["LastName"]] = file.read_bytes()
                file.unlink()
        return pictures


if __name__ == "__main__":
    harness.run()
