#!/usr/bin/env python3
"""Runs cppcheck over the sources: first as the Windows build compiles them, then the pure ring and its fuzz targets as they
are compiled natively.

What it is told about the platform stands in tools/cppcheck/platform.cfg, and what it is not to say, each with its reason, in
tools/cppcheck/suppressions.txt. It keeps what it found out in build/lint/cppcheck, and looks again at what has changed.
"""

import json
import subprocess
import sys

from run_clang_tidy import FUZZ, ROOT, WINDOWS, compilations

SETTINGS = ROOT / "tools" / "cppcheck"
KEPT = ROOT / "build" / "lint" / "cppcheck"


def database(build):
    """A compile database of the rooms' files alone, each once for every set of macros. Platform headers are left out, which
    cppcheck knows from its libraries, and with them the paths of programs that tests get in macros, whose quotes it does not
    understand."""
    entries = {}
    for one in compilations(build):
        told = [word for word in one.arguments if word.startswith(("-D", "-I", "-std=")) and '"' not in word]
        macros = [word for word in told if not word.startswith("-I")]
        entries.setdefault((one.path, *macros),
                           {"directory": str(one.folder), "file": str(one.path), "arguments": ["c++", *told, str(one.path)]})
    return list(entries.values())


def look(build, platform, checks):
    """Looks at the files of a build. Returns how many there are, and whether there was nothing to say."""
    kept = KEPT / build.name
    kept.mkdir(parents=True, exist_ok=True)
    entries = database(build)
    project = kept / "compile_commands.json"
    project.write_text(json.dumps(entries, indent=1), encoding="utf-8")
    # Of two descriptions of a macro the first one counts.
    libraries = [str(SETTINGS / "platform.cfg"), "windows", "googletest"]
    done = subprocess.run(
        ["cppcheck", "--quiet", f"--project={project}", f"--platform={platform}", f"--enable={checks}",
         *(f"--library={library}" for library in libraries), f"--suppressions-list={SETTINGS / 'suppressions.txt'}",
         f"--cppcheck-build-dir={kept}", f"--relative-paths={ROOT}", "--error-exitcode=1",
         "--template={file}:{line}: {severity}: {message} [{id}]"], cwd=ROOT, check=False)
    return len(entries), done.returncode == 0


def main():
    checks = "warning,style,performance,portability"
    # What is suppressed without a need is said about the first of them, which has all files that are named there.
    windows, windows_clean = look(WINDOWS, "win64", f"{checks},information")
    native, native_clean = look(FUZZ, "unix64", checks)
    print(f"cppcheck: {windows + native} runs")
    return 0 if windows_clean and native_clean and windows and native else 1


if __name__ == "__main__":
    sys.exit(main())
