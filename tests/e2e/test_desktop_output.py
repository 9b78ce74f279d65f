"""What the desktop program prints when it reads contacts without a folder for them."""

import re

import harness
from contact_fields import fields, named_line, tag_line
from list_case import ListCase

CONTACTS = [("Gro\u00DFmann, J\u00FCrgen", "S\u00F6hne & T\u00F6chter", "+49 30 555 0110", "j@example.com"),
            ("\u5C71\u7530, \u82B1\u5B50", "", "+81 3 5550 0130", ""),
            ("Plain", "Example", "", "plain@example.com")]
HEADINGS = ("NAME", "COMPANY", "PHONE", "E-MAIL", "FOLDER")
ROWS = [(*contact, "Contacts") for contact in CONTACTS]


def properties(name, company, phone, address):
    lines = [named_line("8005", name)]
    lines += [tag_line("3A16001F", company)] if company else []
    lines += [tag_line("3A1C001F", phone)] if phone else []
    lines += [named_line("8082", "SMTP"), named_line("8083", address)] if address else []
    return lines


class Output(ListCase):
    def setUp(self):
        super().setUp()
        self.place.make_contacts([properties(*contact) for contact in CONTACTS])

    def test_a_table(self):
        headings, *rows = self.desktop("read", "contacts", "--quiet").splitlines()
        # Far Eastern characters take two columns, so the columns of a row are told by the gaps between them.
        self.assertEqual(headings.split(), list(HEADINGS))
        self.assertEqual(sorted(re.split("  +", row) for row in rows),
                         sorted([text for text in row if text] for row in ROWS))

    def test_a_line_a_contact_with_tabs(self):
        headings, *rows = self.desktop("read", "contacts", "--tabs").split("\n")
        self.assertEqual(headings, "\t".join(HEADINGS))
        self.assertEqual(sorted(rows), sorted(["", *map("\t".join, ROWS)]))

    def test_documents_one_behind_the_other(self):
        text = self.desktop("read", "contacts", "--xml")
        documents = re.split(r"(?<=</Contact>)\s+", text)
        self.assertEqual(documents.pop(), "")
        self.assertEqual(sorted(fields(document.lstrip("\uFEFF"))["FULLNAME"] for document in documents),
                         sorted(name for name, *_ in CONTACTS))

    def test_no_contacts_are_headings_alone(self):
        for file in self.place.contacts.iterdir():
            file.unlink()
        self.assertEqual(self.desktop("read", "contacts").split(), list(HEADINGS))
        self.assertEqual(self.desktop("read", "contacts", "--tabs"), "\t".join(HEADINGS) + "\n")
        self.assertEqual(self.desktop("read", "contacts", "--xml"), "")

    def test_only_one_form_at_a_time(self):
        for pair in (("--xml", "--tabs"), ("--xml", "--out", "x"), ("--tabs", "--out", "x")):
            self.assertIn("exclude each other", self.refused(1, "read", "contacts", *pair))

    def test_convert_replaces_none_of_the_documents_that_it_reads(self):
        read, other = self.place.path / "read", self.place.path / "other"
        for folder in (read, other):
            folder.mkdir()
            (folder / "one.xml").write_text("<Contact/>")
        for files, out in (([read / "one.xml"], read), ([read / "one.xml", other / "one.xml"], self.place.path / "new")):
            status, _, errors = self.place.run_desktop("convert", *map(harness.windows_path, files), "--out",
                                                       harness.windows_path(out))
            self.assertEqual(status, 1, errors)
            self.assertIn("--out ", errors)
            self.assertEqual((read / "one.xml").read_text(), "<Contact/>")
        self.assertFalse((self.place.path / "new").exists())


class Progress(harness.Case):
    """The bar on a console, which counts the contacts while the read runs."""

    WIDTH = 40

    def setUp(self):
        super().setUp()
        self.place.make_contacts([properties(*contact) for contact in CONTACTS])
        self.place.start_agent()

    def test_it_is_drawn_and_wiped_off(self):
        status, text = self.place.run_desktop_on_terminal("read", "contacts")
        self.assertEqual(status, 0, text)
        count = len(CONTACTS)
        bars = re.findall(r"\[([#.]*)\] (\d+)/(\d+)", text)
        self.assertEqual(bars[0], ("." * self.WIDTH, "0", str(count)))
        for bar, done, expected in bars:
            filled = int(done) * self.WIDTH // count
            self.assertEqual((bar, expected), ("#" * filled + "." * (self.WIDTH - filled), str(count)))
        # Behind the last bar the line is cleared before the summary takes its place.
        behind = text[text.rindex(f"] {bars[-1][1]}/"):text.rindex(f"{count} contacts read")]
        self.assertTrue("\x1b[K" in behind or " " * self.WIDTH in behind, behind)

    def test_a_quiet_read_draws_nothing(self):
        status, text = self.place.run_desktop_on_terminal("read", "contacts", "--quiet")
        self.assertEqual(status, 0, text)
        self.assertNotIn("[.", text)
        self.assertNotIn("contacts", text)


if __name__ == "__main__":
    harness.run()
