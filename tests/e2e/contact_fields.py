"""Which element of a contact's document carries which property of the store, and how to look at a document."""

import datetime
import xml.etree.ElementTree

ADDRESS = "00062004"

# Elements that are there only if the store has the property.
ROW_ELEMENTS = {
    "3A11001F": "LastName",
    "3A44001F": "MiddleName",
    "3A06001F": "FirstName",
    "3A09001F": "HomeNumber1",
    "3A25001F": "HomeFax",
    "3A08001F": "BusinessNumber",
    "3A24001F": "BusinessFax",
    "3A1C001F": "Mobile1",
    "3A21001F": "Pager1",
    "3A2F001F": "HomeNumber2",
    "3A1B001F": "BusinessNumber2",
    "3A1F001F": "OtherNumber",
    "3A23001F": "OtherFax",
    "3A57001F": "CompanyNumber",
    "3A1A001F": "PrimaryNumber",
    "3A2E001F": "AssistantNumber",
    "3A2D001F": "IsdnNumber",
    "3A2C001F": "TelexNumber",
    "3A4B001F": "TtyTddNumber",
    "3A1E001F": "CarNumber",
    "3A1D001F": "RadioNumber",
    "3A02001F": "CallBackNumber",
    "3A50001F": "Web1",
    "3A51001F": "Web2",
    "3A16001F": "CompanyX",
    "3A17001F": "JobTitle",
    "3A4F001F": "NickName",
    "3A5A001F": "HomeCountry",
    "3A5C001F": "HomeState",
    "3A59001F": "HomeCity",
    "3A5D001F": "HomeStreet1",
    "3A5B001F": "HomeZip",
    "3A5E001F": "HomePobox",
    "3A60001F": "OtherCountry",
    "3A62001F": "OtherState",
    "3A5F001F": "OtherCity",
    "3A63001F": "OtherStreet1",
    "3A61001F": "OtherZip",
    "3A64001F": "OtherPobox",
    # Crossed on purpose: the generation leaves as the prefix and the prefix as the suffix.
    "3A05001F": "PrefixName",
    "3A45001F": "SuffixName",
}
DATE_ELEMENTS = {"3A410040": "Anniversary", "3A420040": "Birthday"}
TIME_ELEMENTS = {"30070040": "CreateTime", "30080040": "lastModifiedTime"}

# Elements that are always there, by the number of the named property.
MESSAGE_ELEMENTS = {
    "8005": "FULLNAME",
    "8049": "SP-BUSINESSCOUNTRY",
    "8046": "SP-BUSINESSCITY",
    "8047": "SP-BUSINESSSTATE",
    "8045": "SP-BUSINESSSTREET1",
    "8048": "SP-BUSINESSZIP",
    "804A": "SP-BUSINESSPOBOX",
    "802C": "SP-YOMIFIRSTNAME",
    "802D": "SP-YOMILASTNAME",
}
BODY = "1000001F"
# The number of the address, below which its type stands and above which the readable address of type EX.
MAIL_ELEMENTS = {0x8083: "SP-EMAIL1", 0x8093: "SP-EMAIL2", 0x80A3: "SP-EMAIL3"}
IM_ADDRESS = "8062"

# All elements in the order in which they stand in a document.
ORDER = (["CsFolder", "lFlag", "CreateTime", "lastModifiedTime"] + list(ROW_ELEMENTS.values()) +
         ["Anniversary", "Birthday", "PIMID", "PICPath"] + list(MESSAGE_ELEMENTS.values()) +
         ["SP-BODY", *MAIL_ELEMENTS.values(), "SP-IMADRESS", "SP-CATEGORIES"])
ALWAYS = (["CsFolder", "PIMID"] + list(MESSAGE_ELEMENTS.values()) +
          ["SP-BODY", *MAIL_ELEMENTS.values(), "SP-IMADRESS", "SP-CATEGORIES"])


def units(text):
    """A text as make_contacts takes it. Lone surrogates pass."""
    return text.encode("utf-16-be", "surrogatepass").hex() or "-"


def tag_line(tag, text):
    return f"tag {tag} {units(text)}"


def named_line(number, text, properties=ADDRESS):
    return f"named {properties} {number} {units(text)}"


def time_line(tag, filetime):
    return f"time {tag} {filetime}"


def keywords_line(*texts):
    return " ".join(["keywords", *map(units, texts)])


def parse(document):
    """The elements of a document in their order, as pairs of name and text. Fails on what is not a contact."""
    root = xml.etree.ElementTree.fromstring(document.encode("utf-8"))
    if root.tag != "Contact":
        raise AssertionError(f"the root is {root.tag}")
    names = [element.tag for element in root]
    positions = [ORDER.index(name) for name in names]
    if positions != sorted(set(positions)):
        raise AssertionError(f"elements stand twice or in the wrong order: {names}")
    missing = [name for name in ALWAYS if name not in names]
    if missing:
        raise AssertionError(f"elements are missing: {missing}")
    for element in root:
        if len(element):
            raise AssertionError(f"{element.tag} is not flat")
    return root


def normal(text):
    """A text with one kind of line end: which one a document has is its service's choice."""
    return text.replace("\r\n", "\n").replace("\r", "\n")


def fields(document):
    """The texts of a document's elements by their names."""
    return {element.tag: normal(element.text or "") for element in parse(document)}


def change_fields(document):
    """The same for a document of a read of changes: a deletion, or a contact with a flag behind its folder."""
    root = xml.etree.ElementTree.fromstring(document.encode("utf-8"))
    found = {element.tag: element.text for element in root}
    if "CsFolder" not in found:
        if list(found) not in (["lFlag", "PIMID", "LastModifiedTime"], ["lFlag", "PIMID"]):
            raise AssertionError(f"no proper deletion: {list(found)}")
        return found
    if list(found)[1] != "lFlag":
        raise AssertionError(f"the flag is not where it belongs: {list(found)}")
    flag = f"<lFlag>{found['lFlag']}</lFlag>"
    return {**fields(document.replace(flag, "")), "lFlag": found["lFlag"]}


def local_time(filetime, zone):
    """A store's time in a zone, without its fraction, which the documents do not carry."""
    instant = datetime.datetime(1601, 1, 1, tzinfo=datetime.timezone.utc)
    return (instant + datetime.timedelta(seconds=filetime // 10_000_000)).astimezone(zone)


def date_and_time(filetime, zone):
    return local_time(filetime, zone).strftime("%m/%d/%Y %H:%M:%S")


def date_only(filetime, zone):
    return local_time(filetime, zone).strftime("%Y-%m-%d")
