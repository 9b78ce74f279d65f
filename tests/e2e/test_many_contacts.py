"""Two thousand contacts of the usual size. The speeds are printed for whoever wants to know; nothing depends on them."""

import shutil
import time

import contact_fields
import harness
from contact_fields import fields, named_line, tag_line

CONTACTS = 2000


def usual_contact():
    lines = [tag_line(tag, f"{element} text") for tag, element in contact_fields.ROW_ELEMENTS.items()]
    lines += [named_line(number, f"{element} text") for number, element in contact_fields.MESSAGE_ELEMENTS.items()]
    return lines + [tag_line(contact_fields.BODY, "some notes\r\n" * 20), named_line("8082", "SMTP"),
                    named_line("8083", "somebody@example.com")]


class ManyContacts(harness.Case):
    def setUp(self):
        super().setUp()
        self.place.make_contacts([usual_contact()])
        [file] = self.place.contacts.glob("*.msg")
        for number in range(1, CONTACTS):
            shutil.copyfile(file, self.place.contacts / f"copy{number}.msg")

    def timed(self, what, action):
        begin = time.monotonic()
        result = action()
        seconds = time.monotonic() - begin
        harness.tell_measured(f"{what}: {CONTACTS} contacts in {seconds:.2f} s, {CONTACTS / seconds:.0f} a second")
        return result

    def test_all_arrive_and_differ_only_in_their_identity(self):
        self.place.start_agent()
        lines, documents = self.timed("first read", lambda: self.place.run_client("logon", "read", "logoff"))
        self.assertEqual(lines, ["logon 0", f"read 0 {CONTACTS}"])
        lines, again = self.timed("second read", lambda: self.place.run_client("logon", "read", "logoff"))
        self.assertEqual(again, documents)
        arrived = [fields(document) for document in documents]
        self.assertEqual(len({one.pop("PIMID") for one in arrived}), CONTACTS)
        for one in arrived:
            self.assertEqual(one, arrived[0])

    def test_the_desktop_program_writes_a_file_for_each(self):
        documents = self.timed("with the desktop program", self.place.read_with_desktop)
        self.assertEqual(len(documents), CONTACTS)


if __name__ == "__main__":
    harness.run()
