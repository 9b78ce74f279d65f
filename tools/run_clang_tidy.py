#!/usr/bin/env python3
"""Runs clang-tidy over the sources: run_clang_tidy.py [--without-tests] [FILE...]

The Windows build is looked at as clang sees it: the compile commands are those of GCC, so clang is told the target and
where GCC keeps its headers. Files that are built natively and look different there are looked at a second time, and the
fuzz targets as they are built. With names of files, only those are looked at. Tests take longer than all the rest, for
the headers that they include.

A run with nothing to say is remembered in build/lint/clang-tidy by a hash of all that it read, and left out until some of
that changes. Deleting that folder makes everything be looked at again.
"""

import hashlib
import itertools
import json
import os
import re
import shlex
import subprocess
import sys
from collections import namedtuple
from concurrent.futures import ThreadPoolExecutor
from functools import lru_cache
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
ROOMS = ("support", "timezone", "mapi", "changelog", "contacts", "calendar", "agent", "libraries", "localstore",
         "desktop", "tests")
WINDOWS = ROOT / "build" / "release"
SANITIZE = ROOT / "build" / "sanitize"
FUZZ = ROOT / "build" / "fuzz"
CLEAN = ROOT / "build" / "lint" / "clang-tidy"
# What clang alone says about code for GCC: an attribute that it does not know, and methods that promise less about
# exceptions than the platform's headers do as clang reads them.
NOT_FOR_CLANG = ["-Wno-unknown-attributes", "-Wno-microsoft-exception-spec"]

# How a build compiles a file: the compiler, its arguments without those that name the input and the output, and all files
# that it read, which are None if the build does not know them for certain.
Compilation = namedtuple("Compilation", "path folder compiler arguments read")
# One run of clang-tidy: the command line, and the hash of what it reads, which is None if that is not known.
Run = namedtuple("Run", "path folder command key")


def gcc_header_arguments(compiler):
    """What tells clang to use the headers of a cross compiler, but not the ones that stand for GCC's own built-ins."""
    shown = subprocess.run([compiler, "-v", "-E", "-x", "c++", os.devnull], capture_output=True, text=True, check=True)
    listed = re.search(r"#include <\.\.\.> search starts here:\n(.*?)End of search list", shown.stderr, re.S).group(1)
    folders = [os.path.normpath(line.strip()) for line in listed.splitlines()]
    return [f"-isystem{folder}" for folder in folders if not re.search(r"/gcc/.*/include(-fixed)?$", folder)]


def split_command(command):
    """The compiler of a compile command, the arguments that tell how it reads the source, and the name of the output."""
    words = shlex.split(command)
    # The compiler is the last word in front of the options, behind a launcher such as ccache.
    launched = list(itertools.takewhile(lambda word: not word.startswith("-"), words))
    arguments, output = [], None
    rest = iter(words[len(launched):])
    for word in rest:
        if word == "-o":
            output = next(rest)
        elif word == "-c":
            next(rest)
        else:
            arguments.append(word)
    return launched[-1], arguments, output


def parse_deps(text):
    """What `ninja -t deps` lists: the files that each output was made from, by the name of the output."""
    found, files = {}, []
    for line in text.splitlines():
        if line.startswith(" "):
            files.append(line.strip())
        elif line:
            name, _, state = line.partition(": #deps ")
            files = []
            if state.endswith("(VALID)"):
                found[name] = files
    return found


def read_for(folder, output, deps):
    """The files that an output was made from. None if the build does not know, or if one has changed since: it may include
    other headers by now."""
    if output not in deps:
        return None
    files = [folder / name for name in deps[output]]
    try:
        made = (folder / output).stat().st_mtime_ns
        return files if all(file.stat().st_mtime_ns <= made for file in files) else None
    except FileNotFoundError:
        return None


def compilations(build):
    """How a build compiles the files of the rooms, in the order of the rooms."""
    database = build / "compile_commands.json"
    if not database.exists():
        sys.exit(f"run_clang_tidy: {database} is missing; build first")
    shown = subprocess.run(["ninja", "-C", str(build), "-t", "deps"], capture_output=True, text=True, check=True)
    deps = parse_deps(shown.stdout)
    found = []
    for entry in json.loads(database.read_text(encoding="utf-8")):
        path, folder = Path(entry["file"]), Path(entry["directory"])
        if path.is_relative_to(ROOT) and path.relative_to(ROOT).parts[0] in ROOMS:
            compiler, arguments, output = split_command(entry["command"])
            found.append(Compilation(path, folder, compiler, arguments, read_for(folder, output, deps)))
    return sorted(found, key=lambda one: ROOMS.index(one.path.relative_to(ROOT).parts[0]))


