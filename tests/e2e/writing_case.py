"""A place for tests of the writing of items: documents, writes with the desktop program and with single calls."""

import datetime
import hashlib
import re
import xml.sax.saxutils

import harness
from contact_fields import ADDRESS, fields

ADD, CHANGE, DELETE = 8, 4, 32
ADDRESS_SET = f"{ADDRESS}-0000-0000-c000-000000000046"
PUBLIC_STRINGS = "00020329-0000-0000-c000-000000000046"
KEYWORDS = (PUBLIC_STRINGS, "Keywords")
LAST_NAME = 0x3A11001F
LAST_MODIFICATION_TIME = 0x30080040
PICTURE = 0x37010102
REFUSED = 11
# What stands for a time that the store does not tell.
NO_TIME = "12/30/1899 00:00:00"

# Each field that is a text alone: its element when it is written, its element when it is read, and its property by tag
# or, from 0x8000 to 0x8FFF, by its number in the property set of addresses.
TEXT_FIELDS = [
    ("FirstName", "FirstName", 0x3A06001F),
    ("LastName", "LastName", LAST_NAME),
    ("MiddleName", "MiddleName", 0x3A44001F),
    ("BusinessNumber1", "BusinessNumber", 0x3A08001F),
    ("BusinessNumber2", "BusinessNumber2", 0x3A1B001F),
    ("HomeNumber1", "HomeNumber1", 0x3A09001F),
    ("HomeNumber2", "HomeNumber2", 0x3A2F001F),
    ("Mobile", "Mobile1", 0x3A1C001F),
    ("Pager", "Pager1", 0x3A21001F),
    ("OtherNumber", "OtherNumber", 0x3A1F001F),
    ("OtherFax", "OtherFax", 0x3A23001F),
    ("HomeFax", "HomeFax", 0x3A25001F),
    ("BusinessFax", "BusinessFax", 0x3A24001F),
    ("CallBackNumber", "CallBackNumber", 0x3A02001F),
    ("CarNumber", "CarNumber", 0x3A1E001F),
    ("IsdnNumber", "IsdnNumber", 0x3A2D001F),
    ("CompanyNumber", "CompanyNumber", 0x3A57001F),
    ("AssistantNumber", "AssistantNumber", 0x3A2E001F),
    ("RadioNumber", "RadioNumber", 0x3A1D001F),
    ("TelexNumber", "TelexNumber", 0x3A2C001F),
    ("TtyTddNumber", "TtyTddNumber", 0x3A4B001F),
    ("Email1", "SP-EMAIL1", 0x8083),
    ("Email2", "SP-EMAIL2", 0x8093),
    ("Email3", "SP-EMAIL3", 0x80A3),
    ("Web1", "Web1", 0x3A50001F),
    ("Web2", "Web2", 0x3A51001F),
    ("HomeStreet1", "HomeStreet1", 0x3A5D001F),
    ("HomeCity", "HomeCity", 0x3A59001F),
    ("HomeState", "HomeState", 0x3A5C001F),
    ("HomeZip", "HomeZip", 0x3A5B001F),
    ("HomeCountry", "HomeCountry", 0x3A5A001F),
    ("HomePobox", "HomePobox", 0x3A5E001F),
    ("BusinessStreet1", "SP-BUSINESSSTREET1", 0x8045),
    ("BusinessCity", "SP-BUSINESSCITY", 0x8046),
    ("BusinessState", "SP-BUSINESSSTATE", 0x8047),
    ("BusinessZip", "SP-BUSINESSZIP", 0x8048),
    ("BusinessCountry", "SP-BUSINESSCOUNTRY", 0x8049),
    ("BusinessPobox", "SP-BUSINESSPOBOX", 0x804A),
    ("OtherPobox", "OtherPobox", 0x3A64001F),
    ("OtherStreet1", "OtherStreet1", 0x3A63001F),
    ("OtherCity", "OtherCity", 0x3A5F001F),
    ("OtherState", "OtherState", 0x3A62001F),
    ("OtherZip", "OtherZip", 0x3A61001F),
    ("OtherCountry", "OtherCountry", 0x3A60001F),
    ("Body", "SP-BODY", 0x1000001F),
    # Crossed: each end of the name leaves under the other one's element.
    ("PrefixName", "SuffixName", 0x3A45001F),
    ("SuffixName", "PrefixName", 0x3A05001F),
    ("CompanyX", "CompanyX", 0x3A16001F),
    ("NickName", "NickName", 0x3A4F001F),
    ("JobTitle", "JobTitle", 0x3A17001F),
    ("SP-YOMIFIRSTNAME", "SP-YOMIFIRSTNAME", 0x802C),
    ("SP-YOMILASTNAME", "SP-YOMILASTNAME", 0x802D),
]
# The services of an instant messaging address: element, what stands in front of the address in the store, number when
# it is read.
SERVICES = [
    ("IMAddress", "", "4022"), ("AIM", "AIM:", "4023"), ("LIVE", "WINDOWSLIVE:", "4024"), ("YAHOO", "YAHOO:", "4025"),
    ("SKYPE", "SKYPE:", "4026"), ("QQ", "QQ:", "4027"), ("GoogleTalk", "GTALK:", "4028"), ("ICQ", "ICQ:", "4029"),
    ("JABBER", "JABBER:", "4030")]


