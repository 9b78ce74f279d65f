"""Profiles and folders: the lists that the agent writes to files, and the folder of a read."""

import re
import shutil
import time
import xml.etree.ElementTree

import harness
from contact_fields import fields, tag_line
from list_case import LOCALE, ListCase

KNOWN = {"Calendar": "IPF.Appointment", "Contacts": "IPF.Contact", "Journal": "IPF.Journal", "Notes": "IPF.StickyNote",
         "Tasks": "IPF.Task", "Drafts": "IPF.Note", "Inbox": "IPF.Note"}
TYPES = ["IPF.Note", "IPF.Appointment", "IPF.Contact", "IPF.Task", "IPF.Journal", "IPF.StickyNote"]
# Names as they stand in a folder.ini, with what becomes of them.
NAMES = {
    "n1": ("Tom & \"Jerry\"", "Tom & \"Jerry\""),
    "n2": ("<a href='x'>]]>", "<a href='x'>]]>"),
    "n3": ("be\x01ll\x07 \x1Besc \x0Bvt", "bell esc vt"),
    "n4": ("a\tb", "a\tb"),
    "n5": ("\u5C71\u7530 \U0001F600 \uFFFE\u05DC", "\u5C71\u7530 \U0001F600 \u05DC"),
    "n6": ("Stra\u00DFe d\u00E9j\u00E0 \u00D8", "Stra\u00DFe d\u00E9j\u00E0 \u00D8"),
}
LOGON_REFUSED, READ_FAILED, FOLDER_REFUSED, NOT_SET_UP = 3, 4, 8, 9


def ini(folder, section, **keys):
    """Writes the folder.ini of a profile, store or folder."""
    lines = [f"[{section}]"] + [f"{key}={value}" for key, value in keys.items()]
    (folder / "folder.ini").write_text("\r\n".join(lines) + "\r\n", encoding="utf-8", newline="")


class Setup(ListCase):
    def setUp(self):
        super().setUp()
        self.file = self.place.bin / "PIMProfile.ini"
        self.file.unlink()

    def test_it_writes_settings_once(self):
        for command in ("profiles", "folders"):
            self.assertIn("zebdesk setup", self.refused(NOT_SET_UP, command))
        output = self.desktop("setup")
        self.assertIn("PIMProfile.ini was written.\n", output)
        self.assertNotIn("running", output)
        written = self.file.read_bytes().decode("ascii")
        self.assertRegex(written, r"\[Outlook\]\r\n(;[^\n]*\r\n)*XMLPath=\w+\r\n(;[^\n]*\r\n)*subfolder=true\r\n")
        own = written.replace("true", "false") + "; mine\r\n"
        self.file.write_text(own, newline="")
        self.assertIn("PIMProfile.ini is there and was left as it is.\n", self.desktop("setup"))
        self.assertEqual(self.file.read_bytes().decode("ascii"), own)
        self.assertIn("Work     default\n", self.desktop("profiles"))

    def test_settings_without_the_folder_are_left_alone_too(self):
        for text in ("", "[Outlook]\r\nsubfolder=true\r\n", "[Outlook]\r\nXMLPath=\r\n"):
            self.file.write_text(text, newline="")
            self.assertIn("XMLPath=", self.refused(NOT_SET_UP, "setup"))
            self.assertIn("XMLPath", self.refused(NOT_SET_UP, "profiles"))
            self.assertEqual(self.file.read_bytes().decode(), text)

    def test_a_running_agent_takes_settings_at_its_next_start(self):
        self.desktop("count")
        self.assertIn("reads it at its next start", self.desktop("setup"))
        self.assertIn("zebdesk shutdown", self.refused(READ_FAILED, "profiles"))
        self.desktop("shutdown")
        self.assertIn("Work", self.desktop("profiles"))

    def test_there_has_to_be_an_agent(self):
        elsewhere = self.place.path / "elsewhere"
        elsewhere.mkdir()
        agent = harness.windows_path(elsewhere / harness.AGENT)
        self.assertIn(agent, self.refused(2, "setup", "--agent", agent))
        self.assertEqual(list(elsewhere.iterdir()), [])
        (elsewhere / harness.AGENT).write_bytes(b"")
        self.desktop("setup", "--agent", agent)
        self.assertTrue((elsewhere / "PIMProfile.ini").exists())
        self.assertFalse(self.file.exists())


