"""What of an appointment is different once it was read, converted and written back: each loss that the documentation lists,
in the document and in the store."""

import datetime
import itertools
import re
import struct
import zoneinfo

import appointments
import harness
from appointments import APPOINTMENT, COMMON, Change, Series, appointment, filetime, minutes
from calendar_case import APPOINTMENT_SET, COMMON_SET, END, RECUR, START
from calendar_round_trip_case import BERLIN, OTHER_ZONE, ZONE, RoundTrip
from contact_fields import units
from recurrence_decoder import BY_MONTH, BY_WEEK, DAILY, WEEKLY, decode
from test_calendars import zone_blob
from writing_case import KEYWORDS

ZONES_KEY = r"HKLM\Software\Microsoft\Windows NT\CurrentVersion\Time Zones"
MONDAY, DAY, WEEK = minutes(2011, 3, 7), 1440, 7 * 1440
# Rules as month, weekday, nth and hour; month 0 is none.
NO_RULE, MARCH, NOVEMBER = (0, 0, 0, 0), (3, 0, 2, 2), (11, 0, 1, 2)
ATTACHMENT_NAME = 0x3707001F
ICON, PRIORITY, IMPORTANCE, SENSITIVITY = 0x10800003, 0x00260003, 0x00170003, 0x00360003
BUSY, COLOR, ATTENDEES = ((APPOINTMENT_SET, number) for number in (0x8205, 0x8214, 0x8238))


def zone_text(rules):
    """The text of a zone out of the machine's description of it."""
    bias, _, daylight_bias = struct.unpack_from("<iii", rules)
    standard, daylight = struct.unpack_from("<8H", rules, 12), struct.unpack_from("<8H", rules, 28)
    rule = lambda date: "{0:04}{1:02}{3:02}{4:02}{5:02}{6:02}{2:02}".format(*date)
    saved = abs(daylight_bias) if any(daylight) else 0
    return f"GMT:{bias:+d};DST:{saved};STD:{rule(standard)};DLT:{rule(daylight)}"


class Losses(RoundTrip):
    def written_back(self, *items, options=(), warnings=()):
        """Makes appointments and writes them back. Gives their documents by subject and their messages, before and after."""
        self.place.make_items(items)
        old = self.messages()
        before, after, told = self.write_back(*options)
        self.assert_warnings(told, dict(warnings))
        return before, after, old, self.messages()

    def assert_same(self, after, before, *but):
        """Documents are the same but for the time of the change and some elements."""
        but = ("lastModifiedTime", *but)
        self.assertEqual({name: self.without(item, *but) for name, item in after.items()},
                         {name: self.without(item, *but) for name, item in before.items()})


