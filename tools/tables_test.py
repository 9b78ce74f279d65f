#!/usr/bin/env python3
"""Gives the scripts that write tables of docs/testing.md small logs and counts, and looks at the document."""

import contextlib
import io
import json
import tempfile
import unittest
from pathlib import Path
from unittest import mock

import coverage_table
import faults_table

# Lists begin with a line of the library of tests, and the values of a test stand behind its name.
LIST = ("Running main() from gmock_main.cc\r\nOf/Faults.\r\n  End/LogOnInStore  # GetParam() = (Store, LogOn)\r\n"
        "  End/LogOffInRegistry  # GetParam() = (Registry, LogOff)\r\n  End/LogOnInMemory\r\nGrowth.\r\n  Stays\r\n")
FIRST = ("[ RUN      ] Of/Faults.End/LogOnInMemory\r\nFAULTS: | LogOn | Memory | 503 | 1006 | 1 | 2 |\r\n"
         "[       OK ] Of/Faults.End/LogOnInMemory (9 ms)\r\n[ RUN      ] Growth.Stays\r\n"
         "[       OK ] Growth.Stays (1 ms)\r\n[==========] 2 tests ran.\r\n")
SECOND = ("[ RUN      ] Of/Faults.End/LogOnInStore\r\nFAULTS: | LogOn | Store | 26 | 364 | 0 | 0 |\r\n"
          "[       OK ] Of/Faults.End/LogOnInStore (9 ms)\r\n[ RUN      ] Of/Faults.End/LogOffInRegistry\r\n"
          "FAULTS: | LogOff | Registry | 0 | 0 | 0 | 0 |\r\n[       OK ] Of/Faults.End/LogOffInRegistry (1 ms)\r\n")
SWEPT = ("| Operation | What fails | Points | Runs | Crashes | Leaks | Losses |\n|---|---|---:|---:|---:|---:|---:|\n"
         "| LogOn | Store | 26 | 364 | 0 | 0 | 0 |\n| LogOn | Memory | 503 | 1006 | 0 | 1 | 2 |\n"
         "| all | | 529 | 1370 | 0 | 1 | 2 |\n")

SOURCES = {
    "support/text.cpp": "int f(int x) {\n    return x;\n}\nint g() { return 1; }\n",
    "timezone/zone.cpp": "int h() {\n    return 2;\n}\n",
    "localstore/sample/made.cpp": "int s() { return 3; }\n",
}
# The bracket in line 3 counts for nothing; line 4 of the first file is reached in the second program alone.
ONE = "SF:{root}/support/text.cpp\nDA:1,5\nDA:2,5\nDA:3,0\nDA:4,0\nend_of_record\nSF:/usr/include/x.h\nDA:1,0\n"
TWO = ("SF:{root}/support/text.cpp\nDA:4,1\nSF:{root}/timezone/zone.cpp\nDA:1,0\nDA:2,0\n"
       "SF:{root}/localstore/sample/made.cpp\nDA:1,0\n")


class TableTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = Path(folder.name).resolve()

    def write(self, name, text):
        path = self.root / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(text.encode())
        return str(path)

    def document(self, module, places=1, old="old\n"):
        return self.write("testing.md", "above\n" + f"{module.BEGIN}\n{old}{module.END}\n" * places + "below\n")

    def expect(self, module, table):
        self.assertEqual((self.root / "testing.md").read_text(encoding="utf-8"),
                         f"above\n{module.BEGIN}\n{table}{module.END}\nbelow\n")


