"""Text that a script writes into a document that people write: all between two marks is the script's."""

import pathlib
import re
import sys


def write_between(document, begin, end, text):
    """Puts text between the two marks of a document; a document without them ends the script."""
    path = pathlib.Path(document)
    old = path.read_text(encoding="utf-8")
    new, places = re.subn(f"{re.escape(begin)}.*?{re.escape(end)}", lambda _: f"{begin}\n{text}{end}", old, flags=re.DOTALL)
    if places != 1:
        sys.exit(f"{document} has {places} places between {begin} and {end}")
    path.write_text(new, encoding="utf-8")
