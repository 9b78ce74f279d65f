#!/usr/bin/env python3
"""Gives report.py measurements whose ratios can be worked out in the head, and looks at what it makes of them."""

import json
import pathlib
import tempfile
import unittest
import xml.etree.ElementTree as ElementTree

import growth_plot
import machine
import report
import report_aims
import report_misses
import report_tables
from measurements import Measurements, Spread, load, spread_of

SVG = "{http://www.w3.org/2000/svg}"
MARKED = f"above\n{report.BEGIN}\nold\n{report.END}\nbelow\n"
DOCUMENT = pathlib.Path(__file__).resolve().parents[2] / "docs/performance.md"


def line(what, seconds, kind="contacts", items=500, **more):
    return {"what": what, "kind": kind, "items": items, "seconds": seconds, **more}


def turns(*lines):
    """The same lines as of things that took turns."""
    return [{**one, "turn": "t"} for one in lines]


def floor_of(seconds, **more):
    """Three parts that are half, three tenths and a fifth of the floor."""
    return [line(what, [second * part for second in seconds], **more)
            for what, part in (("callbacks", 0.5), ("store", 0.3), ("documents", 0.2))]


def cells(table, name, number):
    """The cells of the row of a kind and a number of items."""
    rows = [[cell.strip() for cell in row.strip("|").split("|")] for row in table.splitlines()]
    return next(row for row in rows if row[:2] == [name, number])


def aim_of(lines, words):
    """The measured values and the result of the aim whose text has these words."""
    return next(report_aims.aim_row(aim)[1:] for aim in report_aims.aims(Measurements(lines)) if words in aim.text)


def unchanged_parts(factor=1, **more):
    """A read of changes of 10 ms with its parts: 2 ms in the system's listing and 3 ms in the store beyond it, 1 ms in dates and
    0.5 ms in the list, 0.75 ms in the comparison, 0.25 ms that are the same for one item, and 2.5 ms besides."""
    parts = {"unchanged": 10, "listing": 2, "store-changed": 5, "rows": 1.5, "row-dates": 1, "comparison": 0.75,
             "unchanged-one": 0.75, "store-changed-one": 0.4, "comparison-one": 0.1}
    return [line(what, [time * factor / 1000], **more) for what, time in parts.items()]