class FaultsTableTest(TableTest):
    def run_it(self, *logs, places=1, old="old\n", options=()):
        names = [self.write(f"{number}.log", log) for number, log in enumerate(logs)]
        document = self.document(faults_table, places, old)
        faults_table.main([*options, document, self.write("list.txt", LIST), *names])

    def refuse(self, text, *logs, **more):
        with self.assertRaisesRegex(SystemExit, text):
            self.run_it(*logs, **more)

    def test_rows_come_in_the_order_of_the_list_without_those_that_met_nothing(self):
        self.run_it(FIRST, SECOND)
        self.expect(faults_table, SWEPT)

    def test_a_log_that_ends_in_a_test_gives_no_table(self):
        self.refuse("ended in Of/Faults.End/LogOffInRegistry", FIRST, SECOND[:SECOND.rindex("[       OK ]")])
        self.expect(faults_table, "old\n")

    def test_a_test_that_no_log_has_gives_no_table(self):
        self.refuse("no log tells of Of/Faults.End/LogOnInStore, one of 2", FIRST)
        self.expect(faults_table, "old\n")

    def test_a_sweep_without_a_row_gives_no_table(self):
        self.refuse("no log tells of Of/Faults.End/LogOnInStore", FIRST, SECOND.replace("FAULTS: | LogOn", "| LogOn"))
        self.refuse("no log tells of Of/Faults.End/LogOnInStore", FIRST, SECOND.replace("[       OK ]", "[  SKIPPED ]", 1))

    def test_a_row_that_is_gone_gives_no_table(self):
        met = SWEPT.replace("| LogOn | Memory |", "| LogOff | Registry | 14 | 28 | 0 | 0 | 0 |\n| LogOn | Memory |")
        self.refuse("the row LogOff in Registry is gone", FIRST, SECOND, old=met)
        self.expect(faults_table, met)
        renamed = SWEPT.replace("LogOn | Store", "LogOnTwice | Store")
        self.refuse("the row LogOnTwice in Store is gone", FIRST, SECOND, old=renamed)
        self.expect(faults_table, renamed)

    def test_a_row_goes_if_that_is_allowed(self):
        self.run_it(FIRST, SECOND, old=SWEPT.replace("LogOn | Store", "LogOnTwice | Store"), options=["--drop"])
        self.expect(faults_table, SWEPT)

    def test_rows_with_other_numbers_are_replaced_and_new_ones_come(self):
        self.run_it(FIRST, SECOND, old=SWEPT.replace("26", "25").replace("| LogOn | Memory | 503 | 1006 | 0 | 1 | 2 |\n", ""))
        self.expect(faults_table, SWEPT)

    def test_a_document_has_one_place(self):
        for places in (0, 2):
            self.refuse(f"has {places} places", FIRST, SECOND, places=places)


class CoverageTableTest(TableTest):
    def run_it(self, **exports):
        """What is printed for the counts of some programs."""
        for name, source in SOURCES.items():
            self.write(name, source)
        commands = [{"file": str(self.root / name)} for name in SOURCES]
        self.write("build/compile_commands.json", json.dumps(commands))
        for name, export in exports.items():
            self.write(f"build/lines/{name}.info", export.format(root=self.root))
        printed = io.StringIO()
        with mock.patch.object(coverage_table, "ROOT", self.root), contextlib.redirect_stdout(printed):
            coverage_table.main([str(self.root / "build"), self.document(coverage_table)])
        return printed.getvalue()

    def test_lines_count_that_any_program_reached(self):
        printed = self.run_it(one=ONE, two=TWO)
        self.expect(coverage_table, "| Room | Lines | Reached | |\n|---|---:|---:|---:|\n"
                                    "| `support/` | 3 | 3 | 100.0 % |\n| `timezone/` | 2 | 0 | 0.0 % |\n"
                                    "| all | 5 | 3 | 60.0 % |\n")
        self.assertIn("not reached: timezone/zone.cpp:2: return 2;\n", printed)
        self.assertNotIn("support", printed.partition("| Room |")[0])

    def test_a_source_in_no_program_gives_no_table(self):
        with self.assertRaisesRegex(SystemExit, "linked into no test: timezone/zone.cpp"):
            self.run_it(one=ONE)
        self.expect(coverage_table, "old\n")


if __name__ == "__main__":
    unittest.main()
