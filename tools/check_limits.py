#!/usr/bin/env python3
"""Checks that the documents name tests which are there: check_limits.py [ROOT]

- A table with a column "Limit", and each table of docs/limits.md, ends with a column "Test". Each of its cells names a test,
  or begins with "none:" and says why there is none.
- A test is named in backticks by its file, `zone_table_test` or `test_pictures`, or by itself behind its file,
  `zone_table_test: LongDisplayNameIsCut`. Wherever a document does that, the file is there, is built or run by a list of
  CMake, and holds the test.

Prints one line a finding and ends with 1 if there is any.
"""

import re
import sys
from collections import namedtuple
from pathlib import Path

Finding = namedtuple("Finding", "path line text")

NAMED = re.compile(r"`(\w+_test|(?:test|fuzz)_\w+)(?:: (\w+(?:, \w+)*))?`")
# One that goes on in the next line, where nobody would look for it.
UNENDED = re.compile(r"`(?:\w+_test|(?:test|fuzz)_\w+):[^`]*$")
# By what a table is known as one of limits, the column that it needs then, and how a cell without a test begins.
LIMIT_COLUMN = "Limit"
LIMITS = "docs/limits.md"
TEST_COLUMN = "Test"
WITHOUT_TEST = "none: "

# Where tests stand, with the files that hold them.
ROOMS = ("tests", "tools")
CPP_TEST = r"^TEST(?:_F|_P)?\(\s*\w+,\s*{}\)"
PYTHON_TEST = r"^\s*(?:class|def) {}\b"


class Tests:
    """The files of tests below a root, by their names without an ending, and the lists that have them run."""

    def __init__(self, root):
        self.files = {}
        lists = []
        for room in ROOMS:
            for path in sorted((Path(root) / room).rglob("*")):
                if path.name == "CMakeLists.txt":
                    lists.append(path.read_text(encoding="utf-8"))
                elif path.suffix in (".cpp", ".py") and NAMED.fullmatch(f"`{path.stem}`"):
                    self.files[path.stem] = path
        self.lists = re.sub(r"#[^\n]*", "", "\n".join(lists))

    def missing(self, stem, names):
        """What is wrong with the tests of these names in a file; None if nothing is."""
        path = self.files.get(stem)
        if path is None:
            return f"there is no test file {stem}"
        # The lists name scripts by what they test.
        listed = rf"(?:test_)?{stem.removeprefix('test_')}" if path.suffix == ".py" else re.escape(path.name)
        if not re.search(rf"(?<!\w){listed}(?!\w)", self.lists):
            return f"no CMake list has {path.name} run"
        text = path.read_text(encoding="utf-8")
        pattern = PYTHON_TEST if path.suffix == ".py" else CPP_TEST
        for name in names:
            if not re.search(pattern.format(name), text, re.M):
                return f"there is no test {name} in {path.name}"
        return None


def check_names(path, lines, tests):
    for number, line in enumerate(lines, 1):
        for match in NAMED.finditer(line):
            wrong = tests.missing(match.group(1), (match.group(2) or "").split(", ") if match.group(2) else [])
            if wrong:
                yield Finding(path, number, wrong)
        if UNENDED.search(line):
            yield Finding(path, number, "the name of a test does not end in its line")


def cells(line):
    """The cells of a line of a table; None for any other line."""
    line = line.strip()
    return [cell.strip() for cell in line.strip("|").split("|")] if line.startswith("|") else None


def check_tables(path, lines):
    heading = None
    for number, line in enumerate(lines, 1):
        row = cells(line)
        if row is None:
            heading = None
        elif heading is None:
            heading = row
            if (path == LIMITS or LIMIT_COLUMN in heading) and heading[-1] != TEST_COLUMN:
                yield Finding(path, number, f'a table of limits ends with the column "{TEST_COLUMN}"')
        elif heading[-1] == TEST_COLUMN and set(line.strip()) - set("|-: "):
            if len(row) != len(heading):
                yield Finding(path, number, f"{len(row)} cells under {len(heading)} headings")
            elif not NAMED.search(row[-1]) and not re.match(WITHOUT_TEST + r"\w", row[-1]):
                yield Finding(path, number, f'names no test, and not behind "{WITHOUT_TEST.strip()}" why there is none')


def check(root):
    """The number of documents of a tree, the number of tests that they name, and all findings."""
    root = Path(root)
    tests = Tests(root)
    documents = sorted([*root.glob("*.md"), *(root / "docs").glob("*.md")])
    findings = []
    named = 0
    for document in documents:
        text = document.read_text(encoding="utf-8")
        named += len(NAMED.findall(text))
        path = document.relative_to(root).as_posix()
        findings += [*check_names(path, text.splitlines(), tests), *check_tables(path, text.splitlines())]
    return len(documents), named, sorted(findings)


def main():
    root = Path(sys.argv[1]) if len(sys.argv) > 1 else Path(__file__).resolve().parent.parent
    documents, named, findings = check(root)
    for finding in findings:
        print(f"{finding.path}:{finding.line}: {finding.text}")
    if named == 0:
        print(f"check_limits: no document below {root} names a test")
        return 1
    print(f"check_limits: {documents} documents, {named} tests named, {len(findings)} findings")
    return 1 if findings else 0


if __name__ == "__main__":
    sys.exit(main())