class Zones(Losses):
    def machine_zones(self):
        """The texts of the machine's zones, in their order."""
        process = self.place.start(self.place.drive_c() / "windows/system32/reg.exe", "query", ZONES_KEY, "/s", "/v", "TZI")
        output, _ = self.assert_exit(process)
        return [zone_text(bytes.fromhex(text)) for text in re.findall(r"REG_BINARY\s+([0-9A-Fa-f]+)", output)]

    def test_a_single_appointment_of_a_zone_that_the_machine_does_not_know_becomes_one_of_its_own(self):
        zone = zone_blob(77, -60, NOVEMBER, MARCH)
        before, after, old, new = self.written_back(appointment("Ship", zone=zone))
        self.assertNotIn("GMT:+77;DST:60", {text.split(";STD:")[0] for text in self.machine_zones()})
        self.assertEqual((before["Ship"]["TimeZone"].split(";STD:")[0], after["Ship"]["TimeZone"]), ("GMT:+77;DST:60", BERLIN))
        self.assert_same(after, before, "TimeZone")
        self.assertEqual([new["Ship"].named[name] for name in (START, END)], [old["Ship"].named[name] for name in (START, END)])

    def test_a_single_appointment_of_other_rules_becomes_one_of_the_first_zone_with_its_numbers(self):
        first = next(text for text in self.machine_zones() if text.startswith("GMT:+300;DST:60;"))
        # The first Sunday of September and of April.
        zone = zone_blob(300, -60, (9, 0, 1, 2), (4, 0, 1, 2))
        before, after, old, new = self.written_back(appointment("Old rules", zone=zone))
        rules = "GMT:+300;DST:60;STD:0000090102000000;DLT:0000040102000000"
        self.assertNotEqual(first, rules)
        self.assertEqual((before["Old rules"]["TimeZone"], after["Old rules"]["TimeZone"]), (rules, first))
        self.assert_same(after, before, "TimeZone")
        self.assertEqual(new["Old rules"].named[START], old["Old rules"].named[START])

    def test_both_times_of_a_repeated_hour_become_the_same_one(self):
        # Half past two comes twice in Berlin on this day.
        hours = {"Once": 0, "Again": 1}
        times = {name: filetime(2011, 10, 30, hour, 30) for name, hour in hours.items()}
        before, after, old, new = self.written_back(*(
            appointment(name, start=(2011, 10, 30, hour, 30), end=(2011, 10, 30, 9, 0)) for name, hour in hours.items()))
        self.assertEqual({item["dtStartTime"] for item in before.values()}, {"10/30/2011 02:30:00"})
        self.assertEqual({name: message.named[START] for name, message in old.items()}, times)
        [time] = {message.named[START] for message in new.values()}
        self.assertIn(time, times.values())
        self.assert_same(after, before)

    def utc_of_instances(self, message, zone):
        """The first four instances of a series, as UTC."""
        return [start.replace(tzinfo=zone).astimezone(datetime.timezone.utc).strftime("%m-%d %H:%M")
                for start, _ in decode(message.named[RECUR]).instances(4)]

    def test_a_series_of_another_zone_keeps_its_days_and_takes_the_clocks_of_this_one(self):
        # Mondays at nine, twelve hours ahead of UTC, which is on Sundays in Berlin.
        east = datetime.timezone(datetime.timedelta(hours=12))
        definition = bytes(range(100))
        series = Series(appointments.WEEKLY, 1, 1, [0x02], first_date_time=(MONDAY - DAY) % WEEK)
        lines = appointment("East", start=(2011, 3, 6, 21, 0), end=(2011, 3, 6, 22, 0), kind=2, series=series,
                            zone=zone_blob(-720, 0, NO_RULE, NO_RULE))
        before, after, old, new = self.written_back(
            [*lines, f"namedbytes {APPOINTMENT} 8260 {definition.hex()}"], warnings={"East": [OTHER_ZONE]})
        self.assertEqual(self.utc_of_instances(old["East"], east), ["03-06 21:00", "03-13 21:00", "03-20 21:00", "03-27 21:00"])
        # Still on Mondays, and from the end of March on under daylight saving.
        self.assertEqual(self.utc_of_instances(new["East"], zoneinfo.ZoneInfo(ZONE)),
                         ["03-07 21:00", "03-14 21:00", "03-21 21:00", "03-28 20:00"])
        self.assert_same(after, before, "TimeZone")
        self.assertEqual(after["East"]["TimeZone"], BERLIN)
        self.assertEqual(new["East"].named[(APPOINTMENT_SET, 0x8260)], definition)

    def test_a_yearly_series_of_another_zone_takes_place_in_the_month_that_its_first_instance_has_here(self):
        # On the first of May at nine, which is late on the 30th of April in Berlin.
        series = Series(appointments.YEARLY, 2, 12, [1], start=minutes(2011, 5, 1), end=minutes(2020, 5, 1))
        before, after, _, new = self.written_back(
            appointment("May", start=(2011, 4, 30, 21, 0), end=(2011, 4, 30, 22, 0), kind=4, series=series,
                        zone=zone_blob(-720, 0, NO_RULE, NO_RULE)), warnings={"May": [OTHER_ZONE]})
        self.assertEqual((before["May"]["lRecurMonth"], after["May"]["lRecurMonth"]), ("5", "4"))
        self.assert_same(after, before, "TimeZone", "lRecurMonth")
        written = decode(new["May"].named[RECUR])
        self.assertEqual((written.StartDate, written.DayOfMonth), (minutes(2011, 4, 30), 1))

    def test_what_newer_programs_note_of_a_single_appointments_zone_stays(self):
        lines = appointment("Single") + [f"namedbytes {APPOINTMENT} {number} {number * 20}" for number in ("825E", "825F")]
        _, _, _, new = self.written_back(lines)
        self.assertEqual([new["Single"].named[(APPOINTMENT_SET, number)] for number in (0x825E, 0x825F)],
                         [bytes.fromhex("825E" * 20), bytes.fromhex("825F" * 20)])


