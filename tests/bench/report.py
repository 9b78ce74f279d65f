#!/usr/bin/env python3
"""Writes what make bench measured between the two marks of a document, and the plot of how it grows: report.py MEASUREMENTS
DOCUMENT PLOT. MEASUREMENTS is a file of JSON lines (see measurements.py), PLOT the SVG file beside the document."""

import pathlib
import re
import sys

import growth_plot
import machine
import measurements
import report_aims
import report_misses
import report_tables

BEGIN = "<!-- the tables of make bench begin -->"
END = "<!-- the tables of make bench end -->"


def repetitions_text(found):
    least, most = found.repetitions()
    return f"{least} repetitions" if least == most else f"{least} to {most} repetitions"


def content(found, machine_text, plot):
    """What stands between the marks."""
    sections = [
        ("What it came to", report_aims.aim_table(found)),
        ("Side by side, the time an item", report_tables.ratio_table(found)),
        ("Before a first read", report_tables.before_table(found)),
        ("Where the time of an item goes", report_tables.part_table(found)),
        ("As folders grow", f"![Time and memory an item, by the number of items]({plot})\n\n" +
         report_tables.growth_table(found)),
        ("Where the time of a changed read goes", report_tables.changed_table(found)),
        ("Memory", report_tables.memory_table(found)),
        ("The list of folders, and the comparison alone", report_tables.list_table(found)),
        ("Where aims are missed", report_misses.miss_list(found)),
    ]
    head = f"The machine: {machine_text}. Each measurement has {repetitions_text(found)}.\n"
    return "\n".join([head, *(f"### {title}\n\n{text}" for title, text in sections)])


def between_marks(text, new):
    """The text with something else between its marks."""
    pattern = re.escape(BEGIN) + ".*?" + re.escape(END)
    if not re.search(pattern, text, re.DOTALL):
        raise ValueError("the document has no place for the tables")
    return re.sub(pattern, lambda _: f"{BEGIN}\n\n{new}\n{END}", text, flags=re.DOTALL)


def main(source, document, plot):
    found = measurements.load(source)
    if not found.has_any():
        sys.exit(f"report: nothing was measured in {source}")
    document, plot = pathlib.Path(document), pathlib.Path(plot)
    text = between_marks(document.read_text(encoding="utf-8"), content(found, machine.machine_text(), plot.name))
    plot.write_text(growth_plot.plot(found), encoding="utf-8")
    document.write_text(text, encoding="utf-8")


if __name__ == "__main__":
    main(*sys.argv[1:])