def element(name, text):
    """An element whose text comes through as it stands, line ends included."""
    escaped = xml.sax.saxutils.escape(text, {"\r": "&#13;"})
    return f"<{name}>{escaped}</{name}>"


def item_document(root, flag, identifier, fields):
    """A document to write, of a kind of item."""
    parts = [element("lFlag", str(flag))]
    parts += [element("PIMID", identifier)] if identifier is not None else []
    parts += [element(name, text) for name, text in fields.items()]
    return f"<{root}>{''.join(parts)}</{root}>"


def document(flag, identifier=None, **fields):
    """A contact's document to write. In the names of fields "_" stands for "-"."""
    return item_document("Contact", flag, identifier,
                         {name.replace("_", "-"): text for name, text in fields.items()})


def stored(message, field):
    """What a message has of a field of the table above."""
    return message.tags.get(field) if field > 0xFFFF else message.named.get((ADDRESS_SET, field))


def time_of(text):
    """A time as a write hands it back."""
    return datetime.datetime.strptime(text, "%m/%d/%Y %H:%M:%S")


class WritingCase(harness.Case):
    """Writes contacts, unless a class for another kind of item says otherwise."""

    # The word of the command line, the folder, and the commands of the test client.
    KIND = "contacts"
    FOLDER = harness.Place.FOLDER
    WRITE, READ, COUNT_ITEMS = "write", "read", "count"
    # The root element, and an element and its property by which tests tell items apart.
    ROOT, NAME, NAME_TAG = "Contact", "LastName", LAST_NAME
    # The elements of a document that was read, by name.
    fields_of = staticmethod(fields)

    def setUp(self):
        super().setUp()
        self.place.folder("Work/Mail/Inbox")
        self.items = self.place.folder(self.FOLDER)
        self.written = 0

    def document(self, flag, identifier=None, **fields):
        """A document to write, of the kind of item of this class."""
        return document(flag, identifier, **fields)

    def named(self, flag, identifier, name, **fields):
        """A document to write that has a name."""
        return self.document(flag, identifier, **{self.NAME: name}, **fields)

    def file(self, text, encoding="utf-8"):
        """Writes a document to a file of its own. Gives its Windows path."""
        self.written += 1
        path = self.place.path / f"document{self.written}.xml"
        path.write_bytes(text if isinstance(text, bytes) else text.encode(encoding, "surrogatepass"))
        return harness.windows_path(path)

    def write(self, *documents, status=0, options=(), **more):
        """Writes documents with the desktop program. Gives a list of result, time and identifier for each."""
        code, output, errors = self.place.run_desktop("write", self.KIND, "--tabs", *options,
                                                      *map(self.file, documents), **more)
        self.assertEqual(code, status, output + errors)
        self.errors = errors
        headings, *rows = output.splitlines()
        self.assertEqual(headings.split("\t"), ["RESULT", "TIME", "FILE", "IDENTIFIER"])
        return [(result, time, identifier) for result, time, _, identifier in (row.split("\t") for row in rows)]

    def write_one(self, text, **more):
        [(result, time, identifier)] = self.write(text, **more)
        self.assertEqual(result, "written", self.errors)
        return time, identifier

    def delete(self, identifier, status=0):
        code, output, errors = self.place.run_desktop("write", self.KIND, "--tabs", "--delete", identifier)
        self.assertEqual(code, status, output + errors)
        return output.splitlines()[1].split("\t")[0]

    def writes(self, texts):
        """The commands of the test client that write documents."""
        return [f"{self.WRITE}={self.file(text, 'utf-16-le')}" for text in texts]

    def results(self, lines):
        """The outputs of the writes among the lines of a client: status, identifier and time of each."""
        found = [re.fullmatch(r"write (-?\d+) \[(.*)\] \[(.*)\]", line) for line in lines]
        return [(int(one[1]), one[2], one[3]) for one in found if one]

    def send(self, *texts):
        """Writes documents with single calls of the test client, in a session of its own. Gives their outputs."""
        lines, _ = self.place.run_client("logon", *self.writes(texts), "logoff")
        self.assertEqual(lines[0], "logon 0")
        results = self.results(lines)
        self.assertEqual(len(results), len(texts), lines)
        return results

    def add(self, **fields):
        """Adds an item with a single call. Gives its identifier."""
        [(status, identifier, _)] = self.send(self.document(ADD, **fields))
        self.assertEqual(status, 0)
        self.assertNotEqual(identifier, "")
        return identifier

    def add_named(self, name, **fields):
        return self.add(**{self.NAME: name}, **fields)

    def read_all(self):
        """The documents of all items, read with the test client."""
        lines, documents = self.place.run_client("logon", self.READ, "logoff")
        self.assertEqual(lines[:2], ["logon 0", f"read 0 {len(documents)}"])
        return documents

    def files(self, folder=None):
        """The digests of all files below a folder, by their paths."""
        folder = folder or self.items
        return {str(file.relative_to(folder)): hashlib.sha256(file.read_bytes()).hexdigest()
                for file in folder.rglob("*") if file.is_file()}

    def empty_folder(self):
        for file in self.items.glob("*.msg"):
            file.unlink()

    def assert_works(self):
        """The agent is there and writes."""
        before = set(self.files())
        self.add_named("afterwards")
        [name] = set(self.files()) - before
        (self.items / name).unlink()