class SeriesLosses(Losses):
    def days_of(self, message):
        return [day.strftime("%m-%d") for day in itertools.islice(decode(message.named[RECUR]).days(), 20)]

    def test_a_week_begins_on_sunday_which_moves_days_of_every_second_week(self):
        # Mondays and Sundays of every second week, where a week ends with its Sunday.
        series = Series(appointments.WEEKLY, 1, 2, [0x03], end=minutes(2011, 4, 10), count=6, first_day=1,
                        first_date_time=MONDAY % (2 * WEEK))
        before, after, old, new = self.written_back(appointment("Shift", kind=2, series=series))
        self.assertEqual(self.days_of(old["Shift"]), ["03-07", "03-13", "03-21", "03-27", "04-04", "04-10"])
        self.assertEqual(self.days_of(new["Shift"]), ["03-07", "03-20", "03-21", "04-03", "04-04", "04-17"])
        self.assertEqual([decode(messages["Shift"].named[RECUR]).FirstDOW for messages in (old, new)], [1, 0])
        # It takes place as often, and is said to end on the old day.
        self.assert_same(after, before)
        self.assertEqual(decode(new["Shift"].named[RECUR]).EndDate, minutes(2011, 4, 10))

    def test_a_series_of_every_week_or_of_one_day_keeps_its_days_whatever_a_week_begins_with(self):
        weekly = lambda period, mask, **more: Series(appointments.WEEKLY, 1, period, [mask], first_day=1, count=6,
                                                     first_date_time=MONDAY % (period * WEEK), **more)
        _, _, old, new = self.written_back(
            appointment("Both", kind=2, series=weekly(1, 0x03)), appointment("Mondays", kind=2, series=weekly(2, 0x02)))
        for name in ("Both", "Mondays"):
            self.assertEqual(self.days_of(new[name]), self.days_of(old[name]))

    def test_exceptions_that_a_damaged_property_hides_go_without_a_warning(self):
        change = Change(MONDAY + WEEK, MONDAY + WEEK + 600, MONDAY + WEEK + 660, subject="Moved")
        whole = Series(appointments.WEEKLY, 1, 1, [2], deleted=[MONDAY, MONDAY + WEEK], changes=[change])
        unlisted = Series(appointments.WEEKLY, 1, 1, [2], changes=[change])
        # The number of the deleted instances, which stands behind 38 bytes, is not there, or there are not as many.
        blob = whole.blob()
        damaged = {"Cut": blob[:38], "Beyond": blob[:38] + b"\xFF" * 4 + blob[42:], "Unlisted": unlisted}
        before, after, _, new = self.written_back(*(appointment(name, kind=2, series=series)
                                                    for name, series in damaged.items()))
        for name in damaged:
            self.assertNotIn("ExceptionRule", before[name])
            self.assertEqual(decode(new[name].named[RECUR]).DeletedInstanceDates, [])
        self.assert_same(after, before)

    def test_series_on_weekdays_and_on_the_last_day_of_a_month_are_of_another_kind(self):
        daily = lambda mask: Series(appointments.DAILY, 1, 1, [mask])
        month_end = lambda day: Series(appointments.MONTHLY, 4, 1, [day])
        items = {"Weekdays": (1, daily(0x3E)), "Weekend": (1, daily(0x41)), "Last": (3, month_end(31)), "30": (3, month_end(30))}
        before, after, old, new = self.written_back(*(appointment(name, kind=kind, series=series)
                                                      for name, (kind, series) in items.items()))
        kind_of = lambda message: message.named[(APPOINTMENT_SET, 0x8231)]
        self.assertEqual({name: kind_of(message) for name, message in old.items()},
                         {name: kind for name, (kind, _) in items.items()})
        self.assertEqual({name: kind_of(message) for name, message in new.items()},
                         {"Weekdays": 2, "Weekend": 2, "Last": 3, "30": 3})
        series = {name: decode(message.named[RECUR]) for name, message in new.items()}
        of_weeks = lambda name: (series[name].RecurFrequency, series[name].PatternType, series[name].WeekDays)
        self.assertEqual((of_weeks("Weekdays"), of_weeks("Weekend")), ((DAILY, BY_WEEK, 0x3E), (WEEKLY, BY_WEEK, 0x41)))
        for name, day in (("Last", 31), ("30", 30)):
            self.assertEqual((series[name].PatternType, series[name].DayOfMonth), (BY_MONTH, day))
        self.assert_same(after, before, "lRecurInterval")

    def test_the_month_from_which_a_series_counts_is_not_noted_as_published(self):
        months = Series(appointments.MONTHLY, 2, 3, [7], first_date_time=minutes(1601, 3, 1))
        years = Series(appointments.YEARLY, 2, 12, [7], first_date_time=minutes(1601, 3, 1))
        before, after, old, new = self.written_back(appointment("Months", kind=3, series=months),
                                                    appointment("Years", kind=4, series=years))
        for name in ("Months", "Years"):
            series = decode(old[name].named[RECUR])
            self.assertEqual(series.FirstDateTime, series.published_first_date_time())
            self.assertEqual(self.days_of(new[name]), self.days_of(old[name]))
        self.assertEqual(decode(new["Months"].named[RECUR]).FirstDateTime, 0)
        # The seventh of March is day 66 of the year.
        self.assertEqual(decode(new["Years"].named[RECUR]).FirstDateTime, 66 * DAY)
        self.assert_same(after, before)

    def test_the_words_for_a_series_are_gone(self):
        lines = appointment("Words", kind=2, series=Series(appointments.WEEKLY, 1, 1, [2]))
        _, _, old, new = self.written_back([*lines, f"named {APPOINTMENT} 8232 {units('every Monday')}"])
        self.assertEqual([messages["Words"].named.get((APPOINTMENT_SET, 0x8232)) for messages in (old, new)],
                         ["every Monday", None])


