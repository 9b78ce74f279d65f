#!/usr/bin/env python3
"""Writes the table of a sweep between its two marks in a document: faults_table.py [--drop] DOCUMENT LIST LOG...

The list is that of all tests, in whose order the rows come; each log is that of some of them. A row that the document has and that
would be lost, because its sweep meets no call any more or is gone, is an error, unless --drop allows it.
"""

import argparse
import pathlib
import sys

from marked_text import text_between, write_between

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


def subject(row):
    """What a row tells of: the operation and what fails in it."""
    return tuple(cell.strip() for cell in row.strip().strip("|").split("|")[:2])


def lost(old, table):
    """The first row of an old table, the sums among it, that a new one has no row for."""
    kept = {subject(row) for row in table}
    return next((row for row in old.splitlines() if row.startswith("| ") and subject(row) not in kept), None)


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
    parser = argparse.ArgumentParser()
    parser.add_argument("--drop", action="store_true", help="let rows go that the document has")
    parser.add_argument("document")
    parser.add_argument("list")
    parser.add_argument("logs", nargs="+")
    asked = parser.parse_args(arguments)
    found = {name: row for path in asked.logs for name, row in rows(read(path))}
    wanted = list(names(read(asked.list)))
    lacking = [name for name in wanted if name not in found]
    if lacking:
        sys.exit(f"faults_table: no log tells of {lacking[0]}, one of {len(lacking)}")
    table = [found[name] for name in wanted if found[name]]
    missing = lost(text_between(asked.document, BEGIN, END), [HEADINGS, *table, total(table)])
    if missing and not asked.drop:
        sys.exit(f"faults_table: the row {' in '.join(subject(missing))} is gone; --drop lets it go")
    write_between(asked.document, BEGIN, END, HEADINGS + "".join(table) + total(table))


if __name__ == "__main__":
    main(sys.argv[1:])
