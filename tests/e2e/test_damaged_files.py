"""Files that are no messages among those that are: the good ones arrive, and the store says which ones it left out."""

import random

import harness
from contact_fields import fields, tag_line

GOOD = ["alpha", "beta", "gamma"]


class DamagedFiles(harness.Case):
    def setUp(self):
        super().setUp()
        self.place.make_contacts([[tag_line("3A11001F", text)] for text in GOOD])
        self.good = next(self.place.contacts.glob("*.msg")).read_bytes()
        self.diagnostics = self.place.path / "store.log"

    def spoil(self, **files):
        for name, content in files.items():
            (self.place.contacts / f"{name}.msg").write_bytes(content)

    def assert_good_ones_arrive(self, damaged):
        variable = {"LOCALSTORE_LOG": harness.windows_path(self.diagnostics)}
        documents = self.place.read_with_desktop(**variable)
        self.assertEqual(sorted(fields(document.decode())["LastName"] for document in documents.values()), GOOD)
        # Again, with the agent that has seen the damaged files already.
        self.assertEqual(self.place.read_with_desktop(**variable), documents)
        lines = self.diagnostics.read_text(encoding="utf-8").splitlines()
        for name in damaged:
            self.assertTrue(any(f"{name}.msg: " in line for line in lines), (name, lines))
        for name in (file.stem for file in self.place.contacts.iterdir()):
            if name not in damaged:
                self.assertFalse(any(f"{name}.msg" in line for line in lines), (name, lines))

    def test_empty_and_random_files(self):
        source = random.Random(1)
        files = {"nothing": b"", "one": b"\xd0", "noise": source.randbytes(20000),
                 "noise behind a signature": self.good[:8] + source.randbytes(20000)}
        self.spoil(**files)
        self.assert_good_ones_arrive(files)

    def test_files_that_are_cut_off(self):
        files = {f"cut{length}": self.good[:length] for length in (7, 100, 512, 600, 1024)}
        self.spoil(**files)
        self.assert_good_ones_arrive(files)

    def test_a_file_of_which_half_or_more_is_there_is_read_or_named(self):
        for length in (len(self.good) // 2, len(self.good) * 3 // 4):
            self.spoil(cut=self.good[:length])
            self.diagnostics.unlink(missing_ok=True)
            documents = self.place.read_with_desktop(LOCALSTORE_LOG=harness.windows_path(self.diagnostics))
            lines = self.diagnostics.read_text(encoding="utf-8") if self.diagnostics.exists() else ""
            self.assertEqual(len(documents), len(GOOD) + ("cut.msg: " not in lines), (length, lines))
            arrived = [fields(document.decode()).get("LastName") for document in documents.values()]
            self.assertLessEqual(set(GOOD), set(arrived))

    def test_a_document_of_another_kind(self):
        self.spoil(text=b"Dear reader,\r\n")
        self.assert_good_ones_arrive(["text"])

    def test_a_folder_with_the_name_of_a_message(self):
        (self.place.contacts / "folder.msg").mkdir()
        documents = self.place.read_with_desktop()
        self.assertEqual(len(documents), len(GOOD))


if __name__ == "__main__":
    harness.run()