class MeasurementsTest(unittest.TestCase):
    def test_floor_is_the_sum_of_its_parts_in_each_turn(self):
        parts = [line("callbacks", [1.0, 2.0, 9.0]), line("store", [0.5, 0.5, 0.5]), line("documents", [0.25, 1.5, 0.25])]
        self.assertEqual(Measurements(turns(*parts)).seconds("floor", "contacts", 500), [1.75, 4.0, 9.75])
        # Parts that did not take turns are added by their medians.
        self.assertEqual(Measurements(parts).seconds("floor", "contacts", 500), [2.75])

    def test_floor_without_a_part_is_none(self):
        found = Measurements([line("agent", [1.0]), line("callbacks", [1.0]), line("store", [0.5])])
        self.assertEqual(found.seconds("floor", "contacts", 500), [])
        self.assertIsNone(found.ratio("agent", "floor", "contacts", 500))

    def test_ratio_is_of_repetitions_of_the_same_turn(self):
        # The ratio of the medians would be 1.5.
        found = Measurements(turns(line("agent", [2.0, 6.0, 3.0]), line("store", [1.0, 4.0, 2.0])))
        self.assertEqual(found.ratio("agent", "store", "contacts", 500), Spread(1.5, 1.5, 2.0))
        found = Measurements(turns(line("agent", [2.0, 3.0, 40.0]), line("store", [1.0, 1.5, 10.0])))
        self.assertEqual(found.ratio("agent", "store", "contacts", 500), Spread(2.0, 2.0, 4.0))

    def test_what_did_not_take_turns_is_compared_by_its_medians(self):
        # In turns the ratios would be 2, 1 and 3.
        times = [line("agent", [2.0, 4.0, 30.0]), line("store", [1.0, 4.0, 10.0])]
        for lines in (times, [{**times[0], "turn": "a"}, times[1]],
                      [{**times[0], "turn": "a"}, {**times[1], "turn": "b"}],
                      turns(times[0], line("store", [3.0, 5.0]))):
            self.assertEqual(Measurements(lines).ratio("agent", "store", "contacts", 500), Spread(1.0, None, None))

    def test_lines_of_one_measurement_are_of_the_same_turn(self):
        with self.assertRaises(ValueError):
            Measurements([line("agent", [1.0], turn="a"), line("agent", [1.0], turn="b")])

    def test_lines_of_the_same_measurement_are_put_together(self):
        found = Measurements([line("agent", [1.0], peak_bytes=5), line("agent", [2.0], peak_bytes=9, store_bytes=2),
                              line("agent", [3.0], peak_bytes=7)])
        self.assertEqual(found.seconds("agent", "contacts", 500), [1.0, 2.0, 3.0])
        self.assertEqual(found.get("agent", "contacts", 500).bytes_beyond_store(), 7)
        self.assertEqual(found.repetitions(), (3, 3))

    def test_memory_without_the_store_s_is_not_known(self):
        found = Measurements([line("full", [1.0], peak_bytes=5)])
        self.assertIsNone(found.bytes_an_item("contacts", 500))

    def test_memory_an_item(self):
        found = Measurements([line("full", [1.0], peak_bytes=1_500_000, store_bytes=500_000)])
        self.assertEqual(found.bytes_an_item("contacts", 500), 2000)

    def test_growth_is_of_times_an_item(self):
        found = Measurements([line("full", [1.0]), line("full", [110.0], items=50000)])
        self.assertAlmostEqual(found.growth("contacts", 50000, 500), 1.1)
        self.assertIsNone(found.growth("contacts", 5000, 500))

    def test_longer_callback_is_taken_off(self):
        # An item: 5 ms with exceptions of which the callback is 2 ms, against 2 ms and 1 ms. (5 - (2 - 1)) / 2 = 2
        found = Measurements([
            line("agent", [2.5], "exceptions"), line("callbacks", [1.0], "exceptions"),
            line("agent", [2.0], "recurring", 1000), line("callbacks", [1.0], "recurring", 1000)])
        self.assertAlmostEqual(found.beyond_callback("exceptions", "recurring"), 2.0)

    def test_what_is_no_measurement_is_refused(self):
        for wrong in (line("agents", [1.0]), line("agent", [1.0], "tasks"), line("agent", [1.0], items=0),
                      line("agent", []), line("agent", [0]), line("agent", ["1"])):
            with self.assertRaises(ValueError):
                Measurements([wrong])


class TextTest(unittest.TestCase):
    def test_times_have_three_digits(self):
        self.assertEqual([report_tables.time_text(seconds) for seconds in (12.345, 1.0, 0.9996, 0.0456, 0.000789, 4e-8)],
                         ["12.3 s", "1.00 s", "1.00 s", "45.6 ms", "789 µs", "0.04 µs"])
        self.assertEqual(report_tables.time_text(-0.0001), "-100 µs")
        self.assertEqual(report_tables.time_text(0.009996), "10.0 ms")

    def test_ratios_and_percent(self):
        self.assertEqual(report_tables.ratio_text(Spread(1.104, 1.05, 1.2)), "1.10 (1.05 to 1.20)")
        self.assertEqual(report_tables.percent_text(Spread(0.0123, 0.01, 0.02)), "1.23 % (1.00 to 2.00)")

    def test_one_value_has_no_spread(self):
        self.assertEqual(report_tables.ratio_text(spread_of([1.104])), "1.10")
        self.assertEqual(report_tables.percent_text(spread_of([0.0123])), "1.23 %")


