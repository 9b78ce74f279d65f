"""Documents, identifiers and pictures of somebody who means harm, and calls that overlap: the agent does what is
documented and goes on."""

import http.server
import sys
import threading

import harness
from contact_fields import fields
from list_case import ListCase
from writing_case import (ADD, ADDRESS_SET, CHANGE, DELETE, LAST_NAME, PICTURE, WritingCase, document, element)

try:
    import read_msg
except ImportError:
    print("SKIPPED: the olefile library is not there", file=sys.stderr)
    sys.exit(harness.SKIPPED)

MEGABYTE = 1024 * 1024
LONGEST_IDENTIFIER = 399
JPEG = b"\xFF\xD8\xFF" + bytes(i % 251 for i in range(MEGABYTE)) + b"\xFF\xD9"


def memory_of(process):
    """The bytes that belong to a process alone."""
    with open(f"/proc/{process.pid}/status", encoding="ascii") as status:
        [line] = [line for line in status if line.startswith("RssAnon:")]
    return int(line.split()[1]) * 1024


class Requests(http.server.ThreadingHTTPServer):
    """A server on this machine that notes what is fetched from it."""

    def __init__(self):
        self.paths = []
        server = self

        class Handler(http.server.BaseHTTPRequestHandler):
            def do_GET(self):
                server.paths.append(self.path)
                self.send_error(404)

            def log_message(self, *_):
                pass
        super().__init__(("127.0.0.1", 0), Handler)
        self.url = f"http://127.0.0.1:{self.server_address[1]}"
        threading.Thread(target=self.serve_forever, daemon=True).start()


class Hostile(WritingCase):
    def setUp(self):
        super().setUp()
        self.agent = self.place.start_agent()

    def the_message(self):
        [file] = self.place.contacts.glob("*.msg")
        return read_msg.Message(file)

    def assert_nothing_done(self, *texts):
        before = self.files()
        for status, identifier, _ in self.send(*texts):
            self.assertEqual((status, identifier), (0, ""))
        self.assertEqual(self.files(), before)
        self.assertIsNone(self.agent.poll())


