#!/usr/bin/env python3
"""Measures what a read costs: bench.py MEASUREMENTS.jsonl [FOLDER...]. A FOLDER is a kind and a number, and may have a number
that is not planned. Each line of the file is one measurement:

{"what": ..., "kind": ..., "items": N, "seconds": [of each repetition over all items, ...], "turn": ...,
 "peak_bytes": ..., "store_bytes": ...}

All reads are by a desktop program that does nothing with what it gets. "agent-first" is the first full read of a new agent,
"start" and "logon" are what is before it, and "store-first" is the same read by a process that does nothing but its store
calls; "msgreader-cold" takes turns with them. "agent" is a repeated full read. It takes turns with "callbacks", "store" and
"documents", the three parts of its floor, each alone, and with parts of what is the agent's own: "selections" are those that it
makes in the documents while they are built, "dates" the conversion of the items' dates, "series" the text that tells the
exceptions of a series, out of the property that holds it; "class" builds the documents by the agent's class instead of direct
calls. With them takes turns too what does the parts one item after the other: "turns" those of the floor, "own-turns" all of
these.

Each size of a folder is measured so: "grown-first" is the first full read of an agent that has read one item of the other kind,
and "store-grown-first" the same by the store calls alone; "full" is a repeated one that takes turns with "changed" alone, a read
of changes of a folder in which nothing changed. "store-again" are the store calls of "full", "folders" is the folder document.
A read of changes is then measured again, as "unchanged", by turns with its parts: "store-changed" are its store calls,
"listing" is what the system does for these, "rows" the list of identifiers and dates, "row-dates" the conversion of the dates
in it, and "comparison" that of the list with the map. "unchanged-one", "store-changed-one" and "comparison-one" are the same
of a folder with one item, of the other kind. What took turns has the same word as its turn. The bytes are what the process
grows by in its first full read, at its peak: the agent's, and that of the process that does nothing but the store's part, both
after a read of the other kind.

The environment is that of the end-to-end tests, and ZEB_BENCH_BIN_DIR holds the measuring programs.
"""

import functools
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
import item_fields  # noqa: E402
from harness import windows_path  # noqa: E402

MSGREADER = pathlib.Path(__file__).resolve().parent / "msgreader/run.sh"
BENCH_BIN = pathlib.Path(os.environ.get("ZEB_BENCH_BIN_DIR", harness.ROOT / "build/release/bench"))

