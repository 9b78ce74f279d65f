"""Where aims are missed: for each one by how much, and where the time goes, out of the measurements alone."""

from measurements import FLOOR, KINDS
from report_aims import aims, is_missed, values_text, verdict
from report_tables import NOT_MEASURED, SIZES, cell, ratio_text, time_text


def time_cell(seconds):
    return cell(time_text, seconds)


# What stands behind the time of each part of the agent's own.
OWN_WORDS = {
    "selections": "in selections in the document",
    "dates": "in the conversion of dates",
    "series": "in reading the series and telling its exceptions",
    "handing": "in handing texts to the XML service and taking the document from it",
    "floor_by_turns": "more where the parts of the floor take turns than where each runs alone",
    "own_by_turns": "more where these take turns too",
    "neither": "not taken apart",
}


def own_text(found, kind, items):
    """What the agent's own time consists of, as far as it was measured. Nothing is said of what the kind does not have."""
    rest = found.rest(kind, items)
    if rest is None:
        return f"What the agent's own time is was {NOT_MEASURED}."
    parts = {name: time for name, time in found.own_time(kind, items)._asdict().items() if time != 0}
    words = [f"{time_text(time)} {OWN_WORDS[name]}" for name, time in parts.items() if time is not None]
    words += [f"the rest of it was {NOT_MEASURED}"] * (None in parts.values())
    *words, last = words
    return f"{time_text(rest.median)} an item are the agent's own: {', '.join(words)}{', and ' * bool(words)}{last}."


def beyond_floor(kind):
    def explain(found, _):
        return " ".join(own_text(found, kind, items) for items in found.sizes(kind, "agent", *FLOOR)[-1:])
    return explain


def explain_exceptions(found, _):
    floor = found.beyond_callback("exceptions", "recurring", FLOOR)
    documents = [found.median_per_item("documents", kind, items) for kind in ("exceptions", "recurring")
                 for items in found.sizes(kind, "documents")[-1:]]
    if floor is None or len(documents) != 2:
        return ""
    return (f"Its floor alone, the longer callback taken off, is {floor:.2f} times that of a plain one: the XML service takes "
            f"{time_text(documents[0])} for its document and {time_text(documents[1])} for a plain one's. " +
            beyond_floor("exceptions")(found, _))


def explain_growth(found, aim):
    words = []
    for kind, name in KINDS.items():
        value = aim.values.get(name)
        if value is not None and is_missed(aim, value):
            times = [found.median_per_item(what, kind, items) for what in ("full", "store-again")
                     for items in (SIZES[-1], SIZES[0])]
            words.append(f"Of {name} one takes {time_cell(times[0])} instead of {time_cell(times[1])}, and the store's calls "
                         f"alone {time_cell(times[2])} instead of {time_cell(times[3])}.")
    return " ".join(words)


def kinds_that_miss(aim):
    return [kind for kind, name in KINDS.items()
            if any(value is not None and is_missed(aim, value) for of, value in aim.values.items() if of.split(",")[0] == name)]


# What stands behind the time of each part of a read of changes that finds none.
CHANGED_WORDS = {
    "listing": "in the system's listing of the folder",
    "store": "in the store's calls beyond that",
    "dates": "in the conversion of its date",
    "identifiers": "in the list with its identifier",
    "comparison": "in the comparison with the map",
    "once": "in what a read does but once",
    "neither": "not taken apart",
}


def changed_text(found, kind, items):
    """What a read of changes consists of, as far as it was measured."""
    whole = found.median_per_item("unchanged", kind, items)
    if whole is None:
        return f"What a changed read of {items:,} {KINDS[kind]} consists of was {NOT_MEASURED}."
    parts = found.changed_time(kind, items)._asdict()
    words = [f"{time_text(time)} {CHANGED_WORDS[name]}" for name, time in parts.items() if time is not None]
    words += [f"the rest of it was {NOT_MEASURED}"] * (None in parts.values())
    *words, last = words
    return f"Of {items:,} {KINDS[kind]} an unchanged one takes {time_text(whole)}: {', '.join(words)}, and {last}."


def store_share_text(found, kind, items):
    """How much of a full read the store's calls of a changed one are alone."""
    full, store, listing = (found.median_per_item(what, kind, items) for what in ("full", "store-changed", "listing"))
    if None in (full, store, listing):
        return ""
    return (f" The store's calls alone are {100 * store / full:.2f} % of the full read, and the system's part of them "
            f"{100 * listing / full:.2f} %.")


def explain_changed(found, aim):
    """The largest folder of each kind. The others are in the table."""
    return " ".join(changed_text(found, kind, items) + store_share_text(found, kind, items)
                    for kind in kinds_that_miss(aim) for items in found.sizes(kind, "full", "changed")[-1:])


def explain_program(found, aim):
    words = []
    for kind in kinds_that_miss(aim):
        items = found.sizes(kind, "agent-first", "msgreader-cold")[-1]
        first, again, store, callbacks, documents, cold, warm = (found.median_per_item(what, kind, items) for what in (
            "agent-first", "agent", "store-first", "callbacks", "documents", "msgreader-cold", "msgreader-warm"))
        words.append(f"One of {items:,} {KINDS[kind]} takes {time_text(first)} in the first read and {time_cell(again)} in a "
                     f"repeated one. The store's calls alone take {time_cell(store)} of the first read, in a new process too. "
                     f"The program takes {time_text(cold)} cold and {time_cell(warm)} warm. It hands nothing to another process "
                     "and builds no documents of the XML service, which as parts of the floor take "
                     f"{time_cell(callbacks)} and {time_cell(documents)} an item.")
        together = found.from_start(kind, items)
        if together is not None:
            words.append(f"With the start of the agent and the logon the ratio is {ratio_text(together)}.")
        rest = found.rest(kind, items)
        if rest is not None:
            words.append(f"Of the repeated read {time_text(rest.median)} are the agent's own.")
    return " ".join(words)


EXPLANATIONS = {
    "contact": beyond_floor("contacts"),
    "appointment": beyond_floor("appointments"),
    "exceptions": explain_exceptions,
    "growth": explain_growth,
    "changed": explain_changed,
    "program": explain_program,
}


def miss_text(found, aim):
    explain = EXPLANATIONS.get(aim.name, lambda *_: "")
    return f"- **{aim.text}**: {verdict(aim)} ({values_text(aim)}). {explain(found, aim)}".rstrip() + "\n"


def miss_list(found):
    missed = [aim for aim in aims(found) if any(value is not None and is_missed(aim, value) for value in aim.values.values())]
    return "".join(miss_text(found, aim) for aim in missed) or "None of those that were measured.\n"