class Documents(Hostile):
    def test_what_is_no_document_does_nothing(self):
        good = document(ADD, LastName="x")
        self.assert_nothing_done(
            "", " ", "\uFEFF", "no document", "<", "<Contact", good[:-1], good + good, good + "x", "\0" + good,
            good.replace("Contact", "contact"), good.replace("Contact", "Calendar"), f"<Contacts>{good}</Contacts>",
            good.replace("x", "&undefined;"), good.replace("x", "\x01"), good.replace("x", "\ud800"),
            good.replace("8", "&#56"), "<Contact/>", document("eight", LastName="x"), document(3, LastName="x"),
            document(-2147483648, LastName="x"))
        self.assert_works()

    def test_50_megabytes_of_text_are_given_back(self):
        text = "<Contact>" + "x" * (50 * MEGABYTE)
        self.assert_works()
        self.assert_memory_stays(lambda: self.assert_nothing_done(text, text, text))
        self.assert_works()

    def assert_memory_stays(self, work):
        """After some work the process has not grown by as much as one of its 50 megabytes."""
        before = memory_of(self.agent)
        work()
        self.assertLess(memory_of(self.agent) - before, 50 * MEGABYTE)

    def test_a_field_of_4_megabytes_is_written_whole_and_its_memory_given_back(self):
        body = "0123456789abcde\u5C71" * (MEGABYTE * 4 // 16)
        self.add(LastName="long", Body=body)
        self.assertEqual(self.the_message().tags[0x1000001F], body)
        [document_read] = self.place.run_client("logon", "read", "logoff")[1]
        contact = fields(document_read)
        self.assertEqual(contact["SP-BODY"], body)
        change = document(CHANGE, contact["PIMID"], LastName="short")
        again = document(CHANGE, contact["PIMID"], LastName="long", Body=body)
        self.send(again, change)
        self.assert_memory_stays(lambda: self.send(*[again, change] * 4))
        self.assertNotIn(0x1000001F, self.the_message().tags)

    def test_elements_in_each_other_are_not_looked_into(self):
        for depth in (100, 100000):
            with self.subTest(depth=depth):
                nested = "<Body>" * depth + "x" + "</Body>" * depth
                text = document(ADD, LastName="deep").replace("</Contact>", nested + "</Contact>")
                [(status, identifier, _)] = self.send(text)
                self.assertEqual(status, 0)
                self.assertIsNone(self.agent.poll())
                # The XML service of the platform has a limit of its own, beyond which the text is no document.
                self.assertTrue(identifier or depth > 200)
                self.assertEqual(len(self.files()), 1 if identifier else 0)
                for file in self.place.contacts.iterdir():
                    self.assertEqual(read_msg.Message(file).tags[LAST_NAME], "deep")
                    file.unlink()
        self.assert_works()

    def test_entities_are_neither_expanded_nor_fetched(self):
        requests = Requests()
        self.addCleanup(requests.server_close)
        self.addCleanup(requests.shutdown)
        secret = self.place.path / "secret.txt"
        secret.write_text("secret")
        file_url = "file:///" + harness.windows_path(secret).replace("\\", "/")
        laughs = "".join(f'<!ENTITY l{n} "{f"&l{n - 1};" * 10}">' for n in range(1, 12))
        subsets = [
            f'[<!ENTITY l0 "ha">{laughs}<!ENTITY x "&l11;">]',
            f'[<!ENTITY x SYSTEM "{requests.url}/entity">]',
            f'[<!ENTITY x SYSTEM "{file_url}">]',
            f'[<!ENTITY % p SYSTEM "{requests.url}/parameter"> %p; <!ENTITY x "y">]',
            f'SYSTEM "{requests.url}/subset.dtd" [<!ENTITY x "y">]',
            f'PUBLIC "-//x//x" "{requests.url}/public.dtd" [<!ENTITY x "y">]',
            '[<!ENTITY x "&x;">]', '[<!ENTITY x "y">]']
        contact = "<Contact><lFlag>8</lFlag><LastName>&x;</LastName></Contact>"
        self.assert_nothing_done(*(f"<!DOCTYPE Contact {subset}>{contact}" for subset in subsets),
                                 *(f"\uFEFF<?xml version='1.0'?><!-- --> \n<!DOCTYPE Contact {subset}>{contact}"
                                   for subset in subsets))
        # What needs no declaration is not followed either.
        self.send(f'<?xml-stylesheet href="{requests.url}/style" type="text/xsl"?>'
                  '<Contact xmlns:xi="http://www.w3.org/2001/XInclude" '
                  f'xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance" '
                  f'xsi:noNamespaceSchemaLocation="{requests.url}/schema">'
                  f'<lFlag>8</lFlag><LastName>x</LastName><xi:include href="{requests.url}/include"/></Contact>')
        self.assertEqual(self.the_message().tags[LAST_NAME], "x")
        self.assertEqual(requests.paths, [])

    def test_of_10000_elements_of_a_name_the_first_counts(self):
        many = "".join(element("LastName", f"name{number}") + element("BusinessPobox", f"box{number}")
                       for number in range(10000))
        self.send(document(ADD).replace("</Contact>", many + "</Contact>"))
        message = self.the_message()
        self.assertEqual((message.tags[LAST_NAME], message.named[(ADDRESS_SET, 0x804A)]), ("name0", "box0"))

    def test_any_text_in_every_field_that_means_more_than_a_text(self):
        for text in ("", ";", ";;a;;", "-", "2024-13-45 99:99:99", "99999999999-1-1", "-1-1-1", "%s%n", "a" * 100000,
                     "\u5C71-\u5C71", "\uFFFD", "2024-02-30"):
            with self.subTest(text=text[:20]):
                self.send(document(ADD, LastName="x", Birthday=text, Anniversary=text, Categories=text, CsFolder=text))
                message = self.the_message()
                self.assertEqual({0x3A420040, 0x3A410040} & set(message.tags), set())
                for file in self.place.contacts.iterdir():
                    file.unlink()


class Identifiers(Hostile):
    def hostile(self, identifier):
        """Identifiers that name no contact."""
        return ["0", "00", "000", "x", "0x", "zz", "0x" + identifier, identifier + "00", identifier[:-2], "0" + identifier, identifier[2:], identifier[::-1], "\u5C71\U0001F600" * 30, "%s%n%d",
                "..\\..\\x", "<>&\"'", "F" * 398, "F" * 399, "F" * 400, "F" * 401, "0" * 100001, "\u00E9" * 1000000,
                self.folder_identifier(identifier)]

    def folder_identifier(self, identifier):
        """The beginning of a contact's identifier in another one: that of the store without any item."""
        return identifier[:40] + "0" * (len(identifier) - 40)

    def test_those_that_name_nothing_change_and_delete_nothing(self):
        self.place.folder(self.place.FOLDER + "/Below")
        identifier = self.add(LastName="here")
        before = self.files(self.place.root)
        for flag in (CHANGE, DELETE):
            hostile = self.hostile(identifier)
            results = self.send(*(document(flag, one, LastName="there") for one in hostile))
            for one, (status, returned, _) in zip(hostile, results):
                expected = "".join(f"\\u{unit:04x}" if unit >= 0x7F or unit == 0x5C else chr(unit)
                                   for unit in self.units(one)[:LONGEST_IDENTIFIER])
                self.assertEqual((status, returned), (0, expected), one[:50])
        self.assertEqual(self.files(self.place.root), before)
        self.assertTrue((self.place.contacts / "Below").is_dir())
        self.assertIsNone(self.agent.poll())
        self.assert_works()

    def units(self, text):
        encoded = text.encode("utf-16-le")
        return [int.from_bytes(encoded[i:i + 2], "little") for i in range(0, len(encoded), 2)]

    def test_that_of_an_add_is_not_looked_at(self):
        identifier = self.add(LastName="first")
        [(_, returned, _)] = self.send(document(ADD, identifier, LastName="second"))
        self.assertNotEqual(returned, identifier)
        self.assertEqual(len(self.files()), 2)

    def test_small_letters_and_an_x_in_front_name_the_same_contact(self):
        identifier = self.add(LastName="old")
        for one in (identifier.lower(), "x" + identifier, "X" + identifier):
            self.assertEqual(self.send(document(CHANGE, one, LastName=one))[0][:2], (0, one))
            self.assertEqual(self.the_message().tags[LAST_NAME], one)


class Photos(Hostile):
    def with_picture(self, path):
        """Adds a contact with a picture from that path. Gives the pictures that it has."""
        for file in self.place.contacts.iterdir():
            file.unlink()
        self.add(LastName="x", PICPath=path)
        message = self.the_message()
        pictures = [part.tags[PICTURE] for part in message.attachments.values()]
        self.assertEqual(message.named[(ADDRESS_SET, 0x8015)], bool(pictures))
        return pictures

    def write_picture(self, path, content=JPEG):
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(content)
        return harness.windows_path(path)

    def test_a_path_that_leads_to_no_file_gives_no_picture(self):
        here = harness.windows_path(self.place.path)
        for path in (here + "\\missing.jpg", here, here + "\\", "Z:\\", "Z:", "x" * 400, here + "\\" + "x" * 400, "NUL",
                     "CON", "\\\\.\\pipe\\MapiServer64", here + "\\*.jpg", "|<>", "\\\\?\\", "http://127.0.0.1/x.jpg"):
            with self.subTest(path=path[:60]):
                self.assertEqual(self.with_picture(path), [])

    def test_a_path_that_leads_nowhere_takes_the_old_picture_away(self):
        path = self.write_picture(self.place.path / "old.jpg")
        identifier = self.add(LastName="x", PICPath=path)
        self.assertEqual(len(self.the_message().attachments), 1)
        self.send(document(CHANGE, identifier, LastName="x", PICPath=path + "missing"))
        message = self.the_message()
        self.assertEqual((message.attachments, message.named[(ADDRESS_SET, 0x8015)]), ({}, False))

    def test_a_path_of_400_characters_is_taken_if_the_system_opens_it(self):
        base = self.place.path / "deep"
        room = 400 - len(harness.windows_path(base)) - 1
        path = base / ("d" * 150) / ("e" * (room - 151 - 8)) / "pic.jpg"
        windows_path = self.write_picture(path)
        self.assertEqual(len(windows_path), 400)
        # The limit of the system is 259 without the prefix for long paths, and Wine has none.
        self.assertIn(self.with_picture(windows_path), ([], [JPEG]))
        self.assertEqual(self.with_picture("\\\\?\\" + windows_path), [JPEG])

    def test_20_megabytes_go_in_and_come_out(self):
        content = JPEG * 20
        path = self.write_picture(self.place.path / "large.jpg", content)
        self.assertEqual(self.with_picture(path), [content])
        [document_read] = self.place.run_client("logon", "read", "logoff")[1]
        file = self.place.host_path(fields(document_read)["PICPath"])
        self.addCleanup(file.unlink)
        self.assertEqual(file.read_bytes(), content)

    def test_what_is_no_picture_is_taken_as_it_is(self):
        for content in (b"", b"x", b"<script>", bytes(1023), bytes(1024), bytes(1025)):
            self.assertEqual(self.with_picture(self.write_picture(self.place.path / "odd.jpg", content)), [content])


class Overlapping(Hostile, ListCase):
    """Several clients in one session, which nothing in the agent keeps apart."""

    CLIENTS = 4
    EACH = 50

    def writer(self, name, count=EACH):
        """Starts a client that adds contacts to the session that is open."""
        texts = [document(ADD, LastName=f"{name}-{number}", FirstName=f"{name}-{number}", Body=f"{name}-{number} " * 1000)
                 for number in range(count)]
        return self.place.client("--no-endpoint", *self.writes(texts))

    def assert_all_written(self, writers, *folders):
        """Every write came back with an identifier of its own, and every contact is whole in one of the folders."""
        identifiers = []
        for writer in writers:
            results = self.results(self.assert_exit(writer)[0].splitlines())
            self.assertEqual([status for status, _, _ in results], [0] * self.EACH)
            identifiers += [identifier for _, identifier, _ in results]
        self.assertEqual(len(set(identifiers)), len(writers) * self.EACH)
        messages = [read_msg.Message(file) for folder in folders for file in folder.glob("*.msg")]
        self.assertEqual(sorted(message.tags[LAST_NAME] for message in messages),
                         sorted(f"{name}-{number}" for name in range(len(writers)) for number in range(self.EACH)))
        for message in messages:
            name = message.tags[LAST_NAME]
            self.assertEqual((message.tags[0x3A06001F], message.tags[0x1000001F].split()), (name, [name] * 1000))

    def log_on(self):
        self.assertEqual(self.place.run_client("--no-endpoint", "logon")[0], ["logon 0"])

    def test_adds_of_several_clients_are_all_there(self):
        self.log_on()
        writers = [self.writer(name) for name in range(self.CLIENTS)]
        self.assert_all_written(writers, self.place.contacts)

    def test_a_folder_that_is_replaced_meanwhile_loses_no_write(self):
        other = self.place.folder("Work/Mail/Other")
        (other / "folder.ini").write_text("[Folder]\r\nClass=IPF.Contact\r\n")
        chosen = [f"contact-folder=<id>{self.identifier('Mail', name)}</id>" for name in ("Contacts", "Other")]
        self.log_on()
        writers = [self.writer(name) for name in range(self.CLIENTS)]
        while any(writer.poll() is None for writer in writers):
            lines, _ = self.place.run_client("--no-endpoint", *chosen * 80)
            self.assertEqual(lines, ["contact-folder 0"] * 160)
        self.assert_all_written(writers, self.place.contacts, other)
        self.assertNotIn([], [list(folder.glob("*.msg")) for folder in (self.place.contacts, other)])

    def test_logons_beside_changes_leave_each_contact_old_or_new(self):
        identifiers = [self.add(LastName=f"{name}", Body=f"{name} " * 1000) for name in range(self.CLIENTS)]
        self.log_on()
        writers = [self.place.client("--no-endpoint", *self.writes(
            document(CHANGE, identifier, LastName=f"{name}-{number}", Body=f"{name}-{number} " * 1000)
            for number in range(self.EACH))) for name, identifier in enumerate(identifiers)]
        while any(writer.poll() is None for writer in writers):
            lines, _ = self.place.run_client("--no-endpoint", *["logon", "logoff"] * 20, "logon")
            self.assertEqual(lines, ["logon 0"] * 21)
        for identifier, writer in zip(identifiers, writers):
            results = self.results(self.assert_exit(writer)[0].splitlines())
            self.assertEqual([result[:2] for result in results], [(0, identifier)] * self.EACH)
        messages = [read_msg.Message(file) for file in self.place.contacts.glob("*.msg")]
        self.assertEqual(len(messages), self.CLIENTS)
        for message in messages:
            self.assertEqual(message.tags[0x1000001F].split(), [message.tags[LAST_NAME]] * 1000)
        self.assert_works()

    def test_writes_of_one_contact_by_several_clients_leave_it_whole(self):
        identifier = self.add(LastName="old")
        self.log_on()
        writers = [self.place.client("--no-endpoint", *self.writes(
            document(CHANGE, identifier, LastName=f"{name}-{number}", Body=f"{name}-{number} " * 1000)
            for number in range(self.EACH))) for name in range(self.CLIENTS)]
        for writer in writers:
            self.assert_exit(writer)
        message = self.the_message()
        self.assertEqual(message.tags[0x1000001F].split(), [message.tags[LAST_NAME]] * 1000)
        # The last write of one of them.
        self.assertTrue(message.tags[LAST_NAME].endswith(f"-{self.EACH - 1}"))
        self.assertEqual(len(self.files()), 1)

    def test_reads_and_counts_beside_writes_deliver_whole_contacts(self):
        self.log_on()
        writers = [self.writer(name) for name in range(2)]
        lines, documents = self.place.run_client(*["count", "read"] * 10)
        self.assertEqual([line.split()[0] for line in lines], ["count", "read"] * 10)
        for contact in map(fields, documents):
            self.assertEqual(contact["SP-BODY"].split(), [contact["LastName"]] * 1000)
        self.assert_all_written(writers, self.place.contacts)


if __name__ == "__main__":
    harness.run()