class Profiles(ListCase):
    NAMES = ["Second & third", "Work", "Zo\u00EB"]

    def setUp(self):
        super().setUp()
        for name in self.NAMES:
            self.place.folder(f"{name}/Mail/Contacts")
        ini(self.place.root / self.NAMES[2], "Profile", Default=1)

    def assert_document(self, text):
        root = xml.etree.ElementTree.fromstring(text.encode())
        self.assertEqual((root.tag, root.attrib), ("profiles", {"name": "outlook"}))
        self.assertEqual([(node.tag, node.attrib, node.findtext("pname")) for node in root],
                         [("node", {"default": "true" if name == self.NAMES[2] else "false"}, name)
                          for name in self.NAMES])

    def test_they_are_there_before_and_after_a_logon(self):
        lines = {"Zo\u00EB             default", "Work", "Second & third"}
        self.assertLessEqual(lines, set(self.desktop("profiles").splitlines()))
        self.assert_document(self.desktop("profiles", "--xml"))
        self.desktop("count", "--profile", "Zo\u00EB")
        self.assertLessEqual(lines, set(self.desktop("profiles").splitlines()))
        self.assert_document(self.desktop("profiles", "--xml"))

    def test_they_leave_a_session_alone(self):
        self.place.make_contacts([[tag_line("3A11001F", "one")]])
        self.place.start_agent(**LOCALE)
        lines, _ = self.place.run_client("profiles", "logon=Zo\u00EB", "profiles", "count", "logoff", "profiles",
                                         "count", **LOCALE)
        self.assertEqual(lines, ["profiles 0", "logon 0", "profiles 0", "count 1 0", "profiles 0", "count 0 0"])
        self.assert_document((self.documents / "Profile.xml").read_bytes().decode())

    def test_none_is_no_failure(self):
        shutil.rmtree(self.place.root)
        self.place.root.mkdir()
        self.assertEqual(self.desktop("profiles"), "PROFILE  DEFAULT\n")

    def test_an_earlier_list_is_not_shown_when_there_is_no_new_one(self):
        self.desktop("profiles")
        self.desktop("shutdown")
        self.assertTrue((self.documents / "Profile.xml").exists())
        (self.place.bin / "MAPI32.dll").unlink()
        self.refused(READ_FAILED, "profiles")
        self.assertFalse((self.documents / "Profile.xml").exists())


class NamesOfProfiles(ListCase):
    """Names that only a mail system has and no folder on the disk."""

    # The names of profiles are 8-bit texts, so those of other scripts are left out.
    NAMES = {number: names for number, names in NAMES.items() if names[1].isascii() or number == "n6"}

    def test_they_are_listed_as_far_as_a_document_can_hold_them(self):
        for number, (text, _) in self.NAMES.items():
            ini(self.place.folder(number), "Profile", Name=text)
        document = xml.etree.ElementTree.fromstring(self.desktop("profiles", "--xml").encode())
        self.assertEqual([node.findtext("pname") for node in document],
                         ["Work", *(shown for _, shown in self.NAMES.values())])

    def test_a_logon_finds_the_profile_by_its_name_and_not_by_its_folder(self):
        for number, (text, _) in self.NAMES.items():
            ini(self.place.folder(number), "Profile", Name=text)
            self.make_contact(f"{number}/Mail/Contacts", f"of {number}")
        for number, (text, _) in self.NAMES.items():
            self.assertEqual(self.surnames("--profile", text), [f"of {number}"])
            self.refused(LOGON_REFUSED, "count", "--profile", number)


