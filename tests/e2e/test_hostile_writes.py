"""Documents, identifiers and pictures of somebody who means harm: the agent does what is documented and goes on."""

import http.server
import threading

import harness
from contact_fields import fields
from message_case import Message, MessageCase
from writing_case import ADD, ADDRESS_SET, CHANGE, DELETE, LAST_NAME, PICTURE, document, element

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


class Hostile(MessageCase):
    def setUp(self):
        super().setUp()
        self.agent = self.place.start_agent()

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
                    self.assertEqual(Message(file).tags[LAST_NAME], "deep")
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


if __name__ == "__main__":
    harness.run()
