#!/usr/bin/env python3
"""Checks the rules of the house that no compiler knows: check_rooms.py [ROOT]

- includes run one way between the rooms;
- a file of the pure ring includes no Windows header, not even through another header;
- resources are released by the owners in support/owners.h and nowhere else;
- nothing outside tests/ takes the rights of another user;
- no source file has more than 500 lines.

Prints one line a finding and ends with 1 if there is any.
"""

import re
import sys
from collections import namedtuple
from pathlib import Path

Finding = namedtuple("Finding", "path line rule text")
# One #include of a file: the line, the name, whether it stands in quotes, and whether it is read natively.
Include = namedtuple("Include", "line name quoted native")

MOST_LINES = 500
CODE = {".cpp", ".h", ".c"}
COUNTED = CODE | {".idl", ".py", ".sh", ".cmake", ".txt"}
ROOMS = ("support", "timezone", "mapi", "changelog", "contacts", "calendar", "agent", "libraries", "localstore",
         "desktop", "tests", "tools", "cmake")

AGENT_ROOMS = {"support", "timezone", "mapi", "changelog"}
# The rooms that the files of a room may include. tests/ sees everything, headers beside a test too, and does not stand
# here.
MAY_INCLUDE = {
    "support": {"support"},
    "timezone": {"support", "timezone"},
    "mapi": {"support", "timezone", "mapi"},
    "changelog": AGENT_ROOMS,
    "contacts": AGENT_ROOMS | {"contacts"},
    "calendar": AGENT_ROOMS | {"calendar"},
    "agent": AGENT_ROOMS | {"contacts", "calendar", "agent"},
    "libraries": {"support", "libraries"},
    "localstore": {"support", "localstore"},
    "desktop": {"support", "desktop"},
}
# Single headers of another room that files below a folder may include besides, because both sides of a library's
# border use the same types.
MAY_INCLUDE_FILES = {
    "libraries/dunmere/": {"changelog/log_item.h", "changelog/get_change_log.h", "timezone/ole_date_time.h"},
}
# The headers that the compiler of the interface definitions makes, and the rooms that use them.
GENERATED = {"command.h": {"agent", "desktop", "tests"}, "callback.h": {"agent", "desktop", "tests"}}

OWNERS = "support/owners.h"
RAW_RELEASE = re.compile(
    r"(?:->|\.)\s*Release\s*\("
    r"|(?<![\w.>:])(?:::)?(?:pfnMAPIFreeBuffer|MAPIFreeBuffer|pfnFreeProws|FreeProws|CloseHandle|RegCloseKey"
    r"|SysFreeString|FindClose|FreeLibrary)\s*\(")

# Each of the platform's functions by which a thread acts as somebody else, RpcImpersonateClient and SetThreadToken among them.
IMPERSONATION = re.compile(r"\b(?:\w*Impersonate\w*|SetThreadToken|LogonUser\w*|CreateProcess(?:AsUser|WithToken|WithLogon)\w*)\s*\(")

# Files that may break a rule, and why. An entry that excuses nothing is a finding too.
EXCEPTIONS = {
    (OWNERS, "release"): "the owners themselves",
    ("localstore/exports.cpp", "release"): "defines the functions of these names that programs look up",
    ("tests/unit/localstore/buffers_test.cpp", "release"): "tests the freeing itself",
}

COMMENT_OR_TEXT = re.compile(
    r"//[^\n]*|/\*.*?\*/|R\"(?P<mark>[^\s()\\]{0,16})\(.*?\)(?P=mark)\"|\"(?:\\.|[^\"\\\n])*\"|'(?:\\.|[^'\\\n])*'", re.S)


def without_comments(source, keep_texts):
    """The source with comments, and unless told otherwise text literals, blanked out; line numbers stay."""

    def blank(match):
        found = match.group(0)
        if not found.startswith("/"):
            return found if keep_texts else '""' + "\n" * found.count("\n")
        return " " + "\n" * found.count("\n")

    return COMMENT_OR_TEXT.sub(blank, source)


def includes(source):
    """All includes of a source, with whether a native build reads each: Windows-only branches are not read there."""
    found = []
    branches = []
    for number, line in enumerate(without_comments(source, keep_texts=True).splitlines(), 1):
        directive = re.match(r"\s*#\s*(\w+)\s*(.*)", line)
        if not directive:
            continue
        word, rest = directive.group(1), directive.group(2).strip()
        if word in ("if", "ifdef", "ifndef"):
            about_windows = re.fullmatch(r"(!?)\s*(?:defined\s*\(?\s*)?_WIN32\s*\)?", rest)
            negated = (word == "ifndef") != bool(about_windows and about_windows.group(1))
            # Whether the native build reads the branch; other conditions are taken to be true in both branches.
            branches.append([negated, True] if about_windows else [True, False])
        elif word in ("else", "elif") and branches and branches[-1][1]:
            branches[-1][0] = not branches[-1][0]
        elif word == "endif" and branches:
            branches.pop()
        elif word == "include":
            name = re.match(r'"([^"]+)"|<([^>]+)>', rest)
            if name:
                native = all(branch[0] for branch in branches)
                found.append(Include(number, name.group(1) or name.group(2), bool(name.group(1)), native))
    return found