class Tree(ListCase):
    """The document of the folders is the tree on the disk."""

    def make(self):
        mail = self.place.root / "Work/Mail"
        ini(mail, "Store", Default=1, Name="Mail & more")
        for name in KNOWN:
            self.place.folder(f"Work/Mail/{name}")
        for name, (text, _) in NAMES.items():
            ini(self.place.folder(f"Work/Mail/{name}"), "Folder", Name=text)
            ini(self.place.folder(f"Work/Mail/Tasks/{name}/below"), "Folder", Class="IPF.Contact.\"<&'>")
        ini(self.place.folder("Work/Mail/none"), "Folder", Class="")
        self.place.folder("Work/Mail/none/Contacts")
        self.place.folder("Work/Archive/Contacts/old/older")
        self.place.folder("Work/Archive/Inbox")
        ini(self.place.folder("Work/Closed"), "Store", Refuse=1, Name="Closed")
        self.place.folder("Work/Closed/Contacts")

    def expected_folder(self, folder, inherited):
        """A folder as name, class, type, and the folders in it."""
        name, container, own = folder.name, inherited, None
        if (folder / "folder.ini").exists():
            keys = dict(re.findall(r"^(\w+)=(.*)\r$", (folder / "folder.ini").read_bytes().decode(), re.MULTILINE))
            own = keys.get("Class")
            name = NAMES[name][1] if "Name" in keys else name
        if own is not None:
            container = own
        elif not inherited:
            container = KNOWN.get(folder.name, "")
        shown = container or "IPF.Note"
        kind = TYPES.index(shown) if shown in TYPES else len(TYPES)
        below = [self.expected_folder(sub, container) for sub in sub_folders(folder)]
        return name, shown, str(kind), below

    def exported_folder(self, node):
        self.assertEqual([child.tag for child in node][:2], ["fname", "id"])
        self.assertEqual(list(node.attrib), ["class", "type", "default"])
        return (node.findtext("fname"), node.get("class"), node.get("type"),
                [self.exported_folder(child) for child in node.findall("node")])

    def test_it_is_exported_whole(self):
        self.make()
        document = self.folder_document()
        self.assertEqual((document.tag, document.attrib), ("folders", {"name": "outlook"}))
        stores = {"Archive": "Archive", "Closed": "Closed", "Mail": "Mail & more"}
        for node, (directory, name) in zip(document, stores.items(), strict=True):
            folders = [] if directory == "Closed" else sub_folders(self.place.root / "Work" / directory)
            self.assertEqual(self.exported_folder(node),
                             (name, "IPF.Post", "6", [self.expected_folder(folder, "") for folder in folders]))
        ids = [element.text for element in document.iter("id")]
        self.assertEqual(len(ids), len(set(ids)))

    def test_the_defaults_of_the_default_store_are_marked(self):
        self.make()
        marked = [node.findtext("fname") for node in self.folder_document().iter("node")
                  if node.get("default") == "true"]
        self.assertEqual(marked, ["Mail & more", "Calendar", "Contacts", "Drafts", "Journal", "Notes", "Tasks"])

    def test_a_person_can_read_it(self):
        self.make()
        lines = self.desktop("folders").splitlines()
        self.assertEqual([line[4:].split("  IPF")[0].split("  store")[0].rstrip() for line in lines[1:5]],
                         ["Archive", "  Contacts", "    old", "      older"])
        [number] = [line.split()[0] for line in lines if re.search(r"  Contacts +IPF.Contact +default$", line)]
        [identifier] = [line.split()[1] for line in lines if re.fullmatch(rf"{number} +[0-9A-F]+", line)]
        self.assertEqual(identifier, self.identifier("Mail & more", "Contacts"))
        self.assertFalse(re.search(r"[\x00-\x09\x0B-\x1F]", "\n".join(lines)))

    def test_a_large_one_is_exported_whole(self):
        count, depth = 2000, 12
        store = self.place.root / "Work/Mail"
        chains = [store / f"chain {number:03}" for number in range(count // depth)]
        for chain in chains:
            chain.joinpath(*[f"level {level:02}" for level in range(1, depth)]).mkdir(parents=True)
        for number in range(count - len(chains) * depth):
            (store / f"flat {number}").mkdir()
        begin = time.monotonic()
        document = self.folder_document()
        seconds = time.monotonic() - begin
        harness.tell_measured(f"{count} folders, {depth} deep: {seconds:.1f} s with logon and logoff")
        self.assertEqual(self.exported_folder(document[0])[3],
                         [self.expected_folder(folder, "") for folder in sub_folders(store)])
        self.assertEqual(len(list(document.iter("node"))), 1 + 1 + count)


def sub_folders(folder):
    return sorted((sub for sub in folder.iterdir() if sub.is_dir()), key=lambda sub: sub.name)


class Choice(ListCase):
    def setUp(self):
        super().setUp()
        ini(self.place.root / "Work/Mail", "Store", Default=1)
        self.make_contact("Work/Archive/Contacts", "archived")
        self.make_contact("Work/Mail/Contacts/Family", "relative")
        self.make_contact("Work/Mail/Contacts", "here")
        self.place.folder("Work/Mail/Calendar")
        ini(self.place.folder("Work/Mail/Plans"), "Folder", Class="IPF.Appointment")
        ini(self.place.folder("Work/Closed"), "Store", Refuse=1)

    def test_a_folder_of_any_store_is_read_and_only_once(self):
        archive = self.identifier("Archive", "Contacts")
        self.assertEqual(self.surnames("--folder", archive), ["archived"])
        self.assertEqual(self.surnames(), ["here"])
        family = self.identifier("Mail", "Contacts", "Family")
        self.assertEqual(self.surnames("--folder=" + family.lower()), ["relative"])
        self.assertEqual(self.desktop("count", "--folder", family), "contacts: 1\n")
        self.assertEqual(self.surnames(), ["here"])

    def test_a_folder_that_is_not_there_is_refused(self):
        family = self.identifier("Mail", "Contacts", "Family")
        shutil.rmtree(self.place.root / "Work/Mail/Contacts/Family")
        for command in (["count"], ["read", "contacts"]):
            self.assertIn(family, self.refused(FOLDER_REFUSED, *command, "--folder", family))
            self.refused(FOLDER_REFUSED, *command, "--folder", "AB")
            self.refused(1, *command, "--folder", family[:-1])
            self.refused(1, *command, "--folder", "")
        self.assertEqual(self.surnames(), ["here"])

    def test_a_refused_choice_leaves_the_earlier_one(self):
        archive = self.identifier("Archive", "Contacts")
        lines, documents = self.place.run_client(
            "logon", f"contact-folder= <id>{archive}</id> ", "contact-folder=<id>ABCD</id>",
            f"contact-folder={archive}", "count", "read", "contact-folder=<id></id>", "read", "logoff", "contact-folder=")
        self.assertEqual(lines, ["logon 0", "contact-folder 0", "contact-folder 1", "contact-folder 1", "count 1 0",
                                 "read 0 1", "contact-folder 0", "read 0 1", "contact-folder 1"])
        self.assertEqual([fields(document)["LastName"] for document in documents], ["archived", "here"])

    def test_a_calendar_folder_is_chosen_as_an_event(self):
        plans = self.identifier("Mail", "Plans")
        begin = len(self.place.log())
        lines, _ = self.place.run_client(
            "logon", f"calendar-folder=<id><event>{plans}</event></id>", "calendar-folder=<id><event>XYZ</event></id>",
            "calendar-folder=<id>AB</id>", "logoff")
        self.assertEqual(lines, ["logon 0", "calendar-folder 0", "calendar-folder 1", "calendar-folder 0"])
        log = self.place.log()[begin:]
        self.assertIn(f"CMAPIObject::GetOutlookFolderFromEntryID - {plans}\r\n", log)
        self.assertEqual(re.findall(r"SetCalendarFolder - Finish\((.)\)\r\n", log), ["0", "1", "0"])
        self.assertEqual(log.count("CMAPIObject::SetCalendarFolder - Failed to get event folder\r\n"), 1)


class Saving(ListCase):
    """A list that cannot be saved."""

    LINES = {"profiles": ("GetAppProfile", "CMAPIObject::GetAppProfile : Failed to Save Profiles\r\n"),
             "folders": ("GetAppFolder", "CMAPIObject::GetAppFolder : Failed to Save Folders\r\n")}

    def assert_not_saved(self):
        for command, (operation, line) in self.LINES.items():
            begin = len(self.place.log())
            self.refused(READ_FAILED, command)
            log = self.place.log()[begin:]
            self.assertEqual(log.count(line), 1)
            self.assertIn(f"CMAPIObject::{operation} : Finish(1)\r\n", log)
        self.assertEqual(self.desktop("count"), "contacts: 0\n")

    def assert_saved(self):
        self.assertIn("Work", self.desktop("profiles"))
        self.assertIn("Mail", self.desktop("folders"))

    def test_the_agent_goes_on_without_its_folder(self):
        self.assert_saved()
        shutil.rmtree(self.documents)
        self.assert_not_saved()
        self.documents.write_text("a file in its place")
        self.assert_not_saved()
        self.documents.unlink()
        self.documents.mkdir()
        self.assert_saved()

    def test_what_stands_in_the_way_is_named(self):
        self.assert_saved()
        for name, command in (("Profile.xml", "profiles"), ("Outlook.xml", "folders")):
            (self.documents / name).unlink()
            (self.documents / name).mkdir()
            self.assertIn(name, self.refused(READ_FAILED, command))
        lines, _ = self.place.run_client("profiles", "logon", "folders", "count", "logoff")
        self.assertEqual(lines, ["profiles 1", "logon 0", "folders 1", "count 0 0"])


if __name__ == "__main__":
    harness.run()