@lru_cache(maxsize=None)
def content(path):
    """The hash of a file and the words in it. Where the project lies makes no difference."""
    data = path.read_bytes().replace(os.fsencode(ROOT), b"")
    return hashlib.sha256(data).hexdigest(), frozenset(re.findall(rb"\w+", data))


def key_of(compilation, options, version):
    """The hash of all that a run of clang-tidy reads. Where headers are looked for makes no difference once they are
    found, nor does a macro of the command line that no file mentions."""
    if compilation.read is None:
        return None
    files = sorted(set(os.path.normpath(file) for file in compilation.read))
    contents = [content(Path(file)) for file in files]
    told = []
    arguments = iter(compilation.arguments)
    for argument in arguments:
        if argument == "-isystem":
            next(arguments)
        elif argument.startswith("-D"):
            name = os.fsencode(argument[2:].partition("=")[0])
            if any(name in words for _, words in contents):
                told.append(argument)
        elif not argument.startswith("-I"):
            told.append(argument)
    whole = [version, str(compilation.path), options, told, [(file, sha) for file, (sha, _) in zip(files, contents)]]
    return hashlib.sha256(json.dumps(whole).replace(str(ROOT), "").encode()).hexdigest()


def clang_tidy_version():
    """What decides on the findings besides the sources: the program, the checks, and how this script calls it."""
    shown = subprocess.run(["clang-tidy", "--version"], capture_output=True, text=True, check=True).stdout
    return shown + (ROOT / ".clang-tidy").read_text(encoding="utf-8")


def runs_of(found, options, version):
    """The runs of clang-tidy for compilations. Those that read the same are one."""
    common = ["clang-tidy", "--quiet", f"--header-filter=^{re.escape(str(ROOT))}/({'|'.join(ROOMS)})/"]
    seen = set()
    for one in found:
        key = key_of(one, options, version)
        if key is None or key not in seen:
            seen.add(key)
            command = [*common, str(one.path), "--", *options[:1], *one.arguments, *options[1:]]
            yield Run(one.path, one.folder, command, key)


def asks_for_windows(path):
    """Whether a file looks different in a native build."""
    return "_WIN32" in path.read_text(encoding="utf-8")


def all_runs():
    """All runs of clang-tidy."""
    version = clang_tidy_version()
    windows = compilations(WINDOWS)
    options = ["--target=x86_64-w64-windows-gnu", *gcc_header_arguments(windows[0].compiler), *NOT_FOR_CLANG]
    yield from runs_of(windows, options, version)
    native = compilations(SANITIZE)
    seen = {one.path for one in windows}
    yield from runs_of([one for one in native if one.path not in seen or asks_for_windows(one.path)], [], version)
    seen |= {one.path for one in native}
    yield from runs_of([one for one in compilations(FUZZ) if one.path not in seen], [], version)



def look(run):
    """Runs clang-tidy and returns what it has to say, which is nothing if all is well."""
    done = subprocess.run(run.command, cwd=run.folder, capture_output=True, text=True, check=False)
    # Standard error counts what was left out; it matters only if clang-tidy itself failed.
    said = done.stdout.strip() or (done.stderr.strip() or "clang-tidy failed" if done.returncode else "")
    if not said and run.key:
        (CLEAN / run.key).write_text(f"{run.path.relative_to(ROOT)}\n", encoding="utf-8")
    return run, said


def main():
    arguments = sys.argv[1:]
    without_tests = "--without-tests" in arguments
    only = {Path(name).resolve() for name in arguments if not name.startswith("--")}
    wanted = [run for run in all_runs()
              if (not only or run.path in only) and not (without_tests and ROOT / "tests" in run.path.parents)]
    CLEAN.mkdir(parents=True, exist_ok=True)
    work = [run for run in wanted if not run.key or not (CLEAN / run.key).exists()]

    bad = 0
    with ThreadPoolExecutor(len(os.sched_getaffinity(0))) as pool:
        for number, (run, said) in enumerate(pool.map(look, work), 1):
            print(f"[{number}/{len(work)}] {run.path.relative_to(ROOT)}", flush=True)
            if said:
                bad += 1
                print(said, flush=True)
    print(f"clang-tidy: {len(wanted)} runs, {len(wanted) - len(work)} of them clean before, {bad} with findings")
    return 1 if bad or not wanted else 0


if __name__ == "__main__":
    sys.exit(main())