class House:
    """The source tree below a root, read once."""

    def __init__(self, root):
        self.root = Path(root)
        self.texts = {}
        for room in ROOMS:
            for path in sorted((self.root / room).rglob("*")):
                if path.suffix in COUNTED and path.is_file():
                    self.texts[path.relative_to(self.root).as_posix()] = path.read_text(encoding="utf-8")
        self.code = {path: text for path, text in self.texts.items() if Path(path).suffix in CODE}
        self.includes = {path: includes(text) for path, text in self.code.items()}

    def pure_files(self):
        """The files under PURE in the rooms' CMake lists."""
        for path, text in self.texts.items():
            if not path.endswith("CMakeLists.txt"):
                continue
            folder = path.rpartition("/")[0]
            for room in re.findall(r"\bzeb_room\s*\(([^)]*)\)", re.sub(r"#[^\n]*", "", text)):
                words = room.split()
                section = None
                for word in words[1:]:
                    if word in ("PURE", "PLATFORM", "LINK"):
                        section = word
                    elif section == "PURE":
                        yield f"{folder}/{word}"


def check_directions(house):
    for path, found in house.includes.items():
        room = path.split("/")[0]
        allowed = MAY_INCLUDE.get(room)
        for include in found:
            if not include.quoted:
                continue
            beside = f"{path.rpartition('/')[0]}/{include.name}"
            if "/" not in include.name:
                if room == "tests" and beside in house.code:
                    continue
                if room not in GENERATED.get(include.name, set()):
                    yield Finding(path, include.line, "include", f'"{include.name}" does not start with a room')
                continue
            if include.name not in house.code:
                yield Finding(path, include.line, "include", f'"{include.name}" is not in the tree')
                continue
            if allowed is None or include.name.split("/")[0] in allowed:
                continue
            if any(path.startswith(folder) and include.name in files for folder, files in MAY_INCLUDE_FILES.items()):
                continue
            yield Finding(path, include.line, "include", f'{room}/ may not include "{include.name}"')


def check_pure_ring(house):
    for pure in house.pure_files():
        if pure not in house.includes:
            yield Finding(pure, 1, "pure", "is in a PURE list and not in the tree")
            continue
        # Where each header was first met, so that a finding can tell the way.
        ways = {pure: pure}
        waiting = [pure]
        while waiting:
            path = waiting.pop()
            for include in house.includes[path]:
                if not include.native:
                    continue
                if not include.quoted and include.name.endswith(".h"):
                    yield Finding(path, include.line, "pure", f"<{include.name}> on the way {ways[path]}")
                if include.quoted and include.name in house.includes and include.name not in ways:
                    ways[include.name] = f"{ways[path]} -> {include.name}"
                    waiting.append(include.name)


def check_releases(house):
    for path, text in house.code.items():
        for number, line in enumerate(without_comments(text, keep_texts=False).splitlines(), 1):
            if RAW_RELEASE.search(line):
                yield Finding(path, number, "release", f"released outside {OWNERS}: {line.strip()}")


def check_rights(house):
    for path, text in house.code.items():
        if path.startswith("tests/"):
            continue
        for number, line in enumerate(without_comments(text, keep_texts=False).splitlines(), 1):
            if IMPERSONATION.search(line):
                yield Finding(path, number, "rights", f"takes the rights of another user: {line.strip()}")


def check_sizes(house):
    for path, text in house.texts.items():
        count = len(text.splitlines())
        if count > MOST_LINES:
            yield Finding(path, count, "size", f"{count} lines; {MOST_LINES} are the most")


def check(root, exceptions=None):
    """All findings of a tree that no exception excuses."""
    exceptions = EXCEPTIONS if exceptions is None else exceptions
    house = House(root)
    used = set()
    findings = []
    for checker in (check_directions, check_pure_ring, check_releases, check_rights, check_sizes):
        for finding in checker(house):
            if (finding.path, finding.rule) in exceptions:
                used.add((finding.path, finding.rule))
            else:
                findings.append(finding)
    for path, rule in exceptions.keys() - used:
        findings.append(Finding(path, 1, rule, "an exception in check_rooms.py excuses nothing here"))
    # The same header may be met on the way from several pure files: one line is enough.
    distinct = {(finding.path, finding.line, finding.rule): finding for finding in reversed(findings)}
    return len(house.texts), sorted(distinct.values())


def main():
    root = Path(sys.argv[1]) if len(sys.argv) > 1 else Path(__file__).resolve().parent.parent
    files, findings = check(root)
    for finding in findings:
        print(f"{finding.path}:{finding.line}: [{finding.rule}] {finding.text}")
    if files == 0:
        print(f"check_rooms: no source file below {root}")
        return 1
    print(f"check_rooms: {files} files, {len(findings)} findings")
    return 1 if findings else 0


if __name__ == "__main__":
    sys.exit(main())
