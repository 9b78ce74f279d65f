"""What make bench measured, as it stands in a file of JSON lines, and what follows from it.

A line is one measurement: {"what", "kind", "items", "seconds", "peak_bytes", "store_bytes"}. "seconds" has the whole time of
each repetition. Programs that take turns may write a line each time; lines of the same measurement are put together. The bytes
may be left out; those of the agent are what its process grows by in a full read, and what one grows by that does nothing but
the read's store calls."""

import json
import statistics
from collections import namedtuple

KINDS = {
    "contacts": "contacts",
    "appointments": "single appointments",
    "recurring": "recurring appointments",
    "exceptions": "recurring appointments with 50 exceptions",
}
# The parts of the least that an item can cost, measured alone.
FLOOR = ("callbacks", "store", "documents")
WHATS = {"agent", "changed", "folders", "comparison", "msgreader-cold", "msgreader-warm", *FLOOR}

# The median of what the repetitions gave, and the least and the most of it.
Spread = namedtuple("Spread", "median least most")


def spread_of(values):
    """The spread of numbers, or None if there are none."""
    return Spread(statistics.median(values), min(values), max(values)) if values else None


def ratios(ones, others):
    """What one thing takes in terms of another. Repetitions that took turns are as many, and those of the same place are
    compared: whatever else the machine did at that time slowed both. Others are compared with the median."""
    if len(ones) != len(others):
        others = [statistics.median(others)] * len(ones) if others else []
    return [one / other for one, other in zip(ones, others)]


class Measurement:
    """One thing that was measured: seconds of each repetition, and bytes where somebody looked at them."""

    def __init__(self):
        self.seconds = []
        self.peak_bytes = None
        self.store_bytes = None

    def add(self, line):
        seconds = line["seconds"]
        if not seconds or any(not isinstance(number, (int, float)) or number <= 0 for number in seconds):
            raise ValueError(f"times of {line['what']} are not numbers above 0: {seconds}")
        self.seconds += seconds
        for name in ("peak_bytes", "store_bytes"):
            if line.get(name) is not None:
                setattr(self, name, max(line[name], getattr(self, name) or 0))

    def bytes_beyond_store(self):
        """The most memory less what the store held of it, or None."""
        if self.peak_bytes is None or self.store_bytes is None:
            return None
        return self.peak_bytes - self.store_bytes


class Measurements:
    """All measurements, by what was measured, the kind of the items and their number."""

    def __init__(self, lines=()):
        self._found = {}
        for line in lines:
            if line["what"] not in WHATS or line["kind"] not in KINDS or line["items"] < 1:
                raise ValueError(f"not a measurement: {line}")
            key = (line["what"], line["kind"], line["items"])
            self._found.setdefault(key, Measurement()).add(line)

    def has_any(self):
        return bool(self._found)

    def get(self, what, kind, items):
        """The measurement, or None."""
        return self._found.get((what, kind, items))

    def sizes(self, kind, *whats):
        """The numbers of items for which all of these were measured, ascending."""
        found = [{items for what, of, items in self._found if (what, of) == (name, kind)} for name in whats]
        return sorted(set.intersection(*found))

    def repetitions(self):
        """The least and the greatest number of repetitions."""
        counts = [len(measurement.seconds) for measurement in self._found.values()]
        return min(counts), max(counts)

    def seconds(self, what, kind, items):
        """The seconds of each repetition; none if it was not measured. "floor" is the sum of its parts."""
        if what == "floor":
            return [sum(parts) for parts in zip(*(self.seconds(part, kind, items) for part in FLOOR))]
        found = self.get(what, kind, items)
        return found.seconds if found else []

    def per_item(self, what, kind, items):
        """The spread of the seconds an item, or None."""
        return spread_of([number / items for number in self.seconds(what, kind, items)])

    def ratio(self, what, other, kind, items):
        """How many times as long one thing takes as the other, or None."""
        return spread_of(ratios(self.seconds(what, kind, items), self.seconds(other, kind, items)))

    def rest(self, kind, items):
        """The spread of the seconds an item that the agent takes beyond the floor, or None."""
        return spread_of([(agent - floor) / items for agent, floor in
                          zip(self.seconds("agent", kind, items), self.seconds("floor", kind, items))])

    def growth(self, kind, most, least):
        """How many times as long an item takes in a large folder as in a small one, or None."""
        return spread_of(ratios([seconds / most for seconds in self.seconds("agent", kind, most)],
                                [seconds / least for seconds in self.seconds("agent", kind, least)]))

    def bytes_an_item(self, kind, items):
        """The memory that a full read takes for an item, without the store's own, or None."""
        found = self.get("agent", kind, items)
        beyond = found.bytes_beyond_store() if found else None
        return None if beyond is None else beyond / items

    def beyond_callback(self, kind, plain):
        """How many times as long an item takes as a plain one, without the time that its longer callback takes more; or
        None. Each kind is taken in the largest folder for which it is known."""
        sizes = {name: self.sizes(name, "agent", "callbacks") for name in (kind, plain)}
        if not all(sizes.values()):
            return None
        items, plain_items = sizes[kind][-1], sizes[plain][-1]
        plain_callback = self.per_item("callbacks", plain, plain_items).median
        times = [(agent - callback) / items + plain_callback for agent, callback in
                 zip(self.seconds("agent", kind, items), self.seconds("callbacks", kind, items))]
        return spread_of(ratios(times, [seconds / plain_items for seconds in self.seconds("agent", plain, plain_items)]))


def load(path):
    """The measurements of a file of JSON lines."""
    with open(path, encoding="utf-8") as file:
        return Measurements(json.loads(line) for line in file if line.strip())
