"""Documents and identifiers of somebody who means harm, for any kind of item: the agent does what is documented and goes on."""

import http.server
import threading

import harness
from message_case import Message
from writing_case import ADD, CHANGE, DELETE, element

MEGABYTE = 1024 * 1024
LONGEST_IDENTIFIER = 399
BODY = 0x1000001F


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


class HostileCase:
    """To be mixed into a MessageCase."""

    def setUp(self):
        super().setUp()
        self.agent = self.place.start_agent()

    def assert_nothing_done(self, *texts):
        before = self.files()
        for status, identifier, _ in self.send(*texts):
            self.assertEqual((status, identifier), (0, ""))
        self.assertEqual(self.files(), before)
        self.assertIsNone(self.agent.poll())

    def assert_memory_stays(self, work):
        """After some work the process has not grown by as much as one of its 50 megabytes."""
        before = memory_of(self.agent)
        work()
        self.assertLess(memory_of(self.agent) - before, 50 * MEGABYTE)

    def with_more(self, text, more):
        """A document with more in front of its end."""
        end = f"</{self.ROOT}>"
        return text.replace(end, more + end)

    def name_in(self, message):
        return message.tags[self.NAME_TAG]


class DocumentTests(HostileCase):
    """Needs the root of another kind of item, the name of the notes in a document that was read, and an element of a text
    with its place in the message."""

    OTHER_ROOT = "Calendar"
    READ_BODY = "SP-BODY"
    TEXT, TEXT_PLACE = None, None

    def test_what_is_no_document_does_nothing(self):
        good = self.named(ADD, None, "x")
        root = self.ROOT
        self.assert_nothing_done(
            "", " ", "\uFEFF", "no document", "<", f"<{root}", good[:-1], good + good, good + "x", "\0" + good,
            good.replace(root, root.lower()), good.replace(root, self.OTHER_ROOT), f"<{root}s>{good}</{root}s>",
            good.replace("x", "&undefined;"), good.replace("x", "\x01"), good.replace("x", "\ud800"),
            good.replace("8", "&#56"), f"<{root}/>", self.named("eight", None, "x"), self.named(3, None, "x"),
            self.named(-2147483648, None, "x"))
        self.assert_works()

    def test_50_megabytes_of_text_are_given_back(self):
        text = f"<{self.ROOT}>" + "x" * (50 * MEGABYTE)
        self.assert_works()
        self.assert_memory_stays(lambda: self.assert_nothing_done(text, text, text))
        self.assert_works()

    def document_of(self, name, *sizes):
        """A document to add an item, with notes of those sizes in megabytes, of which the first ones count."""
        return self.with_more(self.named(ADD, None, name),
                              "".join(element("Body", "x" * (size * MEGABYTE)) for size in sizes))

    def test_a_document_of_50_megabytes_is_written_whole_or_not_at_all_and_given_back(self):
        # The service of the platform may have a limit, beyond which the text is none: that of Wine is below 10 megabytes.
        sizes = {"large": [1] * 9, "spread": [1] * 50, "single": [50]}
        texts = [self.document_of(name, *each) for name, each in sizes.items()]

        def write_and_remove():
            results = self.send(*texts)
            self.assertEqual([status for status, _, _ in results], [0] * len(texts))
            self.assertIsNone(self.agent.poll())
            messages = self.messages()
            self.assertEqual(set(messages), {name for name, result in zip(sizes, results) if result[1]})
            self.assertIn("large", messages)
            for name, message in messages.items():
                self.assertEqual(len(message.tags[BODY]), sizes[name][0] * MEGABYTE)
            self.empty_folder()
        write_and_remove()
        self.assert_memory_stays(write_and_remove)
        self.assert_works()

    def test_a_field_of_4_megabytes_is_written_whole_and_its_memory_given_back(self):
        body = "0123456789abcde\u5C71" * (MEGABYTE * 4 // 16)
        self.add_named("long", Body=body)
        self.assertEqual(self.the_message().tags[BODY], body)
        [item] = map(self.fields_of, self.read_all())
        self.assertEqual(item[self.READ_BODY], body)
        change = self.named(CHANGE, item["PIMID"], "short")
        again = self.named(CHANGE, item["PIMID"], "long", Body=body)
        self.send(again, change)
        self.assert_memory_stays(lambda: self.send(*[again, change] * 4))
        self.assertNotIn(BODY, self.the_message().tags)

    def test_elements_in_each_other_are_not_looked_into(self):
        for depth in (100, 100000):
            with self.subTest(depth=depth):
                nested = "<Body>" * depth + "x" + "</Body>" * depth
                [(status, identifier, _)] = self.send(self.with_more(self.named(ADD, None, "deep"), nested))
                self.assertEqual(status, 0)
                self.assertIsNone(self.agent.poll())
                # The XML service of the platform has a limit of its own, beyond which the text is no document.
                self.assertTrue(identifier or depth > 200)
                self.assertEqual(len(self.files()), 1 if identifier else 0)
                for file in self.items.iterdir():
                    self.assertEqual(self.name_in(Message(file)), "deep")
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
        item = self.named(ADD, None, "the name").replace("the name", "&x;")
        self.assert_nothing_done(*(f"<!DOCTYPE {self.ROOT} {subset}>{item}" for subset in subsets),
                                 *(f"\uFEFF<?xml version='1.0'?><!-- --> \n<!DOCTYPE {self.ROOT} {subset}>{item}"
                                   for subset in subsets))
        # What needs no declaration is not followed either.
        root = (f'<{self.ROOT} xmlns:xi="http://www.w3.org/2001/XInclude" '
                f'xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance" '
                f'xsi:noNamespaceSchemaLocation="{requests.url}/schema">')
        text = self.with_more(self.named(ADD, None, "x"), f'<xi:include href="{requests.url}/include"/>')
        self.send(f'<?xml-stylesheet href="{requests.url}/style" type="text/xsl"?>'
                  + text.replace(f"<{self.ROOT}>", root))
        self.assertEqual(self.name_in(self.the_message()), "x")
        self.assertEqual(requests.paths, [])

    def test_of_10000_elements_of_a_name_the_first_counts(self):
        many = "".join(element(self.NAME, f"name{number}") + element(self.TEXT, f"text{number}")
                       for number in range(10000))
        self.send(self.with_more(self.document(ADD), many))
        message = self.the_message()
        self.assertEqual((self.name_in(message), message.named[self.TEXT_PLACE]), ("name0", "text0"))


class IdentifierTests(HostileCase):
    def hostile(self, identifier):
        """Identifiers that name nothing."""
        return ["0", "00", "000", "x", "0x", "zz", "0x" + identifier, identifier + "00", identifier[:-2], "0" + identifier,
                identifier[2:], identifier[::-1], "\u5C71\U0001F600" * 30, "%s%n%d", "..\\..\\x", "<>&\"'", "F" * 398,
                "F" * 399, "F" * 400, "F" * 401, "0" * 100001, "\u00E9" * 1000000, self.folder_identifier(identifier)]

    def folder_identifier(self, identifier):
        """The beginning of an item's identifier in another one: that of the store without any item."""
        return identifier[:40] + "0" * (len(identifier) - 40)

    def test_those_that_name_nothing_change_and_delete_nothing(self):
        self.place.folder(self.FOLDER + "/Below")
        identifier = self.add_named("here")
        before = self.files(self.place.root)
        for flag in (CHANGE, DELETE):
            hostile = self.hostile(identifier)
            results = self.send(*(self.named(flag, one, "there") for one in hostile))
            for one, (status, returned, _) in zip(hostile, results):
                expected = "".join(f"\\u{unit:04x}" if unit >= 0x7F or unit == 0x5C else chr(unit)
                                   for unit in self.units(one)[:LONGEST_IDENTIFIER])
                self.assertEqual((status, returned), (0, expected), one[:50])
        self.assertEqual(self.files(self.place.root), before)
        self.assertTrue((self.items / "Below").is_dir())
        self.assertIsNone(self.agent.poll())
        self.assert_works()

    def units(self, text):
        encoded = text.encode("utf-16-le")
        return [int.from_bytes(encoded[i:i + 2], "little") for i in range(0, len(encoded), 2)]

    def test_that_of_an_add_is_not_looked_at(self):
        identifier = self.add_named("first")
        [(_, returned, _)] = self.send(self.named(ADD, identifier, "second"))
        self.assertNotEqual(returned, identifier)
        self.assertEqual(len(self.files()), 2)

    def test_small_letters_and_an_x_in_front_name_the_same_item(self):
        identifier = self.add_named("old")
        for one in (identifier.lower(), "x" + identifier, "X" + identifier):
            self.assertEqual(self.send(self.named(CHANGE, one, one))[0][:2], (0, one))
            self.assertEqual(self.name_in(self.the_message()), one)
