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


def ratio_text(spread):
    return f"{spread.median:.2f} ({spread.least:.2f} to {spread.most:.2f})"


def percent_text(spread):
    return f"{100 * spread.median:.2f} % ({100 * spread.least:.2f} to {100 * spread.most:.2f})"


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


def ratio_rows(found):
    """A row for each size at which the agent was measured beside something else."""
    others = ("floor", "msgreader-cold", "msgreader-warm")
    for kind, name in KINDS.items():
        sizes = [items for items in found.sizes(kind, "agent")
                 if any(found.seconds(other, kind, items) for other in others)]
        for items in sizes or found.sizes(kind, "agent")[:1] or [None]:
            times = [median_cell(found.per_item(what, kind, items)) for what in ("agent", *others)]
            ratios = [cell(ratio_text, found.ratio("agent", other, kind, items)) for other in others]
            yield [name, NOT_MEASURED if items is None else f"{items:,}", *times, *ratios]


def ratio_table(found):
    return table(["Items", "Number", "Agent", "Floor", "Program, cold", "Program, warm", "Agent to floor",
                  "Agent to program, cold", "Agent to program, warm"], ratio_rows(found))


def part_rows(found):
    """A row for each size at which the agent and all of the floor were measured."""
    for kind, name in KINDS.items():
        for items in found.sizes(kind, "agent", *FLOOR):
            agent = found.per_item("agent", kind, items).median
            parts = [found.per_item(part, kind, items).median for part in FLOOR] + [found.rest(kind, items).median]
            yield [name, f"{items:,}", time_text(agent),
                   *(f"{time_text(part)}, {100 * part / agent:.0f} %" for part in parts)]


def part_table(found):
    rows = list(part_rows(found))
    return table(["Items", "Number", "Agent", "Callbacks", "Store", "Documents", "The agent's own"], rows) if rows else \
        f"{NOT_MEASURED}\n".capitalize()


def growth_rows(found):
    for kind, name in KINDS.items():
        expected = SIZES if kind == "contacts" else ()
        for items in sorted({*found.sizes(kind, "agent"), *expected}):
            agent = found.get("agent", kind, items)
            beyond = agent.bytes_beyond_store() if agent else None
            full, changed = (found.per_item(what, kind, items) for what in ("agent", "changed"))
            yield [name, f"{items:,}",
                   cell(lambda time: time_text(time.median * items), full), median_cell(full),
                   cell(lambda time: time_text(time.median * items), changed),
                   cell(percent_text, found.ratio("changed", "agent", kind, items)),
                   cell(lambda count: f"{count / KB / KB:.1f} MB", beyond),
                   cell(kb_text, found.bytes_an_item(kind, items))]


def growth_table(found):
    return table(["Items", "Number", "Full read", "An item", "Changed read", "Changed to full",
                  "Memory beyond the store's", "Of it an item"], growth_rows(found))


def list_rows(found):
    for kind, name in KINDS.items():
        expected = SIZES if kind == "contacts" else ()
        for items in sorted({*found.sizes(kind, "folders"), *found.sizes(kind, "comparison"), *expected}):
            lists, comparison = (found.per_item(what, kind, items) for what in ("folders", "comparison"))
            yield [name, f"{items:,}", cell(lambda time: time_text(time.median * items), lists),
                   cell(lambda time: time_text(time.median * items), comparison), median_cell(comparison)]


def list_table(found):
    return table(["Items", "Number", "List of folders", "Comparison with the map", "An item of it"], list_rows(found))
