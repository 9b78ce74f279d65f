#!/usr/bin/env python3
"""Gives item_fields.py documents and printed lines that are the same, and such as differ in one thing."""

import pathlib
import struct
import tempfile
import unittest

import item_fields

DOCUMENT = ('<?xml version="1.0" encoding="UTF-16"?>\r\n<contact name="outlook">\r\n\t<PIMID>00FF</PIMID>\r\n\t'
            '<NickName>no-000007</NickName>\r\n\t<SP-BODY>a &lt; b\r\nc</SP-BODY>\r\n\t<SP-CATEGORIES/>\r\n\t'
            '<SP-IMADRESS IMType="4026">ada</SP-IMADRESS>\r\n</contact>')
FIELDS = {"PIMID": "00FF", "NickName": "no-000007", "SP-BODY": "a < b\nc", "SP-CATEGORIES": "", "SP-IMADRESS": "ada",
          "IMType": "4026"}
PRINTED = {**FIELDS, "PIMID": "000007.msg"}


def file_of(*documents):
    """The documents as bench_client.exe keeps them."""
    return b"".join(struct.pack("<I", len(text.encode("utf-16-le")) // 2) + text.encode("utf-16-le") for text in documents)


class ItemFieldsTest(unittest.TestCase):
    def test_fields_of_documents(self):
        other = DOCUMENT.replace("a &lt; b", "\U0001F600")
        self.assertEqual(list(item_fields.documents_of(file_of(DOCUMENT, other))),
                         [FIELDS, {**FIELDS, "SP-BODY": "\U0001F600\nc"}])

    def test_fields_of_printed_lines(self):
        with tempfile.TemporaryDirectory() as place:
            path = pathlib.Path(place) / "lines"
            path.write_text('{"NickName":"no-000007","IMType":4026,"SP-BODY":"a\\r\\nb"}\n', encoding="utf-8")
            self.assertEqual(list(item_fields.printed_of(path)),
                             [{"NickName": "no-000007", "IMType": "4026", "SP-BODY": "a\nb"}])

    def test_same_items_in_another_order_are_the_same(self):
        second = {name: value.replace("no-000007", "no-000008") for name, value in PRINTED.items()}
        self.assertEqual(item_fields.require_same([FIELDS, second], [second, PRINTED]), 10)

    def test_what_differs_is_refused(self):
        without = {name: value for name, value in PRINTED.items() if name != "SP-CATEGORIES"}
        for printed in ([{**PRINTED, "SP-BODY": "a"}], [{**PRINTED, "More": ""}], [without], [], [PRINTED, PRINTED],
                        [{**PRINTED, "NickName": "no-000008"}], [{**PRINTED, "NickName": "Ada"}]):
            with self.assertRaises(ValueError):
                item_fields.require_same([FIELDS], printed)

    def test_document_with_a_field_twice_is_refused(self):
        twice = DOCUMENT.replace("<SP-CATEGORIES/>", "<NickName>no-000007</NickName>")
        with self.assertRaises(ValueError):
            list(item_fields.documents_of(file_of(twice)))


if __name__ == "__main__":
    unittest.main()
