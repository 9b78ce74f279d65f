"""The tables of docs/performance.md, from measurements. What was not measured says so."""

from measurements import FLOOR, KINDS

NOT_MEASURED = "not measured"
SIZES = (500, 5000, 50000)
KB = 1024


def time_text(seconds):
    """Seconds with three digits that count, in the unit that suits them."""
    for unit, size in (("s", 1), ("ms", 1e-3), ("µs", 1e-6)):
        number = seconds / size
        if abs(number) >= 0.9995 or unit == "µs":
            break
    digits = max(0, 2 - sum(abs(number) >= bound for bound in (9.995, 99.95)))
    return f"{number:.{digits}f} {unit}"


def with_spread(form, spread, unit=""):
    """A median, and the least and the most behind it if there are some."""
    most = "" if spread.least is None else f" ({form(spread.least)} to {form(spread.most)})"
    return form(spread.median) + unit + most


def ratio_text(spread):
    return with_spread(lambda ratio: f"{ratio:.2f}", spread)


def percent_text(spread):
    return with_spread(lambda ratio: f"{100 * ratio:.2f}", spread, " %")


def plain_ratio_text(ratio):
    return f"{ratio:.2f}"


def kb_text(count):
    return f"{count / KB:.1f} KB"


def cell(form, value):
    return NOT_MEASURED if value is None else form(value)


def table(headings, rows):
    """A table in Markdown. The first heading is of words, the others are of numbers."""
    lines = [headings, ["---", *["---:"] * (len(headings) - 1)], *rows]
    return "".join("| " + " | ".join(line) + " |\n" for line in lines)


def median_cell(spread):
    return cell(lambda found: time_text(found.median), spread)


RATIOS = (("agent", "floor"), ("agent-first", "msgreader-cold"), ("agent", "msgreader-warm"))
SIDE_BY_SIDE = ("agent-first", "msgreader-cold", "agent", "floor", "msgreader-warm")


def ratio_rows(found):
    """A row for each size at which a read was measured beside something else."""
    for kind, name in KINDS.items():
        sizes = {items for one, other in RATIOS for items in found.sizes(kind, one) if found.seconds(other, kind, items)}
        for items in sorted(sizes) or found.sizes(kind, "full")[:1] or [None]:
            times = [median_cell(found.per_item(what, kind, items)) for what in SIDE_BY_SIDE]
            ratios = [cell(ratio_text, found.ratio(one, other, kind, items)) for one, other in RATIOS]
            yield [name, NOT_MEASURED if items is None else f"{items:,}", *times, *ratios]


def ratio_table(found):
    return table(["Items", "Number", "Agent, first read", "Program, cold", "Agent, repeated read", "Floor", "Program, warm",
                  "Repeated read to floor", "First read to program, cold", "Repeated read to program, warm"],
                 ratio_rows(found))


def measured_parts(found):
    """Each kind and number of items for which the agent and all of the floor were measured, with the first cells of its row and
    what writes a time of an item and its part of the agent's."""
    for kind, name in KINDS.items():
        for items in found.sizes(kind, "agent", *FLOOR):
            agent = found.median_per_item("agent", kind, items)
            yield kind, items, [name, f"{items:,}"], lambda time, whole=agent: cell(
                share_form(whole), time)


def part_rows(found):
    for kind, items, head, form in measured_parts(found):
        yield [*head, time_text(found.median_per_item("agent", kind, items)),
               *(form(found.median_per_item(part, kind, items)) for part in FLOOR), form(found.rest(kind, items).median)]


def own_rows(found):
    for kind, items, head, form in measured_parts(found):
        yield [*head, *map(form, [found.rest(kind, items).median, *found.own_time(kind, items)])]


def part_table(found):
    rows = list(part_rows(found))
    if not rows:
        return f"{NOT_MEASURED}\n".capitalize()
    return (table(["Items", "Number", "Agent, repeated read", "Callbacks", "Store", "Documents", "The agent's own"], rows) +
            "\n" + own_table(found))


