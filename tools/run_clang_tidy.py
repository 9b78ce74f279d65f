#!/usr/bin/env python3
"""Runs clang-tidy over the sources: run_clang_tidy.py [--without-tests] [FILE...]

The Windows build is looked at as clang sees it: the compile commands are those of GCC, so clang is told the target and
where GCC keeps its headers. Files that are built natively and look different there are looked at a second time. With
names of files, only those are looked at. Tests take longer than all the rest, for the headers that they include.
"""

import itertools
import json
import os
import re
import shlex
import subprocess
import sys
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
ROOMS = ("support", "timezone", "mapi", "changelog", "contacts", "calendar", "agent", "libraries", "localstore",
         "desktop", "tests")
WINDOWS = ROOT / "build" / "release"
NATIVE = ROOT / "build" / "sanitize"
# What clang alone says about code for GCC: an attribute that it does not know, and methods that promise less about
# exceptions than the platform's headers do as clang reads them.
NOT_FOR_CLANG = ["-Wno-unknown-attributes", "-Wno-microsoft-exception-spec"]


def gcc_header_arguments(compiler):
    """What tells clang to use the headers of a cross compiler, but not the ones that stand for GCC's own built-ins."""
    shown = subprocess.run([compiler, "-v", "-E", "-x", "c++", os.devnull], capture_output=True, text=True, check=True)
    listed = re.search(r"#include <\.\.\.> search starts here:\n(.*?)End of search list", shown.stderr, re.S).group(1)
    folders = [os.path.normpath(line.strip()) for line in listed.splitlines()]
    return [f"-isystem{folder}" for folder in folders if not re.search(r"/gcc/.*/include(-fixed)?$", folder)]


def compiler_of(command):
    """The compiler of a compile command: the last word in front of the options, behind a launcher such as ccache."""
    words = itertools.takewhile(lambda word: not word.startswith("-"), shlex.split(command))
    return list(words)[-1]


def commands(build):
    """The compiler of each file of the rooms in a compile database, one entry a file."""
    database = build / "compile_commands.json"
    if not database.exists():
        sys.exit(f"run_clang_tidy: {database} is missing; build first")
    found = {}
    for entry in json.loads(database.read_text()):
        path = Path(entry["file"])
        if path.is_relative_to(ROOT) and path.relative_to(ROOT).parts[0] in ROOMS:
            found.setdefault(path, compiler_of(entry["command"]))
    return found


def jobs():
    """All runs of clang-tidy: the file and the command line."""
    common = ["clang-tidy", "--quiet", f"--header-filter=^{re.escape(str(ROOT))}/({'|'.join(ROOMS)})/"]
    windows = commands(WINDOWS)
    compiler = next(iter(windows.values()))
    arguments = ["--target=x86_64-w64-windows-gnu", *gcc_header_arguments(compiler), *NOT_FOR_CLANG]
    windows_options = ["-p", str(WINDOWS)] + [f"--extra-arg={argument}" for argument in arguments]
    for path in windows:
        yield path, common + windows_options + [str(path)]
    if NATIVE.exists():
        for path in commands(NATIVE):
            if path not in windows or "_WIN32" in path.read_text(encoding="utf-8"):
                yield path, common + ["-p", str(NATIVE), str(path)]


def main():
    arguments = sys.argv[1:]
    without_tests = "--without-tests" in arguments
    only = {Path(name).resolve() for name in arguments if not name.startswith("--")}
    work = [(path, command) for path, command in jobs()
            if (not only or path in only) and not (without_tests and ROOT / "tests" in path.parents)]

    def run(job):
        done = subprocess.run(job[1], capture_output=True, text=True, check=False)
        # Standard error counts what was left out; it matters only if clang-tidy itself failed.
        return job[0], done.returncode, done.stdout.strip() or (done.stderr.strip() if done.returncode else "")

    bad = 0
    with ThreadPoolExecutor(len(os.sched_getaffinity(0))) as pool:
        for number, (path, status, text) in enumerate(pool.map(run, work), 1):
            print(f"[{number}/{len(work)}] {path.relative_to(ROOT)}", flush=True)
            if status != 0 or text:
                bad += 1
                print(text, flush=True)
    print(f"clang-tidy: {len(work)} runs, {bad} with findings")
    return 1 if bad or not work else 0


if __name__ == "__main__":
    sys.exit(main())
