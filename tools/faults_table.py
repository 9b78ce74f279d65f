#!/usr/bin/env python3
"""Writes the table of a sweep between its two marks in a document: faults_table.py DOCUMENT LIST LOG...

The list is that of all tests, in whose order the rows come; each log is that of some of them.
"""

import pathlib
import re
import sys

BEGIN = "<!-- the table of make faults begins -->"
END = "<!-- the table of make faults ends -->"
HEADINGS = "| Operation | What fails | Points | Runs | Crashes | Leaks | Losses |\n|---|---|---:|---:|---:|---:|---:|\n"


def read(path):
    return pathlib.Path(path).read_text(encoding="utf-8", errors="replace").replace("\r", "")


def rows(log):
    """The rows of the sweeps that came to their end, by the names of their tests; a log that ends in the middle of a test
    gives no table."""
    running = row = None
    for line in log.splitlines():
        if line.startswith("[ RUN      ]"):
            running, row = line[len("[ RUN      ]"):].strip(), None
        elif line.startswith(("[       OK ]", "[  FAILED  ]", "[  SKIPPED ]")):
            if running is not None and row is not None:
                yield running, row
            running = None
        elif line.startswith("FAULTS: "):
            operation, kind, points, runs, leaks, losses = (
                cell.strip() for cell in line[len("FAULTS: "):].strip().strip("|").split("|")
            )
            # What a kind never meets in an operation cannot fail there.
            if points != "0":
                row = f"| {operation} | {kind} | {points} | {runs} | 0 | {leaks} | {losses} |"
    if running is not None:
        sys.exit(f"faults_table: the program ended in {running}")


def names(listed):
    """The names of the tests of a list."""
    suite = ""
    for line in listed.splitlines():
        name = line.split("#")[0].rstrip()
        if name.startswith("  "):
            yield suite + name.strip()
        else:
            suite = name


def main():
    document = pathlib.Path(sys.argv[1])
    found = {name: row for path in sys.argv[3:] for name, row in rows(read(path))}
    table = HEADINGS + "".join(found[name] + "\n" for name in names(read(sys.argv[2])) if name in found)
    text = document.read_text(encoding="utf-8")
    pattern = re.escape(BEGIN) + ".*?" + re.escape(END)
    if not re.search(pattern, text, re.DOTALL):
        sys.exit(f"faults_table: {document} has no place for the table")
    document.write_text(re.sub(pattern, lambda _: BEGIN + "\n" + table + END, text, flags=re.DOTALL), encoding="utf-8")


main()
