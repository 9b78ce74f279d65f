#!/usr/bin/env python3
"""Feeds check_limits.py small trees whose documents name tests that are there and tests that are not."""

import tempfile
import unittest
from pathlib import Path

import check_limits

TREE = {
    "tests/unit/a_test.cpp": "TEST(Group, One) {\n}\n\nTEST_F(Fixture,\n       Two) {\n}\n\nTEST_P(Each, Three) {}\n",
    "tests/unit/loose_test.cpp": "TEST(Group, One) {}\n",
    "tests/e2e/test_x.py": "class Case(Base):\n    def test_it(self):\n        pass\n",
    "tests/fuzz/fuzz_y.cpp": "",
    "tests/CMakeLists.txt": "zeb_test(all unit/a_test.cpp)  # loose_test.cpp\nforeach(script x)\nzeb_fuzz(fuzz_y fuzz_y.cpp)\n",
}
HEAD = "| What | Limit | Test |\n|---|---|---|\n"


class CheckLimitsTest(unittest.TestCase):
    def check(self, document, name="docs/limits.md"):
        """The findings as (line, text) for the tree with one document."""
        with tempfile.TemporaryDirectory() as root:
            for path, text in {**TREE, name: document}.items():
                path = Path(root) / path
                path.parent.mkdir(parents=True, exist_ok=True)
                path.write_text(text, encoding="utf-8")
            return [(finding.line, finding.text) for finding in check_limits.check(root)[2]]

    def test_tests_that_are_there(self):
        self.assertEqual(self.check("See `a_test`, `a_test: One` and `a_test: Two, Three`.\n"
                                    "See `test_x`, `test_x: Case`, `test_x: test_it` and `fuzz_y`.\n"), [])

    def test_a_file_that_is_gone(self):
        self.assertEqual(self.check("\nSee `gone_test`.\n"), [(2, "there is no test file gone_test")])
        self.assertEqual(self.check("See `test_gone: test_it`.\n"), [(1, "there is no test file test_gone")])
        self.assertEqual(self.check("See `fuzz_gone`.\n", "SECURITY.md"), [(1, "there is no test file fuzz_gone")])

    def test_a_test_that_is_gone(self):
        self.assertEqual(self.check("See `a_test: One, Four`.\n"), [(1, "there is no test Four in a_test.cpp")])
        self.assertEqual(self.check("See `a_test: On`.\n"), [(1, "there is no test On in a_test.cpp")])
        self.assertEqual(self.check("See `test_x: test_i`.\n"), [(1, "there is no test test_i in test_x.py")])

    def test_a_file_that_is_in_no_list(self):
        self.assertEqual(self.check("See `loose_test: One`.\n"), [(1, "no CMake list has loose_test.cpp run")])

    def test_a_name_stands_in_one_line(self):
        self.assertEqual(self.check("See `a_test: One,\nTwo`.\n"), [(1, "the name of a test does not end in its line")])

    def test_paths_and_words_are_no_names(self):
        self.assertEqual(self.check("See `tests/unit/gone_test.cpp`, gone_test and `make test`.\n"), [])

    def test_each_limit_has_its_test_or_a_reason(self):
        self.assertEqual(self.check(HEAD + "| a | 1 | `a_test` |\n| b | 2 | none: memory |\n"), [])
        findings = self.check(HEAD + "| a | 1 | |\n| b | 2 | none: |\n| c | 3 | as above |\n")
        self.assertEqual([line for line, _ in findings], [3, 4, 5])

    def test_a_row_has_a_cell_for_each_heading(self):
        self.assertEqual(self.check(HEAD + "| a | `a_test` |\n"), [(3, "2 cells under 3 headings")])

    def test_a_table_of_limits_has_the_column(self):
        text = 'a table of limits ends with the column "Test"'
        self.assertEqual(self.check("| What | Limit |\n|---|---|\n| a | 1 |\n", "SECURITY.md"), [(1, text)])
        calls = "\n| Calls | What happens |\n|---|---|\n| a | b |\n"
        self.assertEqual(self.check(calls), [(2, text)])
        self.assertEqual(self.check(calls, "docs/interface.md"), [])


if __name__ == "__main__":
    unittest.main()