class TablesTest(unittest.TestCase):
    def test_agent_beside_floor_and_program(self):
        found = Measurements([*turns(line("agent", [1.2, 1.1, 1.3]), *floor_of([1.0, 1.0, 1.0])),
                              *turns(line("agent-first", [1.2, 1.1, 1.3]), line("msgreader-cold", [2.4, 4.4, 2.6])),
                              line("msgreader-warm", [0.6, 1.1, 0.4])])
        self.assertEqual(cells(report_tables.ratio_table(found), "contacts", "500")[2:],
                         ["2.40 ms", "5.20 ms", "2.40 ms", "2.00 ms", "1.20 ms", "1.20 (1.10 to 1.30)",
                          "0.50 (0.25 to 0.50)", "2.00"])

    def test_program_that_could_not_be_had_was_not_measured(self):
        found = Measurements([line("agent", [1.2]), *floor_of([1.0])])
        row = cells(report_tables.ratio_table(found), "contacts", "500")
        self.assertEqual([row[number] for number in (2, 3, 6, 8, 9)], ["not measured"] * 5)
        self.assertEqual(row[7], "1.20")

    def test_kind_that_was_not_measured_says_so(self):
        row = cells(report_tables.ratio_table(Measurements([line("full", [1.2])])), "single appointments", "not measured")
        self.assertEqual(row[2:], ["not measured"] * 8)

    def test_parts_of_the_time_of_an_item(self):
        found = Measurements([line("agent", [1.25, 1.25]), *floor_of([1.0, 1.0])])
        self.assertEqual(cells(report_tables.part_table(found), "contacts", "500")[2:],
                         ["2.50 ms", "1.00 ms, 40 %", "600 µs, 24 %", "400 µs, 16 %", "500 µs, 20 %"])

    def test_parts_of_the_agent_s_own_time(self):
        # An item: 3 ms, of which 2 ms are the floor. Its parts by turns take 2.1 ms, and with all the agent's own 2.7 ms.
        lines = [line("agent", [1.5], "recurring"), *floor_of([1.0], kind="recurring"), line("class", [0.225], "recurring"),
                 line("selections", [0.05], "recurring"), line("dates", [0.075], "recurring"),
                 line("series", [0.025], "recurring"), line("turns", [1.05], "recurring"), line("own-turns", [1.35], "recurring")]
        for measured in (turns(*lines), lines):
            self.assertEqual(cells(report_tables.own_table(Measurements(measured)), "recurring appointments", "500")[2:],
                             ["1.00 ms, 33 %", "100 µs, 3 %", "150 µs, 5 %", "50.0 µs, 2 %", "50.0 µs, 2 %", "100 µs, 3 %",
                              "250 µs, 8 %", "300 µs, 10 %"])

    def test_differences_are_of_the_same_turn(self):
        # The difference of the medians would be 2 ms.
        found = Measurements(turns(line("documents", [1.0, 4.0, 3.0]), line("class", [1.5, 4.5, 4.0])))
        self.assertEqual(found.own_time("contacts", 500).handing, 0.001)

    def test_contacts_are_without_selections_and_series(self):
        found = Measurements([line("agent", [1.25]), *floor_of([1.0]), line("dates", [0.05]), line("class", [0.25]),
                              line("turns", [1.0]), line("own-turns", [1.15])])
        self.assertEqual(cells(report_tables.own_table(found), "contacts", "500")[3:],
                         ["0.00 µs, 0 %", "100 µs, 4 %", "0.00 µs, 0 %", "100 µs, 4 %", "0.00 µs, 0 %", "100 µs, 4 %",
                          "200 µs, 8 %"])

    def test_what_was_not_measured_of_the_agent_s_own_time_says_so(self):
        found = Measurements([line("agent", [1.25], "appointments"), *floor_of([1.0], kind="appointments"),
                              line("dates", [0.05], "appointments")])
        self.assertEqual(cells(report_tables.own_table(found), "single appointments", "500")[2:],
                         ["500 µs, 20 %", "not measured", "100 µs, 4 %", "0.00 µs, 0 %", *["not measured"] * 4])

    def test_growth(self):
        found = Measurements([*turns(line("full", [50.0, 40.0], items=50000), line("changed", [0.5, 0.4], items=50000)),
                              line("store-again", [5.0], items=50000), line("grown-first", [75.0], items=50000),
                              line("store-grown-first", [10.0], items=50000)])
        table = report_tables.growth_table(found)
        self.assertEqual(cells(table, "contacts", "50,000")[2:],
                         ["1.50 ms", "200 µs", "45.0 s", "900 µs", "100 µs", "450 ms", "9.00 µs", "1.00 % (1.00 to 1.00)"])
        self.assertEqual(cells(table, "contacts", "500")[2:], ["not measured"] * 8)

    def test_parts_of_a_changed_read(self):
        for lines in (unchanged_parts(), turns(*unchanged_parts())):
            table = report_tables.changed_table(Measurements(lines))
            self.assertEqual(cells(table, "contacts", "500")[2:],
                             ["20.0 µs", "4.00 µs, 20 %", "6.00 µs, 30 %", "2.00 µs, 10 %", "1.00 µs, 5 %", "1.50 µs, 8 %",
                              "0.50 µs, 2 %", "5.00 µs, 25 %", "250 µs"])
            self.assertEqual(cells(table, "contacts", "5,000")[2:], ["not measured"] * 9)

    def test_parts_of_a_changed_read_are_subtracted_in_their_turn(self):
        # The difference of the medians would be 2 ms.
        found = Measurements(turns(line("store-changed", [0.004, 0.005, 0.009]), line("listing", [0.003, 0.002, 0.005])))
        self.assertAlmostEqual(found.changed_time("contacts", 500).store, 0.000006)
        self.assertEqual(found.changed_time("contacts", 500)[2:], (None,) * 5)

    def test_before_a_first_read(self):
        lines = [line("start", [0.1, 0.1]), line("logon", [0.05, 0.2]), line("agent-first", [0.35, 0.3]),
                 line("msgreader-cold", [0.25, 0.5])]
        self.assertEqual(cells(report_tables.before_table(Measurements(turns(*lines))), "contacts", "500")[2:],
                         ["100 ms", "125 ms", "325 ms", "375 ms", "1.60 (1.20 to 2.00)"])
        self.assertEqual(cells(report_tables.before_table(Measurements(lines[:3])), "contacts", "500")[2:],
                         ["100 ms", "125 ms", "325 ms", "not measured", "not measured"])
        self.assertEqual(report_tables.before_table(Measurements([line("agent", [1.0])])), "Not measured\n")

    def test_memory(self):
        found = Measurements([line("full", [50.0], items=50000, peak_bytes=153_600_000, store_bytes=51_200_000)])
        table = report_tables.memory_table(found)
        self.assertEqual(cells(table, "contacts", "50,000")[2:], ["146.5 MB", "48.8 MB", "3.0 KB", "1.0 KB", "2.0 KB"])
        self.assertEqual(cells(table, "contacts", "500")[2:], ["not measured"] * 5)

    def test_lists(self):
        found = Measurements([line("folders", [0.002], items=5000), line("comparison", [0.01, 0.02, 0.9], items=5000)])
        self.assertEqual(cells(report_tables.list_table(found), "contacts", "5,000")[2:], ["2.00 ms", "20.0 ms", "4.00 µs"])


