"""Holds the fields that the independent program prints of items against those of the agent's documents."""

import json
import re
import struct
import xml.etree.ElementTree as ElementTree

# An item has its identifier in the agent's document and the name of its file in what the program prints.
IDENTIFIERS = {"PIMID"}
# Stands in one field of each item (see bench_items.py).
MARK = re.compile(r"no-\d{6}")


def documents_of(content):
    """The fields of each document of a file of texts, which has the units of UTF-16 of each in front of it. An attribute is a
    field too."""
    place = 0
    while place < len(content):
        (units,) = struct.unpack_from("<I", content, place)
        place += 4
        # The declaration is of the bytes that the text is sent as.
        text = re.sub(r"^<\?xml[^>]*\?>", "", content[place:place + 2 * units].decode("utf-16-le"))
        place += 2 * units
        yield fields_of(pair for element in ElementTree.fromstring(text)
                        for pair in ((element.tag, element.text or ""), *element.items()))


def printed_of(path):
    """The fields of each line of JSON."""
    with open(path, encoding="utf-8") as file:
        for line in file:
            yield fields_of((name, str(value)) for name, value in json.loads(line).items())


def fields_of(pairs):
    fields = {}
    for name, value in pairs:
        if name in fields:
            raise ValueError(f"there are two fields {name}")
        # An XML document has line feeds alone.
        fields[name] = value.replace("\r\n", "\n")
    return fields


def by_marks(items):
    found = {}
    for fields in items:
        marks = set(MARK.findall(" ".join(fields.values())))
        if len(marks) != 1 or not found.keys().isdisjoint(marks):
            raise ValueError(f"not the one item of its mark: {marks}")
        found[marks.pop()] = fields
    return found


def require_same(documents, printed):
    """Raises ValueError unless both are the same items with the same fields. Gives the number of fields of all items."""
    documents, printed = by_marks(documents), by_marks(printed)
    if documents.keys() != printed.keys():
        raise ValueError(f"not the same items: {sorted(documents.keys() ^ printed.keys())}")
    number = 0
    for mark, fields in documents.items():
        others = printed[mark]
        wrong = {name: (fields.get(name), others.get(name)) for name in (fields.keys() | others.keys()) - IDENTIFIERS
                 if fields.get(name) != others.get(name)}
        if wrong:
            raise ValueError(f"the document and what is printed of {mark} differ: {wrong}")
        number += len(fields.keys() - IDENTIFIERS)
    return number
