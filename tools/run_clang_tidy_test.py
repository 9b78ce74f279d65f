#!/usr/bin/env python3
"""Shows what makes run_clang_tidy.py look at a file again, and what does not."""

import os
import tempfile
import unittest
from pathlib import Path

import run_clang_tidy
from run_clang_tidy import Compilation


class SplitCommandTest(unittest.TestCase):
    def test_input_and_output_are_left_out(self):
        self.assertEqual(run_clang_tidy.split_command("/usr/bin/c++ -DA -I/x -o dir/a.obj -c /x/a.cpp"),
                         ("/usr/bin/c++", ["-DA", "-I/x"], "dir/a.obj"))

    def test_compiler_stands_behind_a_launcher(self):
        self.assertEqual(run_clang_tidy.split_command("/usr/bin/ccache /usr/bin/c++ -O3 -o a.o -c a.cpp")[0], "/usr/bin/c++")

    def test_quotes_of_the_shell_are_taken_off(self):
        self.assertEqual(run_clang_tidy.split_command(r'c++ -DP=L\"/x/y\" -o a.o -c a.cpp')[1], ['-DP=L"/x/y"'])


class ParseDepsTest(unittest.TestCase):
    def test_outputs_that_are_out_of_date_are_left_out(self):
        text = ("a.obj: #deps 2, deps mtime 1 (VALID)\n    /x/a.cpp\n    /x/a.h\n\n"
                "b.obj: #deps 1, deps mtime 1 (STALE)\n    /x/b.cpp\n\n")
        self.assertEqual(run_clang_tidy.parse_deps(text), {"a.obj": ["/x/a.cpp", "/x/a.h"]})


class KeyTest(unittest.TestCase):
    """A source a.cpp with a header a.h, in a folder of its own."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
        self.write("a.cpp", '#include "a.h"\n#ifdef MENTIONED\n#endif\n')
        self.write("a.h", "int a();\n")

    def write(self, name, text):
        (self.folder / name).write_text(text, encoding="utf-8")
        run_clang_tidy.content.cache_clear()

    def key(self, arguments=("-O3",), options=(), version="1"):
        read = [self.folder / "a.cpp", self.folder / "a.h"]
        one = Compilation(self.folder / "a.cpp", self.folder, "c++", list(arguments), read)
        return run_clang_tidy.key_of(one, list(options), version)

    def test_a_changed_header_counts(self):
        before = self.key()
        self.write("a.h", "int a(int);\n")
        self.assertNotEqual(self.key(), before)

    def test_the_version_the_options_and_the_arguments_count(self):
        keys = {self.key(), self.key(version="2"), self.key(options=["-Wno-x"]), self.key(["-O2"]),
                self.key(["-O3", "-DMENTIONED"]), self.key(["-O3", "-DMENTIONED=2"])}
        self.assertEqual(len(keys), 6)

    def test_folders_of_headers_and_macros_that_nothing_mentions_do_not_count(self):
        self.assertEqual(self.key(["-I/x", "-isystem", "/y", "-DOTHER=1", "-O3"]), self.key())

    def test_unknown_headers_give_no_key(self):
        one = Compilation(self.folder / "a.cpp", self.folder, "c++", [], None)
        self.assertIsNone(run_clang_tidy.key_of(one, [], "1"))

    def test_a_file_that_is_newer_than_its_object_may_have_other_headers(self):
        self.write("a.obj", "")
        deps = {"a.obj": ["a.cpp", "a.h"]}
        for name, time in (("a.cpp", 100), ("a.h", 100), ("a.obj", 200)):
            os.utime(self.folder / name, (time, time))
        self.assertEqual(run_clang_tidy.read_for(self.folder, "a.obj", deps), [self.folder / "a.cpp", self.folder / "a.h"])
        os.utime(self.folder / "a.h", (300, 300))
        self.assertIsNone(run_clang_tidy.read_for(self.folder, "a.obj", deps))

    def test_an_object_that_was_not_made_has_no_headers(self):
        self.assertIsNone(run_clang_tidy.read_for(self.folder, "a.obj", {"a.obj": ["a.cpp"]}))
        self.assertIsNone(run_clang_tidy.read_for(self.folder, "b.obj", {}))


class RunsTest(unittest.TestCase):
    def test_compilations_that_read_the_same_are_looked_at_once(self):
        with tempfile.TemporaryDirectory() as name:
            path = Path(name) / "a.cpp"
            path.write_text("int a;\n", encoding="utf-8")
            found = [Compilation(path, Path(name), "c++", arguments, [path]) for arguments in (["-DX"], ["-DY"], ["-O2"])]
            runs = list(run_clang_tidy.runs_of(found, [], "1"))
            self.assertEqual([run.command[-1] for run in runs], ["-DX", "-O2"])


if __name__ == "__main__":
    unittest.main()