class AimsTest(unittest.TestCase):
    def test_met_at_its_limit(self):
        values, result = aim_of([line("agent", [1.15]), *floor_of([1.0])], "A contact takes at most 1.15")
        self.assertEqual((values, result), ("contacts, 500: 1.15", "met"))

    def test_missed_by_as_much_as_it_is_above_its_limit(self):
        values, result = aim_of([line("agent", [1.38]), *floor_of([1.0])], "A contact takes at most 1.15")
        self.assertEqual((values, result), ("contacts, 500: 1.38", "missed by 20.0 %"))

    def test_not_measured(self):
        values, result = aim_of([line("agent", [1.0])], "A single appointment")
        self.assertEqual((values, result), ("single appointments: not measured", "not measured"))

    def test_worst_size_decides(self):
        lines = [line("full", [1.0]), line("changed", [0.01]), line("full", [10.0], items=5000),
                 line("changed", [0.3], items=5000)]
        self.assertEqual(aim_of(lines, "changed read"), ["contacts, worst at 5,000: 3.00 %", "missed by 50.0 %"])

    def test_program_that_is_as_fast_is_not_behind(self):
        lines = [line("agent-first", [1.0]), line("msgreader-cold", [1.0])]
        self.assertEqual(aim_of(lines, "independent program")[1], "missed by 0.0 %")
        lines[1] = line("msgreader-cold", [2.0])
        self.assertEqual(aim_of(lines, "independent program")[1], "met, as far as it was measured")

    def test_repeated_read_is_not_held_against_a_new_program(self):
        lines = [line("agent", [1.0]), line("msgreader-cold", [2.0])]
        self.assertEqual(aim_of(lines, "independent program")[1], "not measured")

    def test_growth_needs_the_largest_folder(self):
        # What takes turns with the parts of the floor is no measure of growth.
        lines = [line("agent", [0.5]), line("full", [1.0]), line("full", [9.0], items=5000)]
        self.assertEqual(aim_of(lines, "An item of 50,000")[1], "not measured")
        lines.append(line("full", [121.0], items=50000))
        self.assertEqual(aim_of(lines, "An item of 50,000"), ["contacts: 1.21", "missed by 10.0 %"])


