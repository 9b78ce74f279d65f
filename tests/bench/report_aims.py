"""What was aimed at, what was measured, and by how much an aim is missed."""

from collections import namedtuple

from measurements import FLOOR, KINDS
from report_tables import KB, NOT_MEASURED, SIZES, kb_text, percent_text, plain_ratio_text, ratio_text, table

# An aim: a short name, its words, the greatest value that meets it, whether that value itself misses it, how values are
# written, and the values by what they were measured of. A value is a number or a spread, or None for what was not measured.
Aim = namedtuple("Aim", "name text limit is_below form values")


def number_of(value):
    return getattr(value, "median", value)


def is_missed(aim, value):
    number = number_of(value)
    return number > aim.limit or (aim.is_below and number == aim.limit)


def verdict(aim):
    """Whether the aim is met, by the worst of what was measured."""
    measured = [number_of(value) for value in aim.values.values() if value is not None]
    if not measured:
        return NOT_MEASURED
    worst = max(measured)
    if is_missed(aim, worst):
        return f"missed by {100 * (worst / aim.limit - 1):.1f} %"
    return "met" if len(measured) == len(aim.values) else "met, as far as it was measured"


def values_text(aim):
    return "; ".join(f"{name}: {NOT_MEASURED if value is None else aim.form(value)}" for name, value in aim.values.items())


def aim_row(aim):
    return [aim.text, values_text(aim), verdict(aim)]


def worst_of_sizes(found, kind, whats, value_of):
    """The worst value of a kind among the numbers of items for which all of these were measured."""
    values = {items: value_of(items) for items in found.sizes(kind, *whats)}
    values = {items: value for items, value in values.items() if value is not None}
    if not values:
        return {KINDS[kind]: None}
    items = max(values, key=lambda size: number_of(values[size]))
    return {f"{KINDS[kind]}, {'worst at ' if len(values) > 1 else ''}{items:,}": values[items]}


def beside(found, read, other, kinds):
    """The ratios of a read to something else."""
    values = {}
    for kind in kinds:
        whats = FLOOR if other == "floor" else (other,)
        values |= worst_of_sizes(found, kind, (read, *whats),
                                 lambda items, of=kind: found.ratio(read, other, of, items))
    return values


def growing_kinds(found):
    """The kinds that were measured in the largest folder, and contacts in any case."""
    return [kind for kind in KINDS if kind == "contacts" or SIZES[-1] in found.sizes(kind, "full")]


def changed_reads(found):
    values = {}
    for kind in growing_kinds(found):
        values |= worst_of_sizes(found, kind, ("full", "changed"),
                                 lambda items, of=kind: found.ratio("changed", "full", of, items))
    return values


def memory(found):
    values = {}
    for kind in growing_kinds(found):
        values |= worst_of_sizes(found, kind, ("full",), lambda items, of=kind: found.bytes_an_item(of, items))
    return values


def aims(found):
    least, most = SIZES[0], SIZES[-1]
    return [
        Aim("contact", "A contact takes at most 1.15 times the floor", 1.15, False, ratio_text,
            beside(found, "agent", "floor", ["contacts"])),
        Aim("appointment", "A single appointment takes at most 1.15 times the floor", 1.15, False, ratio_text,
            beside(found, "agent", "floor", ["appointments"])),
        Aim("exceptions", "A recurring appointment with 50 exceptions takes at most 1.3 times a plain recurring one, the longer "
            "time of its callback taken off", 1.3, False, plain_ratio_text,
            {KINDS["exceptions"]: found.beyond_callback("exceptions", "recurring")}),
        Aim("growth", f"An item of {most:,} takes at most 1.1 times one of {least:,}", 1.1, False, plain_ratio_text,
            {KINDS[kind]: found.growth(kind, most, least) for kind in growing_kinds(found)}),
        Aim("changed", "A changed read of an unchanged folder takes at most 2 % of the full read", 0.02, False, percent_text,
            changed_reads(found)),
        Aim("memory", "A full read takes less than 4 KB an item beyond the store's own", 4 * KB, True, kb_text, memory(found)),
        Aim("program", "The first read of a new agent is faster than the independent program started anew", 1, True, ratio_text,
            beside(found, "agent-first", "msgreader-cold", KINDS)),
    ]


def aim_table(found):
    lines = table(["Aim", "Measured", "Result"], map(aim_row, aims(found)))
    return lines.replace("---:", "---")
