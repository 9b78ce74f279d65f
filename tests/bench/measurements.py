"""What make bench measured, as it stands in a file of JSON lines, and what follows from it.

A line is one measurement: {"what", "kind", "items", "seconds", "turn", "peak_bytes", "store_bytes"}. "seconds" has the whole
time of each repetition. What took turns, one repetition of each after the other, has the same word as its "turn"; without one
nothing is known of when it ran beside the others. Programs that take turns may write a line each time; lines of the same
measurement are put together. The bytes may be left out; those of a full read are what the agent's process grows by in the
first one, and what one grows by that does nothing but the read's store calls."""

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
# Parts of what is left of the agent's time: the selections that it makes in documents, the conversion of dates, and the texts of
# series. What a kind does not have takes no time: nothing is selected in a contact's document.
OWN = ("selections", "dates", "series")
WITHOUT = {"selections": {"contacts"}, "series": {"contacts", "appointments"}}
# A read of changes that finds none, and its parts.
UNCHANGED = ("unchanged", "listing", "store-changed", "rows", "row-dates", "comparison", "unchanged-one", "store-changed-one",
             "comparison-one")
WHATS = {"start", "logon", "agent", "agent-first", "grown-first", "full", "changed", "folders", "store-first",
         "store-grown-first", "store-again", "msgreader-cold", "msgreader-warm", "class", "turns", "own-turns", *FLOOR, *OWN,
         *UNCHANGED}

# What the agent's own time consists of, in seconds an item. "handing" is what its class takes more for the documents than direct
# calls do. "floor_by_turns" is what the parts of the floor take more one item after the other than each in a loop of its own,
# "own_by_turns" what these parts then take more besides, and "neither" what is left. Each may be None.
OwnTime = namedtuple("OwnTime", "selections dates series handing floor_by_turns own_by_turns neither")

# What a read of changes consists of that finds none, in seconds an item: the system's part of the store's calls and the rest of
# them, the conversion of the dates, the list with its identifiers, the comparison with the map, what is done but once, and what
# is left. Each may be None.
ChangedTime = namedtuple("ChangedTime", "listing store dates identifiers comparison once neither")

# The median of what the repetitions gave, and the least and the most of it, which are None if there is but one value.
Spread = namedtuple("Spread", "median least most")


def spread_of(values):
    """The spread of numbers, or None if there are none."""
    if not values:
        return None
    return Spread(statistics.median(values), *((min(values), max(values)) if len(values) > 1 else (None, None)))


def less(time, *parts):
    """A time without its parts, or None if one of them is not known."""
    return None if time is None or None in parts else time - sum(parts)


