#!/usr/bin/env python3
"""Writes the table of a sweep between its two marks in a document: faults_table.py DOCUMENT LIST LOG...

The list is that of all tests, in whose order the rows come; each log is that of some of them.
"""

import pathlib
import sys

from marked_text import write_between

BEGIN = "<!-- the table of make faults begins -->"
END = "<!-- the table of make faults ends -->"
HEADINGS = "| Operation | What fails | Points | Runs | Crashes | Leaks | Losses |\n|---|---|---:|---:|---:|---:|---:|\n"


def read(path):
    return pathlib.Path(path).read_text(encoding="utf-8", errors="replace").replace("\r", "")


def rows(log):
    """The tests that came to their end, each by its name, with the row of its sweep or without one; a log that ends in the
    middle of a test gives no table."""
    running = row = None
    for line in log.splitlines():
        if line.startswith("[ RUN      ]"):
            running = line[len("[ RUN      ]"):].strip()
            row = None if "/Faults." in running else ""
        elif line.startswith(("[       OK ]", "[  FAILED  ]")):
            if running is not None and row is not None:
                yield running, row
            running = None
        elif line.startswith("FAULTS: "):
            operation, kind, points, runs, leaks, losses = (
                cell.strip() for cell in line[len("FAULTS: "):].strip().strip("|").split("|")
            )
            # What a kind never meets in an operation cannot fail there. A log with a crash in it ends in the middle.
            row = "" if points == "0" else f"| {operation} | {kind} | {points} | {runs} | 0 | {leaks} | {losses} |\n"
    if running is not None:
        sys.exit(f"faults_table: the program ended in {running}")


def total(table):
    """The row with the sums of all rows."""
    cells = [row.strip().strip("|").split("|")[2:] for row in table]
    return "| all | | " + " | ".join(str(sum(map(int, column))) for column in zip(*cells)) + " |\n"


def names(listed):
    """The names of the tests of a list."""
    suite = ""
    for line in listed.splitlines():
        name = line.split("#")[0].rstrip()
        if name.startswith("  "):
            yield suite + name.strip()
        else:
            suite = name


def main(arguments):
    document, listed, *logs = arguments
    found = {name: row for path in logs for name, row in rows(read(path))}
    wanted = list(names(read(listed)))
    lacking = [name for name in wanted if name not in found]
    if lacking:
        sys.exit(f"faults_table: no log tells of {lacking[0]}, one of {len(lacking)}")
    table = [found[name] for name in wanted if found[name]]
    write_between(document, BEGIN, END, HEADINGS + "".join(table) + total(table))


if __name__ == "__main__":
    main(sys.argv[1:])
