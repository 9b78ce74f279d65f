#!/usr/bin/env python3
"""Measures what a read costs: bench.py MEASUREMENTS.jsonl. Each line of the file is one measurement:

{"what": ..., "kind": ..., "items": N, "seconds": [of each repetition over all items, ...],
 "peak_bytes": ..., "store_bytes": ...}

"agent" is a full read by a desktop program that does nothing with what it gets, "callbacks", "store" and "documents" are the
three parts of its floor, each alone. "changed" is a read of changes of a folder in which nothing changed, "folders" the folder
document, "comparison" the comparison with a map alone. The repetitions of what is compared take turns, so that what disturbs
the machine meanwhile disturbs them all. The bytes are what the process grows by in its first full read, at its peak: the
agent's, and that of the process that does nothing but the store's part.

The environment is that of the end-to-end tests, and ZEB_BENCH_BIN_DIR holds the measuring programs.
"""

import json
import os
import pathlib
import re
import shutil
import subprocess
import sys
import time

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "e2e"))

import bench_items  # noqa: E402
import harness  # noqa: E402
from harness import windows_path  # noqa: E402

MSGREADER = pathlib.Path(__file__).resolve().parent / "msgreader/run.sh"
BENCH_BIN = pathlib.Path(os.environ.get("ZEB_BENCH_BIN_DIR", harness.ROOT / "build/release/bench"))

# What is read: a kind, how many items, how often, and whether the parts of the floor are measured too.
PLAN = [
    ("contacts", 500, 15, True),
    ("appointments", 500, 15, True),
    ("recurring", 500, 15, True),
    ("exceptions", 500, 15, True),
    ("contacts", 5000, 3, False),
    ("appointments", 5000, 3, False),
    ("contacts", 50000, 1, False),
    ("appointments", 50000, 1, False),
]
# Comparisons are quick, and the folder document too.
QUICK_REPETITIONS = 7


def say(text):
    print(f"bench: {time.monotonic() - BEGIN:4.0f} s: {text}", flush=True)


BEGIN = time.monotonic()