class Measurement:
    """One thing that was measured: seconds of each repetition, and bytes where somebody looked at them."""

    def __init__(self):
        self.seconds = []
        self.turn = None
        self.peak_bytes = None
        self.store_bytes = None

    def add(self, line):
        seconds = line["seconds"]
        if not seconds or any(not isinstance(number, (int, float)) or number <= 0 for number in seconds):
            raise ValueError(f"times of {line['what']} are not numbers above 0: {seconds}")
        turn = line.get("turn")
        if self.seconds and turn != self.turn:
            raise ValueError(f"{line['what']} took different turns: {self.turn} and {turn}")
        self.turn = turn
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
            return self.by_turns(FLOOR, kind, items, lambda *parts: sum(parts))
        found = self.get(what, kind, items)
        return found.seconds if found else []

    def took_turns(self, whats, kind, items):
        """Whether there is one repetition of each of these in every turn."""
        found = [self.get(what, kind, items) for what in whats]
        return found[0].turn is not None and len({(one.turn, len(one.seconds)) for one in found}) == 1

    def by_turns(self, whats, kind, items, work_out):
        """Works something out of the seconds of several things: for each turn if they took turns, so that whatever else the
        machine did then counts for all of them, and once of their medians otherwise. Nothing if one of them is missing."""
        times = [self.seconds(what, kind, items) for what in whats]
        if not all(times):
            return []
        if not self.took_turns(whats, kind, items):
            times = [[statistics.median(numbers)] for numbers in times]
        return [work_out(*numbers) for numbers in zip(*times)]

    def per_item(self, what, kind, items):
        """The spread of the seconds an item, or None."""
        return spread_of([number / items for number in self.seconds(what, kind, items)])

    def median_per_item(self, what, kind, items):
        """The median of the seconds an item, or None."""
        spread = self.per_item(what, kind, items)
        return spread.median if spread else None

    def ratio(self, what, other, kind, items):
        """How many times as long one thing takes as the other, or None."""
        others = FLOOR if other == "floor" else (other,)
        return spread_of(self.by_turns((what, *others), kind, items, lambda one, *parts: one / sum(parts)))

    def from_start(self, kind, items):
        """How many times as long as the cold program a first read takes with the start of the agent and the logon, or None."""
        return spread_of(self.by_turns(("msgreader-cold", "start", "logon", "agent-first"), kind, items,
                                       lambda program, *parts: sum(parts) / program))

    def rest(self, kind, items):
        """The spread of the seconds an item that the agent takes beyond the floor, or None."""
        return spread_of(self.by_turns(("agent", *FLOOR), kind, items, lambda agent, *parts: (agent - sum(parts)) / items))

    def more(self, kind, items, what, *others):
        """The median of the seconds an item that a thing takes more than others together, or None."""
        spread = spread_of(self.by_turns((what, *others), kind, items, lambda one, *parts: (one - sum(parts)) / items))
        return spread.median if spread else None

    def own_time(self, kind, items):
        """What the agent takes beyond the floor, taken apart."""
        alone = [0 if kind in WITHOUT.get(what, ()) else self.median_per_item(what, kind, items) for what in OWN]
        alone.append(self.more(kind, items, "class", "documents"))
        rest = self.rest(kind, items)
        by_turns = [self.more(kind, items, "turns", *FLOOR), less(self.more(kind, items, "own-turns", "turns"), *alone)]
        return OwnTime(*alone, *by_turns, less(rest.median if rest else None, *alone, *by_turns))

    def changed_time(self, kind, items):
        """What a read of changes takes that finds none, taken apart."""
        parts = [self.median_per_item("listing", kind, items), self.more(kind, items, "store-changed", "listing"),
                 self.median_per_item("row-dates", kind, items), self.more(kind, items, "rows", "row-dates"),
                 self.median_per_item("comparison", kind, items),
                 self.more(kind, items, "unchanged-one", "store-changed-one", "comparison-one")]
        return ChangedTime(*parts, less(self.median_per_item("unchanged", kind, items), *parts))

    def growth(self, kind, most, least, what="full"):
        """How many times as long an item takes in a large folder as in a small one, or None. Two folders do not take turns."""
        times = [self.median_per_item(what, kind, items) for items in (most, least)]
        return times[0] / times[1] if None not in times else None

    def bytes_an_item(self, kind, items):
        """The memory that a full read takes for an item, without the store's own, or None."""
        found = self.get("full", kind, items)
        beyond = found.bytes_beyond_store() if found else None
        return None if beyond is None else beyond / items

    def beyond_callback(self, kind, plain, whats=("agent",)):
        """How many times as long an item takes as a plain one, without the time that its longer callback takes more; or
        None. Each kind is taken in the largest folder for which it is known; two folders do not take turns."""
        times = []
        for name in (kind, plain):
            sizes = self.sizes(name, *whats, "callbacks")
            if not sizes:
                return None
            times.append([sum(self.median_per_item(what, name, sizes[-1]) for what in whats),
                          self.median_per_item("callbacks", name, sizes[-1])])
        (time, callback), (plain_time, plain_callback) = times
        return (time - callback + plain_callback) / plain_time


def load(path):
    """The measurements of a file of JSON lines."""
    with open(path, encoding="utf-8") as file:
        return Measurements(json.loads(line) for line in file if line.strip())
