#!/usr/bin/env python3
"""Writes how many lines of the pure ring were reached between two marks in a document, and prints the others:
coverage_table.py BUILD DOCUMENT. In BUILD lie compile_commands.json and lines/*.info, which `llvm-cov export` wrote."""

import json
import pathlib
import re
import sys

from marked_text import write_between

BEGIN = "<!-- the table of make coverage begins -->"
END = "<!-- the table of make coverage ends -->"
HEADINGS = "| Room | Lines | Reached | |\n|---|---:|---:|---:|\n"
ROOT = pathlib.Path(__file__).resolve().parent.parent
# What is linked into tests and tools alone is no part of the product.
NOT_COUNTED = ("build/", "localstore/sample/", "tests/")


def name_of(path):
    """The name in the project of a file of the product; nothing for any other file."""
    path = path.resolve()
    name = path.relative_to(ROOT).as_posix() if path.is_relative_to(ROOT) else ""
    return "" if name.startswith(NOT_COUNTED) else name


def code_lines(name):
    """The numbers of the lines with more than punctuation: a bracket behind a return counts as not reached."""
    source = (ROOT / name).read_text(encoding="utf-8").splitlines()
    return {number for number, line in enumerate(source, 1) if re.search(r"\w", line)}


def add_lines(export, build, files):
    """Adds for each file of the product how often each of its lines was reached."""
    lines = {}
    for line in export.read_text(encoding="utf-8").splitlines():
        kind, _, rest = line.partition(":")
        if kind == "SF":
            name = name_of(build / rest)
            lines = files.setdefault(name, {}) if name else {}
        elif kind == "DA":
            number, count = (int(cell) for cell in rest.split(",")[:2])
            lines[number] = lines.get(number, 0) + count


def reached_lines(build):
    files = {}
    for export in sorted((build / "lines").glob("*.info")):
        add_lines(export, build, files)
    for name, counted in files.items():
        files[name] = {number: counted[number] for number in code_lines(name) & counted.keys()}
    return files


def unlinked_sources(build, files):
    """The sources that are built natively and that no test links: nothing was counted of them."""
    commands = json.loads((build / "compile_commands.json").read_text(encoding="utf-8"))
    sources = {name_of(build / command["file"]) for command in commands}
    return sorted(sources - files.keys() - {""})


def row(name, counts):
    reached = sum(1 for count in counts if count)
    # Rounded down, so that one line that was not reached does not look like none.
    return f"| {name} | {len(counts)} | {reached} | {1000 * reached // len(counts) / 10:.1f} % |"


def rows(files):
    rooms = {}
    for name in sorted(files):
        rooms.setdefault(str(pathlib.PurePosixPath(name).parent), []).extend(files[name].values())
    for room, counts in sorted(rooms.items()):
        yield row(f"`{room}/`", counts)
    yield row("all", [count for counts in rooms.values() for count in counts])


def print_missed(files):
    for name in sorted(files):
        source = (ROOT / name).read_text(encoding="utf-8").splitlines()
        for number in sorted(number for number, count in files[name].items() if count == 0):
            print(f"not reached: {name}:{number}: {source[number - 1].strip()}")


def main(arguments):
    build = pathlib.Path(arguments[0]).resolve()
    files = {name: lines for name, lines in reached_lines(build).items() if lines}
    unlinked = unlinked_sources(build, files)
    if unlinked or not files:
        sys.exit(f"coverage_table: linked into no test: {', '.join(unlinked) or 'everything'}")
    print_missed(files)
    table = HEADINGS + "\n".join(rows(files)) + "\n"
    print(table, end="")
    write_between(arguments[1], BEGIN, END, table)


if __name__ == "__main__":
    main(sys.argv[1:])