class MissesTest(unittest.TestCase):
    @staticmethod
    def misses(lines):
        return report_misses.miss_list(Measurements(lines)).splitlines()

    def test_without_a_miss_there_is_no_entry(self):
        self.assertEqual(self.misses([line("agent", [1.0]), *floor_of([1.0])]), ["None of those that were measured."])

    def test_own_time_is_taken_apart(self):
        lines = [line("agent", [1.5, 1.5], "exceptions"), *floor_of([1.0, 1.0], kind="exceptions"),
                 line("agent", [1.0], "recurring"), *floor_of([1.0], kind="recurring"),
                 line("selections", [0.05, 0.05], "exceptions"), line("dates", [0.1, 0.1], "exceptions")]
        self.assertIn("1.00 ms an item are the agent's own: 100 µs in selections in the document, 200 µs in the conversion of "
                      "dates, and the rest of it was not measured.", self.misses(lines)[0])
        lines += [line(what, [seconds, seconds], "exceptions")
                  for what, seconds in (("series", 0.04), ("class", 0.21), ("turns", 1.005), ("own-turns", 1.4))]
        self.assertIn("1.00 ms an item are the agent's own: 100 µs in selections in the document, 200 µs in the conversion of "
                      "dates, 80.0 µs in reading the series and telling its exceptions, 20.0 µs in handing texts to the XML "
                      "service and taking the document from it, 10.0 µs more where the parts of the floor take turns than where each "
                      "runs alone, 390 µs more where these take turns too, and 200 µs not taken apart.", self.misses(lines)[0])

    def test_nothing_is_said_of_what_a_kind_does_not_have(self):
        [entry] = self.misses([line("agent", [1.5]), *floor_of([1.0]), line("dates", [0.1]), line("class", [0.21]),
                               line("turns", [1.005]), line("own-turns", [1.4])])
        self.assertIn("1.00 ms an item are the agent's own: 200 µs in the conversion of dates, 20.0 µs in handing texts", entry)

    def test_every_aim_can_be_missed_and_then_has_an_entry(self):
        lines = []
        for kind, slow in (("contacts", 1), ("appointments", 1), ("recurring", 1), ("exceptions", 9)):
            lines += [line("agent", [3.0 * slow], kind), *floor_of([1.0], kind=kind), line("agent-first", [2.0], kind),
                      line("msgreader-cold", [1.0], kind), line("full", [1.0], kind, peak_bytes=9_000_000, store_bytes=1),
                      line("full", [200.0], kind, 50000), line("changed", [0.5], kind)]
        entries = self.misses(lines)
        self.assertEqual(len(entries), len(report_aims.aims(Measurements(lines))))
        self.assertTrue(all("missed by" in entry for entry in entries))

    def test_changed_read_is_taken_apart(self):
        reads = [line("full", [0.1]), line("changed", [0.01]), line("full", [1.0], items=5000), line("changed", [0.1], items=5000)]
        [entry] = self.misses([*reads, *unchanged_parts(), *unchanged_parts(20, items=5000)])
        # Of the smaller folder the table has the same.
        self.assertEqual(entry.count("an unchanged one takes"), 1)
        self.assertIn("Of 5,000 contacts an unchanged one takes 40.0 µs: 8.00 µs in the system's listing of the folder, 12.0 µs "
                      "in the store's calls beyond that, 4.00 µs in the conversion of its date, 2.00 µs in the list with its "
                      "identifier, 3.00 µs in the comparison with the map, 1.00 µs in what a read does but once, and 10.0 µs "
                      "not taken apart. The store's calls alone are 10.00 % of the full read, and the system's part of them "
                      "4.00 %.", entry)

    def test_changed_read_that_was_not_taken_apart_says_so(self):
        [entry] = self.misses([line("full", [1.0]), line("changed", [0.05])])
        self.assertIn("What a changed read of 500 contacts consists of was not measured.", entry)
        [entry] = self.misses([line("full", [1.0]), line("changed", [0.05]), line("unchanged", [0.05]), line("listing", [0.01])])
        self.assertIn("Of 500 contacts an unchanged one takes 100 µs: 20.0 µs in the system's listing of the folder, and the rest "
                      "of it was not measured.", entry)

    def test_first_read_is_held_against_what_the_program_does_not_do(self):
        [entry] = self.misses([line("agent-first", [2.0]), line("msgreader-cold", [1.0]), line("callbacks", [0.25]),
                               line("documents", [0.5])])
        self.assertIn("It hands nothing to another process and builds no documents of the XML service, which as parts of the "
                      "floor take 500 µs and 1.00 ms an item.", entry)
        self.assertNotIn("Of the repeated read", entry)
        self.assertNotIn("With the start", entry)
        [entry] = self.misses([line("agent-first", [2.0]), line("msgreader-cold", [1.0]), line("agent", [1.04]),
                               *floor_of([1.0]), line("start", [0.25]), line("logon", [0.5])])
        self.assertIn("an item. With the start of the agent and the logon the ratio is 2.75. Of the repeated read 80.0 µs are "
                      "the agent's own.", entry)

    def test_floor_of_exceptions_is_held_against_a_plain_one(self):
        # An item of the floor: 2 ms, of which 1 ms are the callback, plain. With exceptions 6 ms, of which 3 ms are the callback.
        entry = self.misses([line("agent", [9.0], "exceptions"), *floor_of([1.0], kind="recurring"),
                             *floor_of([3.0], kind="exceptions"), line("agent", [1.0], "recurring")])[-1]
        self.assertIn("Its floor alone, the longer callback taken off, is 2.00 times that of a plain one: the XML service takes "
                      "1.20 ms for its document and 400 µs for a plain one's.", entry)


