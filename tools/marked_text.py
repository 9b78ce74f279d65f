"""Text that a script writes into a document that people write: all between two marks is the script's."""

import pathlib
import re
import sys


def find(document, begin, end):
    """The text of a document and the place between its two marks; a document without one such place ends the script."""
    text = pathlib.Path(document).read_text(encoding="utf-8")
    places = list(re.finditer(f"(?<={re.escape(begin)}).*?(?={re.escape(end)})", text, flags=re.DOTALL))
    if len(places) != 1:
        sys.exit(f"{document} has {len(places)} places between {begin} and {end}")
    return text, places[0]


def text_between(document, begin, end):
    """What stands between the two marks of a document, without the line end behind the first one."""
    _, place = find(document, begin, end)
    return place[0].removeprefix("\n")


def write_between(document, begin, end, text):
    """Puts text between the two marks of a document."""
    old, place = find(document, begin, end)
    pathlib.Path(document).write_text(f"{old[:place.start()]}\n{text}{old[place.end():]}", encoding="utf-8")
