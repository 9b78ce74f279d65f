#!/usr/bin/env python3
"""Times print_messages.js over a folder and appends what it found to a file of JSON lines: measure.py FOLDER KIND cold|warm|fields
REPETITIONS OUTFILE TURN. Cold is a process a repetition; TURN is the word for what those take turns with. With "fields" nothing
is timed and the lines that are appended are those that the program prints. NODE_PATH names the folder of the package."""

import json
import os
import pathlib
import subprocess
import sys
import tempfile
import time

PROGRAM = pathlib.Path(__file__).resolve().parent / "print_messages.js"
BYTES_A_KIB = 1024


def run(arguments, output):
    """Runs the program with its output in a file: its seconds, the most memory that it held, and the lines it printed."""
    with open(output, "wb") as file:
        start = time.perf_counter()
        process = subprocess.Popen(["node", str(PROGRAM), *map(str, arguments)], stdout=file)
        _, status, usage = os.wait4(process.pid, 0)
        seconds = time.perf_counter() - start
    process.returncode = os.waitstatus_to_exitcode(status)
    if process.returncode != 0:
        sys.exit(f"measure: print_messages.js ended with {process.returncode}")
    lines = pathlib.Path(output).read_bytes().count(b"\n")
    return seconds, usage.ru_maxrss * BYTES_A_KIB, lines


def measure_cold(folder, kind, repetitions, place):
    """A process a repetition, each from its start to its end."""
    runs = [run([folder, kind, place], place / "lines") for _ in range(repetitions)]
    if len({lines for _, _, lines in runs}) != 1 or runs[0][2] == 0:
        sys.exit(f"measure: {kind} printed were {[lines for _, _, lines in runs]}")
    return [seconds for seconds, _, _ in runs], max(peak for _, peak, _ in runs), runs[0][2]


def measure_warm(folder, kind, repetitions, place):
    """One process, which times each reading of the folder behind a first one itself."""
    times = place / "times"
    _, peak, lines = run([folder, kind, place, repetitions, times], place / "lines")
    items, rest = divmod(lines, 1 + repetitions)
    if items == 0 or rest != 0:
        sys.exit(f"measure: {lines} {kind} printed, which is not {1 + repetitions} times the same number")
    return [float(line) for line in times.read_text(encoding="ascii").split()], peak, items


def append_fields(folder, kind, outfile):
    with tempfile.TemporaryDirectory() as place:
        run([folder, kind, place], pathlib.Path(place) / "lines")
        with open(outfile, "ab") as file:
            file.write((pathlib.Path(place) / "lines").read_bytes())


def main(folder, kind, how, repetitions, outfile, turn):
    messages = "contacts" if kind == "contacts" else "appointments"
    if how == "fields":
        append_fields(folder, messages, pathlib.Path(outfile))
        return
    measure = {"cold": measure_cold, "warm": measure_warm}[how]
    with tempfile.TemporaryDirectory() as place:
        seconds, peak, items = measure(folder, messages, int(repetitions), pathlib.Path(place))
    line = {"what": f"msgreader-{how}", "kind": kind, "items": items, "seconds": seconds, "peak_bytes": peak}
    if how == "cold":
        line["turn"] = turn
    with open(outfile, "a", encoding="utf-8") as file:
        file.write(json.dumps(line) + "\n")


main(*sys.argv[1:])