class PlotTest(unittest.TestCase):
    @staticmethod
    def shapes(lines):
        root = ElementTree.fromstring(growth_plot.plot(Measurements(lines)))
        return root, ["".join(text.itertext()) for text in root.iter(f"{SVG}text")]

    def test_every_measured_size_has_a_point_in_each_panel_and_one_in_the_legend(self):
        root, texts = self.shapes([
            line("full", [items / 1000], items=items, peak_bytes=3000 * items, store_bytes=1000 * items)
            for items in (500, 5000, 50000)])
        self.assertEqual(len(list(root.iter(f"{SVG}circle"))), 3 + 3 + 1)
        for words in ("contacts", "500", "5,000", "50,000", "Time an item, in ms", "items in the folder (logarithmic)",
                      "Memory an item beyond the store's own, in KB"):
            self.assertIn(words, texts)

    def test_first_reads_are_drawn_paler(self):
        lines = [line(what, [seconds * items], items=items) for items in (500, 5000)
                 for what, seconds in (("full", 0.001), ("grown-first", 0.002))]
        root, texts = self.shapes(lines)
        pale = [shape for shape in root.iter(f"{SVG}circle") if "pale" in shape.get("class")]
        self.assertEqual(len(pale), 2)
        # The axis reaches the greatest of all.
        self.assertTrue(all(float(shape.get("cy")) >= growth_plot.TOP for shape in pale))
        self.assertIn("Time an item, in ms (paler: first read)", texts)

    def test_kind_of_a_single_size_is_left_out_beside_one_that_grows(self):
        grown = [line("full", [items / 1000], items=items) for items in (500, 5000)]
        _, texts = self.shapes([*grown, line("full", [9.0], "exceptions")])
        self.assertIn("contacts", texts)
        self.assertNotIn("recurring appointments with 50 exceptions", texts)

    def test_axis_is_logarithmic(self):
        root, _ = self.shapes([line("full", [items / 1000], items=items) for items in (500, 5000, 50000)])
        points = next(root.iter(f"{SVG}polyline")).get("points").split()
        x = [float(point.split(",")[0]) for point in points]
        self.assertAlmostEqual(x[1] - x[0], x[2] - x[1], delta=0.2)

    def test_what_was_not_measured_says_so(self):
        _, texts = self.shapes([line("msgreader-cold", [1.0])])
        self.assertEqual(texts.count("not measured"), 2)

    def test_reader_s_choice_of_dark_is_followed(self):
        self.assertIn("@media (prefers-color-scheme: dark)", growth_plot.plot(Measurements([line("full", [1.0])])))

    def test_steps_are_round_and_reach_the_greatest_value(self):
        self.assertEqual(growth_plot.steps_up_to(1.3), [0, 0.5, 1.0, 1.5])
        self.assertEqual(growth_plot.steps_up_to(40), [0, 10, 20, 30, 40])
        self.assertEqual(growth_plot.steps_up_to(0), [0, 1])