def own_table(found):
    return table(["Items", "Number", "The agent's own", "Of it selections", "Of it dates", "Of it series", "Of it handing",
                  "Of it the floor by turns", "Of it these by turns", "Of it neither"], own_rows(found))


def whole_cell(spread, items):
    """The time of all items."""
    return cell(lambda time: time_text(time.median * items), spread)


def before_rows(found):
    """A row for each size of which there is a first read, with what is before it."""
    for kind, name in KINDS.items():
        for items in found.sizes(kind, "agent-first"):
            times = [whole_cell(found.per_item(what, kind, items), items)
                     for what in ("start", "logon", "agent-first", "msgreader-cold")]
            yield [name, f"{items:,}", *times, cell(ratio_text, found.from_start(kind, items))]


def before_table(found):
    rows = list(before_rows(found))
    if not rows:
        return f"{NOT_MEASURED}\n".capitalize()
    return table(["Items", "Number", "Start of the agent", "Logon", "First read", "Program, cold",
                  "Start, logon and first read to program, cold"], rows)


def growth_rows(found):
    for kind, name in KINDS.items():
        for items in sizes_of_growth(found, kind, "full"):
            first, store_first, full, store, changed = (found.per_item(what, kind, items) for what in (
                "grown-first", "store-grown-first", "full", "store-again", "changed"))
            yield [name, f"{items:,}", median_cell(first), median_cell(store_first), whole_cell(full, items), median_cell(full),
                   median_cell(store), whole_cell(changed, items), median_cell(changed),
                   cell(percent_text, found.ratio("changed", "full", kind, items))]


def growth_table(found):
    return table(["Items", "Number", "First read, an item", "Store's calls alone, an item of it", "Full read", "An item of it",
                  "Store's calls alone, an item of it", "Changed read", "An item of it", "Changed to full"], growth_rows(found))


def changed_rows(found):
    for kind, name in KINDS.items():
        for items in sizes_of_growth(found, kind, "unchanged"):
            whole = found.median_per_item("unchanged", kind, items)
            parts = found.changed_time(kind, items)
            yield [name, f"{items:,}", cell(time_text, whole), *(cell(share_form(whole), part) for part in parts),
                   cell(lambda time, number=items: time_text(time * number), parts.once)]


def share_form(whole):
    """What writes a part of a time with how much of it it is."""
    return lambda part: time_text(part) if whole is None else f"{time_text(part)}, {100 * part / whole:.0f} %"


def changed_table(found):
    return table(["Items", "Number", "Changed read, an item", "System's listing", "Store beyond it", "Dates",
                  "Identifiers and list", "Comparison with the map", "Once a read", "None of these", "Once a read, in all"],
                 changed_rows(found))


def sizes_of_growth(found, kind, *whats):
    """The sizes for which any of these was measured; of contacts all that are expected."""
    measured = (items for what in whats for items in found.sizes(kind, what))
    return sorted({*(SIZES if kind == "contacts" else ()), *measured})


def memory_rows(found):
    for kind, name in KINDS.items():
        for items in sizes_of_growth(found, kind, "full"):
            full = found.get("full", kind, items)
            peak, store = (full.peak_bytes, full.store_bytes) if full else (None, None)
            yield [name, f"{items:,}", *(cell(lambda count: f"{count / KB / KB:.1f} MB", count) for count in (peak, store)),
                   *(cell(lambda count: kb_text(count / items), count) for count in (peak, store)),
                   cell(kb_text, found.bytes_an_item(kind, items))]


def memory_table(found):
    return table(["Items", "Number", "Agent's peak", "Store's calls alone", "Agent's peak, an item", "Store's, an item",
                  "Beyond the store's, an item"], memory_rows(found))


def list_rows(found):
    for kind, name in KINDS.items():
        for items in sizes_of_growth(found, kind, "folders", "comparison"):
            lists, comparison = (found.per_item(what, kind, items) for what in ("folders", "comparison"))
            yield [name, f"{items:,}", whole_cell(lists, items), whole_cell(comparison, items), median_cell(comparison)]


def list_table(found):
    return table(["Items", "Number", "List of folders", "Comparison with the map", "An item of it"], list_rows(found))