# What is read: a kind, how many items, and how many turns: of first reads, of the full and the changed read, and of the agent
# with the parts of its floor.
PLAN = [
    ("contacts", 500, 5, 15, 15),
    ("appointments", 500, 5, 15, 15),
    ("recurring", 500, 5, 15, 15),
    ("exceptions", 500, 5, 15, 15),
    ("contacts", 5000, 0, 5, 0),
    ("appointments", 5000, 0, 5, 0),
    ("contacts", 50000, 0, 2, 0),
    ("appointments", 50000, 0, 2, 0),
]
# For a folder that is not planned: everything, but not often.
TURNS_TO_TRY = (2, 3, 3)
# Reads of changes and their parts are quick, and the folder document too.
QUICK_REPETITIONS = 7
STORE_REPETITIONS = 3
# How soon the agent is found that has started.
LOOK_AGAIN_SECONDS = 0.005
# The turn of new processes, for which the independent program writes lines of its own.
FIRST = "first"


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

    # Whether the independent program could be had so far.
    has_reader = True

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
        say(f"{self.profile} {what}: {best:.6f} s, {best / self.count * 1e6:.1f} us an item" +
            "".join(f", {name} {value / self.count:.0f} an item" for name, value in more.items() if name != "turn"))

    def start(self, program, *arguments):
        return Program(self.place, BENCH_BIN / program, *arguments)

    def store(self):
        return self.start("bench_store.exe", windows_path(self.place.bin / "MAPI32.dll"), self.profile)

    def write_all(self, seconds, turn, **more):
        """Writes what took turns. The bytes belong to the first."""
        for number, (name, taken) in enumerate(seconds.items()):
            self.write(name, taken, turn=turn, **(more if number == 0 else {}))

    def start_session(self):
        """An agent that is logged on to the profile, and the desktop program, with the seconds of the start and the logon."""
        begin = time.perf_counter()
        agent = self.place.start_agent(LOOK_AGAIN_SECONDS)
        started = time.perf_counter()
        client = self.start("bench_client.exe")
        ready = time.perf_counter()
        if client.ask(f"logon {self.profile}") != ["0"]:
            raise RuntimeError("no logon")
        return agent, client, (started - begin, time.perf_counter() - ready)

    def end_session(self, agent, client):
        client.ask("logoff")
        client.ask("shutdown")
        client.close()
        agent.wait(harness.PATIENCE)

    def read_all(self, client):
        """The seconds of a full read."""
        seconds, documents, _ = client.ask(self.read)
        if int(documents) != self.count:
            raise RuntimeError(f"{documents} documents of {self.count}")
        return float(seconds)

    def run(self, first_turns, turns, floor_turns):
        self.measure_first(first_turns)
        agent, client, _ = self.start_session()
        store = self.measure_growing(agent, client, turns)
        self.measure_unchanged(client, store)
        if floor_turns:
            self.measure_with_floor(client, floor_turns)
        self.write("folders", [client.seconds("folders") for _ in range(QUICK_REPETITIONS)])
        self.end_session(agent, client)
        if floor_turns:
            self.measure_independent_reader("warm", floor_turns)

    def measure_first(self, turns):
        """First reads: of an agent, of the store's calls alone and of the independent program, each a new process."""
        seconds = {"start": [], "logon": [], "agent-first": [], "store-first": []}
        for _ in range(turns):
            agent, client, before = self.start_session()
            for name, taken in zip(("start", "logon"), before):
                seconds[name].append(taken)
            seconds["agent-first"].append(self.read_all(client))
            self.end_session(agent, client)
            store = self.store()
            seconds["store-first"].append(store.seconds(self.read))
            store.close()
            self.measure_independent_reader("cold", 1)
        if turns:
            self.write_all(seconds, FIRST)

    def measure_independent_reader(self, how, repetitions):
        """Another program that reads the same files. It says for itself what it needs and whether it is there; where it is not,
        it is not asked again."""
        self.output.flush()
        self.run_independent_reader(how, repetitions, self.output.name)

    def run_independent_reader(self, how, repetitions, output):
        length = os.path.getsize(output) if os.path.exists(output) else 0
        if Measuring.has_reader:
            subprocess.run([MSGREADER, self.folder, self.kind, how, str(repetitions), output, FIRST], check=True)
            Measuring.has_reader = os.path.exists(output) and os.path.getsize(output) > length

    def changes_of(self, read):
        """The line that has the client read the changes of a folder, against a map of its own."""
        return f"{read} {windows_path(self.place.path / f'{self.profile}-{read}.map')}"

    @staticmethod
    def read_unchanged(client, line):
        """The seconds of a read of changes that finds none."""
        taken, documents, _ = client.ask(line)
        if int(documents) != 0:
            raise RuntimeError("something changed")
        return float(taken)

    def measure_growing(self, agent, client, turns):
        """What is measured of a folder of any size, in the same way. Gives the program that makes the store's calls, which has
        read the folder."""
        client.ask(self.other)
        memory = Memory(agent.pid)
        self.write("grown-first", [self.read_all(client)])
        peak = memory.growth()
        store, own = self.measure_store()
        changes = self.changes_of(self.read)
        client.ask(changes)
        seconds = {"full": [], "changed": []}
        for _ in range(turns):
            seconds["full"].append(self.read_all(client))
            seconds["changed"].append(self.read_unchanged(client, changes))
        self.write_all(seconds, "growth", peak_bytes=peak, store_bytes=own)
        return store

    def measure_store(self):
        """The program that makes the store's calls, and what the store's part of a read takes in memory."""
        store = self.store()
        store.ask(self.other)
        memory = store.memory()
        self.write("store-grown-first", [store.seconds(self.read)])
        own = memory.growth()
        self.write("store-again", [store.seconds(self.read) for _ in range(STORE_REPETITIONS)])
        return store, own

    def measure_unchanged(self, client, store):
        """A read of changes that finds none by turns with its parts, and what it costs where there is but one item."""
        lines = {read: self.changes_of(read) for read in (self.read, self.other)}
        client.ask(lines[self.other])
        listing = self.start("bench_listing.exe", windows_path(self.folder))
        comparison = self.start_comparison(self.count)
        comparison_of_one = self.start_comparison(1)
        self.take_turns({
            "unchanged": lambda: self.read_unchanged(client, lines[self.read]),
            "store-changed": lambda: store.seconds(f"list {self.read}"),
            "listing": lambda: self.list_files(listing),
            "rows": lambda: comparison.seconds("rows"),
            "row-dates": lambda: comparison.seconds("dates"),
            "comparison": lambda: comparison.seconds("compare"),
            "unchanged-one": lambda: self.read_unchanged(client, lines[self.other]),
            "store-changed-one": lambda: store.seconds(f"list {self.other}"),
            "comparison-one": lambda: comparison_of_one.seconds("compare"),
        }, QUICK_REPETITIONS, "unchanged")
        for program in (store, listing, comparison, comparison_of_one):
            program.close()

    def list_files(self, listing):
        seconds, files = listing.ask()
        if int(files) < self.count:
            raise RuntimeError(f"{files} files of {self.count}")
        return float(seconds)

    def take_turns(self, parts, turns, turn_name):
        """Writes the seconds of several things that take turns, each of which is a function that gives its seconds."""
        seconds = {name: [] for name in parts}
        for turn in range(turns + 1):
            for name, measure in parts.items():
                taken = measure()
                # The first one warms up.
                if turn > 0:
                    seconds[name].append(taken)
        self.write_all(seconds, turn_name)

    def measure_with_floor(self, client, floor_turns):
        texts = self.place.path / "documents.texts"
        client.ask(f"keep {windows_path(texts)}")
        client.ask(self.read)
        self.compare_fields(texts)
        callbacks = self.start("bench_callbacks.exe", windows_path(texts), self.read)
        store = self.store()
        documents = self.start("bench_documents.exe", windows_path(texts))
        one_by_one = self.start("bench_turns.exe", windows_path(texts), windows_path(self.place.bin / "MAPI32.dll"),
                                self.profile, self.read)
        parts = {
            "agent": (client, self.read),
            "callbacks": (callbacks, self.read),
            "store": (store, self.read),
            "documents": (documents, "documents"),
            "dates": (documents, "dates"),
            "class": (documents, "class"),
            "turns": (one_by_one, "turns"),
            "own-turns": (one_by_one, "own-turns"),
        }
        # Nothing is selected in a contact's document, and only recurring appointments are series.
        if self.read != "contacts":
            parts["selections"] = (documents, "selections")
        if self.kind in ("recurring", "exceptions"):
            parts["series"] = (one_by_one, "series")
        self.take_turns({name: functools.partial(program.seconds, line) for name, (program, line) in parts.items()},
                        floor_turns, "floor")
        for program in (callbacks, store, documents, one_by_one):
            program.close()

    def compare_fields(self, texts):
        """Holds what the independent program prints of every item against the agent's documents."""
        printed = self.place.path / "printed.jsonl"
        printed.unlink(missing_ok=True)
        self.run_independent_reader("fields", 1, printed)
        if printed.exists():
            number = item_fields.require_same(item_fields.documents_of(texts.read_bytes()), item_fields.printed_of(printed))
            say(f"{self.profile}: the independent program prints the agent's fields, {number} of them")

    def start_comparison(self, count):
        return self.start_beside_agent("bench_comparison.exe",
                                       windows_path(self.place.path / f"{self.profile}-alone{count}.map"), count)

    def start_beside_agent(self, program, *arguments):
        """Starts a program where it finds the agent's libraries."""
        shutil.copy2(BENCH_BIN / program, self.place.bin)
        return Program(self.place, self.place.bin / program, *arguments)


def folders_of(words):
    """What is planned, or what some words name: a kind and a number of items each."""
    planned = {f"{kind}{count}": (kind, count, *turns) for kind, count, *turns in PLAN}
    for word in words or planned:
        kind, count = re.fullmatch(r"([a-z]+)([1-9]\d*)", word).groups()
        yield planned.get(word, (kind, int(count), *TURNS_TO_TRY))


def main(output_path, words):
    place = harness.Place()
    try:
        pathlib.Path(output_path).unlink(missing_ok=True)
        messages = bench_items.make_messages(place)
        say("messages of " + ", ".join(f"{len(content)} bytes ({kind})" for kind, content in messages.items()))
        with open(output_path, "a", encoding="ascii") as output:
            for kind, count, *turns in folders_of(words):
                profile = f"{kind}{count}"
                folder = bench_items.fill_profile(place, profile, messages, kind, count)
                say(f"{profile}: made")
                Measuring(place, output, folder, kind, count).run(*turns)
                shutil.rmtree(folder)
    finally:
        place.close()


if __name__ == "__main__":
    main(sys.argv[1], sys.argv[2:])