class MachineTest(unittest.TestCase):
    def test_words(self):
        self.assertEqual(machine.processors_text("processor\t: 0\nmodel name\t: A B\n\nprocessor\t: 1\nmodel name\t: A B\n"),
                         "2 processors (A B)")
        self.assertEqual(machine.processors_text("processor\t: 0\n"), "1 processor")
        self.assertEqual(machine.memory_text("MemTotal:       24684000 kB\nMemFree: 1 kB\n"), "24 GB of memory")
        self.assertEqual(machine.system_text('NAME="D"\nPRETTY_NAME="D 12 (b)"\n'), "D 12 (b)")

    def test_program_that_is_not_there_has_no_version(self):
        self.assertIsNone(machine.version_of("/nowhere/wine"))


class DocumentTest(unittest.TestCase):
    def test_only_what_is_between_the_marks_is_replaced(self):
        text = report.between_marks(MARKED, "new\\1")
        self.assertEqual(text, f"above\n{report.BEGIN}\n\nnew\\1\n{report.END}\nbelow\n")
        self.assertEqual(report.between_marks(text, "new\\1"), text)

    def test_document_without_marks_is_refused(self):
        with self.assertRaises(ValueError):
            report.between_marks("above\nbelow\n", "new")

    def test_document_of_the_project_has_the_marks_once(self):
        text = DOCUMENT.read_text(encoding="utf-8")
        self.assertEqual((text.count(report.BEGIN), text.count(report.END)), (1, 1))

    def test_document_and_plot_are_written(self):
        with tempfile.TemporaryDirectory() as place:
            source, document, plot = (pathlib.Path(place) / name for name in ("lines", "text.md", "growth.svg"))
            source.write_text(json.dumps(line("agent", [1.0, 2.0])) + "\n\n", encoding="utf-8")
            document.write_text(MARKED, encoding="utf-8")
            report.main(source, document, plot)
            text = document.read_text(encoding="utf-8")
            self.assertTrue(text.startswith("above\n") and text.endswith("below\n"))
            self.assertIn("Each measurement has 2 repetitions.", text)
            self.assertIn("](growth.svg)", text)
            self.assertNotIn(place, text)
            ElementTree.parse(plot)
            self.assertEqual(load(source).seconds("agent", "contacts", 500), [1.0, 2.0])

    def test_nothing_measured_leaves_the_document_alone(self):
        with tempfile.TemporaryDirectory() as place:
            source, document, plot = (pathlib.Path(place) / name for name in ("lines", "text.md", "growth.svg"))
            source.write_text("", encoding="utf-8")
            document.write_text(MARKED, encoding="utf-8")
            with self.assertRaises(SystemExit):
                report.main(source, document, plot)
            self.assertEqual(document.read_text(encoding="utf-8"), MARKED)
            self.assertFalse(plot.exists())


if __name__ == "__main__":
    unittest.main()
