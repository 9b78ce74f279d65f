"""The machine in words: its processors, memory, operating system and Wine. Neither its name nor a path of it."""

import os
import pathlib
import re
import subprocess

KIB_A_GB = 1024 * 1024


def processors_text(cpuinfo):
    """Number and kind, from what /proc/cpuinfo says."""
    count = len(re.findall(r"^processor\s*:", cpuinfo, re.MULTILINE))
    kinds = sorted(set(re.findall(r"^model name\s*:\s*(.+?)\s*$", cpuinfo, re.MULTILINE)))
    text = f"{count} processor{'' if count == 1 else 's'}"
    return f"{text} ({', '.join(kinds)})" if kinds else text


def memory_text(meminfo):
    """From what /proc/meminfo says."""
    total = re.search(r"^MemTotal:\s*(\d+) kB", meminfo, re.MULTILINE)
    return f"{round(int(total.group(1)) / KIB_A_GB)} GB of memory" if total else "memory of unknown size"


def system_text(os_release):
    """From what /etc/os-release says."""
    name = re.search(r'^PRETTY_NAME="?([^"\n]*)"?$', os_release, re.MULTILINE)
    return name.group(1) if name else "an unknown system"


def version_of(program):
    """What a program says to --version, or None if it cannot be run."""
    try:
        return subprocess.run([program, "--version"], capture_output=True, text=True, check=True, timeout=60).stdout.strip()
    except (OSError, subprocess.SubprocessError):
        return None


def content(path):
    try:
        return pathlib.Path(path).read_text(encoding="utf-8")
    except OSError:
        return ""


def machine_text():
    """This machine."""
    loader = os.environ.get("ZEB_WINE_LOADER", "/usr/lib/wine/wine64")
    words = [processors_text(content("/proc/cpuinfo")), memory_text(content("/proc/meminfo")),
             system_text(content("/etc/os-release")), version_of(loader) or "no Wine"]
    node = version_of("node")
    return ", ".join(words + ([f"node {node}"] if node else []))
