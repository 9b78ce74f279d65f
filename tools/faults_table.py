#!/usr/bin/env python3
"""Writes the table of a sweep between its two marks in a document: faults_table.py LOG DOCUMENT."""

import pathlib
import re
import sys

BEGIN = "<!-- the table of make faults begins -->"
END = "<!-- the table of make faults ends -->"
HEADINGS = "| Operation | What fails | Points | Runs | Crashes | Leaks | Losses |\n|---|---|---:|---:|---:|---:|---:|\n"


def rows(log):
    """The rows of the sweeps that came to their end; a log that ends in the middle of a test gives no table."""
    running = None
    for line in log.splitlines():
        if line.startswith("[ RUN      ]"):
            running = line[len("[ RUN      ]"):].strip()
        elif line.startswith(("[       OK ]", "[  FAILED  ]", "[  SKIPPED ]")):
            running = None
        elif line.startswith("FAULTS: "):
            operation, kind, points, runs, leaks, losses = (
                cell.strip() for cell in line[len("FAULTS: "):].strip().strip("|").split("|")
            )
            # What a kind never meets in an operation cannot fail there.
            if points != "0":
                yield f"| {operation} | {kind} | {points} | {runs} | 0 | {leaks} | {losses} |"
    if running is not None:
        sys.exit(f"faults_table: the program ended in {running}")


def main():
    log = pathlib.Path(sys.argv[1]).read_text(encoding="utf-8", errors="replace").replace("\r", "")
    document = pathlib.Path(sys.argv[2])
    text = document.read_text(encoding="utf-8")
    table = HEADINGS + "\n".join(rows(log)) + "\n"
    pattern = re.escape(BEGIN) + ".*?" + re.escape(END)
    if not re.search(pattern, text, re.DOTALL):
        sys.exit(f"faults_table: {document} has no place for the table")
    document.write_text(re.sub(pattern, lambda _: BEGIN + "\n" + table + END, text, flags=re.DOTALL), encoding="utf-8")


main()