class Reminders(Losses):
    def reminder(self, message, *numbers):
        return [message.named.get((COMMON_SET, number)) for number in numbers]

    def test_a_reminder_is_that_of_the_first_instance_again(self):
        # The next one of the series is weeks behind its start, and that of the single appointment was dismissed.
        series = appointment("Weekly", kind=2, series=Series(appointments.WEEKLY, 1, 1, [2]), reminder=15)
        series += [f"namedtime {COMMON} 8502 {filetime(2011, 4, 4, 8, 0)}", f"namedtime {COMMON} 8560 {filetime(2011, 4, 4, 7, 45)}"]
        single = appointment("Dismissed", reminder=15)
        single += [f"namedtime {COMMON} 8502 {filetime(2011, 3, 7, 9, 0)}", f"namedtime {COMMON} 8560 {filetime(4501, 1, 1)}"]
        before, after, _, new = self.written_back(series, single)
        for name in ("Weekly", "Dismissed"):
            self.assertEqual(self.reminder(new[name], 0x8503, 0x8501, 0x8502, 0x8560),
                             [True, 15, filetime(2011, 3, 7, 9, 0), filetime(2011, 3, 7, 8, 45)], name)
        self.assert_same(after, before)

    def test_a_reminder_that_is_turned_off_stays_so(self):
        lines = [*appointment("Off"), f"namedflag {COMMON} 8503 0", f"namednumber {COMMON} 8501 15",
                 f"namedtime {COMMON} 8560 {filetime(2011, 3, 7, 8, 45)}"]
        before, after, old, new = self.written_back(lines)
        numbers = (0x8503, 0x8501, 0x8560)
        self.assertEqual(self.reminder(new["Off"], *numbers), self.reminder(old["Off"], *numbers))
        self.assert_same(after, before)

    def test_a_reminders_own_sound_becomes_the_usual_one(self):
        own = [f"namedflag {COMMON} 851C 1", f"namedflag {COMMON} 851E 1", f"named {COMMON} 851F {units('gong.wav')}"]
        before, after, _, new = self.written_back([*appointment("Loud", reminder=15), *own])
        self.assertEqual(self.reminder(new["Loud"], 0x851C, 0x851E, 0x851F), [True, True, "Reminder.wav"])
        self.assert_same(after, before)