class Program:
    """A measuring program, which answers one line by another."""

    def __init__(self, place, program, *arguments):
        self._process = subprocess.Popen(
            [str(harness.ROOT / "tools/run-wine.sh"), windows_path(program), *map(str, arguments)],
            env=place.environment(), stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        self.name = pathlib.Path(program).name
        if self._answer() != ["ready"]:
            raise RuntimeError(f"{self.name} does not get ready")

    def _answer(self):
        line = self._process.stdout.readline().decode()
        if not line:
            raise RuntimeError(f"{self.name} ended with {self._process.wait(harness.PATIENCE)}")
        return line.split()

    def ask(self, line="run"):
        self._process.stdin.write(f"{line}\n".encode())
        self._process.stdin.flush()
        return self._answer()

    def seconds(self, line="run"):
        return float(self.ask(line)[0])

    def memory(self):
        return Memory(self._process.pid)

    def close(self):
        self._process.stdin.close()
        if self._process.wait(harness.PATIENCE) != 0:
            raise RuntimeError(f"{self.name} failed")


class Memory:
    """What a process grows by at its peak, from now on."""

    def __init__(self, process):
        self._folder = pathlib.Path(f"/proc/{process}")
        # The peak begins anew with what there is now (proc(5), clear_refs).
        (self._folder / "clear_refs").write_text("5")
        self._before = self._kilobytes("VmRSS")

    def _kilobytes(self, name):
        return int(re.search(rf"^{name}:\s+(\d+) kB$", (self._folder / "status").read_text(), re.M)[1])

    def growth(self):
        return (self._kilobytes("VmHWM") - self._before) * 1024


class Measuring:
    """The measurements of one folder of one kind, with an agent of its own."""

    def __init__(self, place, output, folder, kind, count):
        self.place, self.output, self.folder, self.kind, self.count = place, output, folder, kind, count
        self.profile = folder.parents[1].name
        self.read = "contacts" if bench_items.KINDS[kind][1] == "Contacts" else "calendars"
        self.other = "calendars" if self.read == "contacts" else "contacts"

    def write(self, what, seconds, **more):
        line = {"what": what, "kind": self.kind, "items": self.count, "seconds": seconds, **more}
        self.output.write(json.dumps(line) + "\n")
        self.output.flush()
        best = min(seconds)
        say(f"{self.profile} {what}: {best:.3f} s, {best / self.count * 1e6:.1f} us an item" +
            "".join(f", {name} {value / self.count:.0f} an item" for name, value in more.items()))

    def start(self, program, *arguments):
        return Program(self.place, BENCH_BIN / program, *arguments)

    def store(self):
        return self.start("bench_store.exe", windows_path(self.place.bin / "MAPI32.dll"), self.profile, self.read)

    def run(self, repetitions, with_floor):
        agent = self.place.start_agent()
        client = self.start("bench_client.exe")
        if client.ask(f"logon {self.profile}") != ["0"]:
            raise RuntimeError("no logon")
        client.ask(self.other)
        peaks = self.measure_memory(agent, client)
        if with_floor:
            self.measure_with_floor(client, repetitions, peaks)
        else:
            self.write("agent", [client.seconds(self.read) for _ in range(repetitions)], **peaks)
        self.measure_changed(client)
        self.write("folders", [client.seconds("folders") for _ in range(QUICK_REPETITIONS)])
        client.ask("logoff")
        client.ask("shutdown")
        client.close()
        agent.wait(harness.PATIENCE)
        self.measure_comparison()
        if with_floor:
            self.measure_independent_reader(repetitions)

    def measure_independent_reader(self, repetitions):
        """Another program that reads the same files. It says for itself what it needs and whether it is there."""
        self.output.flush()
        subprocess.run([MSGREADER, self.folder, self.kind, str(repetitions), self.output.name], check=True)

    def measure_memory(self, agent, client):
        memory = Memory(agent.pid)
        _, documents, _ = client.ask(self.read)
        if int(documents) != self.count:
            raise RuntimeError(f"{documents} documents of {self.count}")
        peak = memory.growth()
        store = self.store()
        memory = store.memory()
        store.ask()
        own = memory.growth()
        store.close()
        return {"peak_bytes": peak, "store_bytes": own}

    def measure_with_floor(self, client, repetitions, peaks):
        texts = self.place.path / "documents.texts"
        client.ask(f"keep {windows_path(texts)}")
        client.ask(self.read)
        parts = {
            "agent": client,
            "callbacks": self.start("bench_callbacks.exe", windows_path(texts), self.read),
            "store": self.store(),
            "documents": self.start("bench_documents.exe", windows_path(texts)),
        }
        seconds = {name: [] for name in parts}
        for repetition in range(repetitions + 1):
            for name, program in parts.items():
                taken = program.seconds(self.read)
                # The first one warms up.
                if repetition > 0:
                    seconds[name].append(taken)
        for name, taken in seconds.items():
            self.write(name, taken, **(peaks if name == "agent" else {}))
        for name, program in parts.items():
            if name != "agent":
                program.close()
        floor = sum(min(taken) for name, taken in seconds.items() if name != "agent")
        say(f"{self.profile}: {min(seconds['agent']) / floor:.3f} times the floor")

    def measure_changed(self, client):
        changes = windows_path(self.place.path / f"{self.profile}.map")
        client.ask(f"{self.read} {changes}")
        answers = [client.ask(f"{self.read} {changes}") for _ in range(3)]
        if any(int(answer[1]) != 0 for answer in answers):
            raise RuntimeError("something changed")
        self.write("changed", [float(answer[0]) for answer in answers])

    def measure_comparison(self):
        comparison = self.start_beside_agent("bench_comparison.exe",
                                             windows_path(self.place.path / f"{self.profile}-alone.map"), self.count)
        self.write("comparison", [comparison.seconds() for _ in range(QUICK_REPETITIONS)])
        comparison.close()

    def start_beside_agent(self, program, *arguments):
        """Starts a program where it finds the agent's libraries."""
        shutil.copy2(BENCH_BIN / program, self.place.bin)
        return Program(self.place, self.place.bin / program, *arguments)


def main(output_path, wanted):
    place = harness.Place()
    try:
        pathlib.Path(output_path).unlink(missing_ok=True)
        messages = bench_items.make_messages(place)
        say("messages of " + ", ".join(f"{len(content)} bytes ({kind})" for kind, content in messages.items()))
        with open(output_path, "a", encoding="ascii") as output:
            for kind, count, repetitions, with_floor in PLAN:
                profile = f"{kind}{count}"
                if wanted and profile not in wanted:
                    continue
                folder = bench_items.fill_profile(place, profile, messages, kind, count)
                say(f"{profile}: made")
                Measuring(place, output, folder, kind, count).run(repetitions, with_floor)
                shutil.rmtree(folder)
    finally:
        place.close()


if __name__ == "__main__":
    main(sys.argv[1], sys.argv[2:])