class OtherProperties(Losses):
    def party(self):
        """An appointment that has of everything that documents do not tell, and a priority."""
        return [*appointment("Party"), "number 00260003 1", "number 00170003 2", "number 00360003 2",
                f"namednumber {APPOINTMENT} 8205 3", f"namednumber {APPOINTMENT} 8214 5",
                f"named {APPOINTMENT} 8238 {units('Ann; Bob')}", f"keywords {units('Red')} {units('Blue')}",
                f"attachment {units('map.txt')}", "number 10800003 1026"]

    def others(self, message):
        tags = [message.tags.get(tag) for tag in (PRIORITY, IMPORTANCE, SENSITIVITY)]
        names = [message.named.get(name) for name in (BUSY, COLOR, ATTENDEES, KEYWORDS)]
        return tags + names + [[part.tags[ATTACHMENT_NAME] for part in message.attachments.values()]]

    ALL = [1, 2, 2, 3, 5, "Ann; Bob", ["Red", "Blue"], ["map.txt"]]

    def test_what_no_document_tells_stays_with_a_change(self):
        before, after, old, new = self.written_back(self.party())
        self.assertEqual((self.others(old["Party"]), self.others(new["Party"])), (self.ALL, self.ALL))
        self.assertEqual(before["Party"]["Priority"], "1")
        self.assert_same(after, before)

    def test_a_new_appointment_has_none_of_it_and_the_usual_priority(self):
        before, after, old, new = self.written_back(self.party(), options=["--new"])
        self.assertEqual(self.others(old["Party"]), self.ALL)
        self.assertEqual(self.others(new["Party"]), [0, 1, 0, 0, None, None, None, []])
        self.assertEqual((before["Party"]["Priority"], after["Party"]["Priority"]), ("1", "0"))
        self.assert_same(after, before, "Priority", "CreateTime", "PIMID")

    def test_the_picture_of_a_meeting_becomes_that_of_an_appointment(self):
        _, _, old, new = self.written_back(self.party())
        self.assertEqual((old["Party"].tags[ICON], new["Party"].tags[ICON]), (1026, 1024))

    def test_blanks_at_the_ends_of_texts_are_gone_and_others_stay(self):
        lines = appointment(" \tName  inside ", location="\u00a0 Room\u3000 \t")
        before, after, _, _ = self.written_back([*lines, f"tag 1000001F {units(chr(13) + chr(10) + ' Line' + chr(13) + chr(10) + ' ')}"])
        [item] = before.values()
        self.assertEqual([item[name] for name in ("Description", "Location", "Body")],
                         [" \tName  inside ", "\u00a0 Room\u3000 \t", "\n Line\n "])
        [item] = after.values()
        self.assertEqual([item[name] for name in ("Description", "Location", "Body")],
                         ["Name  inside", "\u00a0 Room\u3000", "Line"])


if __name__ == "__main__":
    harness.run()
