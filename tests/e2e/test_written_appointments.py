"""Appointments that are written, and what stands in their messages then: every property in its set, under its number, of its
type and with its value."""

import datetime
import struct

import harness
import recurrence_decoder
from calendar_case import (APPOINTMENT_SET, BODY, COMMON_SET, END, LOCATION, RECUR, START, SUBJECT,
                           CalendarWritingCase, filetime, moment, utc_of)
from recurrence_decoder import (BY_DAY, BY_MONTH, BY_MONTH_NTH, BY_WEEK, DAILY, END_AFTER, END_BY_DATE, MONTHLY, NEVER,
                                WEEKLY, YEARLY)
from writing_case import ADD, CHANGE, DELETE, NO_TIME, time_of

NEW_YORK = "America/New_York"
# The zone property of New York: bias, that of standard time and of daylight saving, and both rules with a year in front.
NEW_YORK_ZONE = struct.pack("<iiiH8HH8H", 300, 0, -60, 0, 0, 11, 0, 1, 2, 0, 0, 0, 0, 0, 3, 0, 2, 2, 0, 0, 0)
LONG, FLAG, TIME, TEXT, BYTES = 0x0003, 0x000B, 0x0040, 0x001F, 0x0102
# The numbers of the named properties with their types, in the order in which they are written.
OF_APPOINTMENT = {
    0x8205: LONG, 0x820D: TIME, 0x8235: TIME, 0x820E: TIME, 0x8236: TIME, 0x8213: LONG, 0x8208: TEXT, 0x8215: FLAG,
    0x8233: BYTES, 0x8234: TEXT, 0x8223: FLAG, 0x8231: LONG}
OF_COMMON = {0x8516: TIME, 0x8517: TIME, 0x8503: FLAG, 0x8510: LONG}
OF_REMINDER = {0x8501: LONG, 0x8502: TIME, 0x8560: TIME}
OF_SOUND = {0x851C: FLAG, 0x851E: FLAG, 0x851F: TEXT}
# Minutes from 1601 to the last one of the year 4500, which stands for no end.
NO_END = 1525252319
MONDAY_TO_FRIDAY = 62
BODY_TEXT = "Line\r\n\tsecond \u5C71\r\n" * 1000 + "end"


def names(numbers, common):
    return ({(APPOINTMENT_SET, number): kind for number, kind in numbers.items()} |
            {(COMMON_SET, number): kind for number, kind in common.items()})


class WrittenAppointments(CalendarWritingCase):
    def setUp(self):
        super().setUp()
        self.agent = self.place.start_agent(TZ=NEW_YORK)

    def message_of(self, **elements):
        """The message of an appointment that is added, at a place."""
        self.empty_folder()
        self.add_named("x", **({"Location": "there"} | elements))
        return self.the_message()

    def types(self, message):
        """The types of the named properties of a message."""
        return {message.names[tag >> 16]: tag & 0xFFFF for tag in message.tags if tag >> 16 >= 0x8000}

    def of(self, message, numbers, property_set=APPOINTMENT_SET):
        """The values of named properties; None for one that is not there."""
        return [message.named.get((property_set, number)) for number in numbers]


class Properties(WrittenAppointments):
    def test_a_single_appointment_has_these_and_no_others(self):
        begin, end = moment(2026, 3, 2, 9), moment(2026, 3, 2, 10, 45)
        message = self.message_of(Body=BODY_TEXT, Location="Room <4> \U0001F600", dtStartTime=begin, dtEndTime=end)
        self.assertEqual(self.types(message), names(OF_APPOINTMENT, OF_COMMON))
        texts = {0x001A001F: "IPM.Appointment", SUBJECT: "x", BODY: BODY_TEXT}
        numbers = {0x00170003: 1, 0x00260003: 0, 0x00360003: 0, 0x10800003: 1024}
        self.assertEqual({tag: message.tags.get(tag) for tag in texts | numbers}, texts | numbers)
        self.assertEqual(message.tags[0x0E070003] & 1, 1)
        first, last = utc_of(begin, NEW_YORK), utc_of(end, NEW_YORK)
        self.assertEqual(first, filetime(datetime.datetime(2026, 3, 2, 14)))
        self.assertEqual(self.of(message, (0x820D, 0x8235)) + self.of(message, [0x8516], COMMON_SET), [first] * 3)
        self.assertEqual(self.of(message, (0x820E, 0x8236)) + self.of(message, [0x8517], COMMON_SET), [last] * 3)
        self.assertEqual(self.of(message, (0x8205, 0x8213, 0x8208, 0x8215, 0x8223, 0x8231)),
                         [0, 105, "Room <4> \U0001F600", False, False, 0])
        self.assertEqual(self.of(message, (0x8503, 0x8510), COMMON_SET), [False, 369])

    def test_its_zone_is_that_of_the_machine_unless_it_names_one(self):
        for text in ("", "GMT:+300;DST:60;STD:0000110102000000;DLT:0000030202000000", "nonsense"):
            message = self.message_of(TimeZone=text)
            self.assertEqual(message.named[(APPOINTMENT_SET, 0x8233)], NEW_YORK_ZONE, text)
            self.assertIn("Eastern", message.named[(APPOINTMENT_SET, 0x8234)])
        message = self.message_of(TimeZone="GMT:-330;DST:0")
        self.assertEqual(struct.unpack_from("<iii", message.named[(APPOINTMENT_SET, 0x8233)])[0], -330)
        # The zone names no other time.
        self.assertEqual(message.named[START], utc_of(self.NEEDED["dtStartTime"], NEW_YORK))

    def test_a_reminder_has_its_time_and_its_sound(self):
        begin = moment(2026, 3, 8, 3, 30)
        reminded = lambda minutes, tone: self.message_of(lReminderMinutes=str(minutes), nRingTone=str(tone),
                                                      dtStartTime=begin)
        for minutes in (0, 15, 120):
            message = reminded(minutes, 0)
            self.assertEqual(self.types(message), names(OF_APPOINTMENT, OF_COMMON | OF_REMINDER | OF_SOUND))
            # The minutes are taken off the time on the clocks, which go forward at two on this day.
            local = datetime.datetime(2026, 3, 8, 3, 30) - datetime.timedelta(minutes=minutes)
            self.assertEqual(self.of(message, (0x8503, 0x8501, 0x8502, 0x8560, 0x851C, 0x851E, 0x851F), COMMON_SET),
                             [True, minutes, utc_of(begin, NEW_YORK), utc_of(moment(*local.timetuple()[:6]), NEW_YORK),
                              True, False, "Reminder.wav"])
        # With a tone the sound stays as it is: an appointment without one of its own has that of all reminders.
        self.assertEqual(self.types(reminded(15, 1)), names(OF_APPOINTMENT, OF_COMMON | OF_REMINDER))

    def test_a_tone_turns_the_sound_of_an_appointment_on_that_was_silent(self):
        identifier = self.add_named("x", lReminderMinutes="5", nRingTone="0")
        self.send(self.named(CHANGE, identifier, "x", lReminderMinutes="5", nRingTone="1"))
        self.assertEqual(self.of(self.the_message(), (0x851C, 0x851E), COMMON_SET), [True, True])

    def test_without_the_minutes_there_is_a_reminder_and_minus_one_leaves_the_old_minutes(self):
        identifier = self.add(**{self.NAME: "x", "lReminderMinutes": ""})
        self.assertEqual(self.of(self.the_message(), (0x8503, 0x8501), COMMON_SET), [True, 0])
        self.send(self.named(CHANGE, identifier, "x", lReminderMinutes="20"))
        self.send(self.named(CHANGE, identifier, "x", lReminderMinutes="-1"))
        self.assertEqual(self.of(self.the_message(), (0x8503, 0x8501), COMMON_SET), [False, 20])

    def test_whole_days_are_from_midnight_to_midnight(self):
        cases = {(10, 10): (10, 11, 1440), (10, 12): (10, 12, 2880), (12, 10): (12, 13, 1440)}
        for (begin, end), (first, last, minutes) in cases.items():
            message = self.message_of(bAlldayEvent="TRUE", dtStartTime=moment(2010, 5, begin, 10),
                                   dtEndTime=moment(2010, 5, end, 10))
            self.assertEqual(self.of(message, (0x820D, 0x820E, 0x8213, 0x8215)),
                             [utc_of(moment(2010, 5, first), NEW_YORK), utc_of(moment(2010, 5, last), NEW_YORK), minutes,
                              True])
        # Only this spelling is a truth.
        self.assertFalse(self.message_of(bAlldayEvent="true").named[(APPOINTMENT_SET, 0x8215)])

    def test_a_change_replaces_all_that_it_names_and_nothing_else(self):
        self.place.make_items([["appointment", "tag 0037001F " + "old".encode("utf-16-be").hex(),
                                "namednumber 00062002 8205 2", "named 00062002 8208 " + "there".encode("utf-16-be").hex(),
                                "tag 1000001F " + "notes".encode("utf-16-be").hex()]])
        [identifier] = [item["PIMID"] for item in self.read_fields().values()]
        self.send(self.document(CHANGE, identifier))
        message = self.the_message()
        # An appointment without a text has none afterwards; that it keeps somebody busy is not a matter of the document.
        self.assertEqual([message.tags.get(SUBJECT), message.tags.get(BODY), message.named.get(LOCATION),
                          message.named[(APPOINTMENT_SET, 0x8205)]], [None, None, None, 2])
        self.assertNotIn(0x00170003, message.tags)

    def test_what_comes_back_is_its_identifier_and_the_time_of_the_change(self):
        [added, changed] = [self.send(self.named(ADD, None, "x"))[0] for _ in range(2)]
        self.assertEqual((added[0], added[1] == changed[1]), (0, False))
        self.assertEqual({item["PIMID"] for item in map(self.fields_of, self.read_all())}, {added[1], changed[1]})
        [found] = [item for item in map(self.fields_of, self.read_all()) if item["PIMID"] == added[1]]
        self.assertEqual(found["lastModifiedTime"], added[2])
        self.assertEqual(self.send(self.document(DELETE, added[1])), [(0, added[1], NO_TIME)])
        self.assertGreater(time_of(added[2]), datetime.datetime(2020, 1, 1))


class Series(WrittenAppointments):
    """Series from Monday, 2026-03-02, 9:00 to 10:00 on."""

    def series(self, kind, **elements):
        """The decoded property of a series that is added, with its message."""
        message = self.message_of(lRecurType=str(kind), **elements)
        self.assertEqual(self.of(message, (0x8223, 0x8231, 0x8232)), [True, kind, None])
        self.assertEqual((message.tags[0x10800003], self.types(message)[RECUR]), (1025, BYTES))
        decoded = recurrence_decoder.decode(message.named[RECUR])
        self.assertEqual((decoded.StartTimeOffset, decoded.EndTimeOffset), (540, 600))
        return decoded, message

    def assert_days(self, series, *days):
        """The first instances are on these days, from nine to ten."""
        starts = [datetime.datetime.fromisoformat(f"{day} 09:00") for day in days]
        self.assertEqual(series.instances(len(days)), [(start, start + datetime.timedelta(hours=1)) for start in starts])

    def test_days(self):
        series, message = self.series(1, lRecurInterval="3")
        self.assertEqual((series.RecurFrequency, series.PatternType, series.Period, len(message.named[RECUR])),
                         (DAILY, BY_DAY, 3 * 1440, 76))
        self.assert_days(series, "2026-03-02", "2026-03-05", "2026-03-08", "2026-03-11")

    def test_weekdays(self):
        series, message = self.series(2, lRecurInterval="0", lRecurWeekMask=str(MONDAY_TO_FRIDAY))
        self.assertEqual((series.RecurFrequency, series.PatternType, series.Period, len(message.named[RECUR])),
                         (DAILY, BY_WEEK, 1, 80))
        self.assert_days(series, *(f"2026-03-{day:02}" for day in (2, 3, 4, 5, 6, 9, 10)))

    def test_weeks(self):
        series, _ = self.series(2, lRecurInterval="2", lRecurWeekMask="10")
        self.assertEqual((series.RecurFrequency, series.PatternType, series.Period), (WEEKLY, BY_WEEK, 2))
        self.assert_days(series, "2026-03-02", "2026-03-04", "2026-03-16", "2026-03-18", "2026-03-30")

    def test_days_of_months(self):
        series, message = self.series(3, lRecurInterval="2", lRecurDay="31")
        self.assertEqual((series.RecurFrequency, series.PatternType, len(message.named[RECUR])), (MONTHLY, BY_MONTH, 80))
        self.assert_days(series, "2026-03-31", "2026-05-31", "2026-07-31", "2026-09-30")

    def test_weekdays_of_months(self):
        series, message = self.series(3, lRecurInterval="1", lRecurInstance="1", lRecurWeekMask="32", lRecurWeekDay="-1")
        self.assertEqual((series.RecurFrequency, series.PatternType, series.NthWeek, len(message.named[RECUR])),
                         (MONTHLY, BY_MONTH_NTH, 5, 84))
        self.assert_days(series, "2026-03-27", "2026-04-24", "2026-05-29", "2026-06-26")

    def test_years(self):
        series, _ = self.series(4, lRecurInterval="1", lRecurDay="2", lRecurMonth="3")
        self.assertEqual((series.RecurFrequency, series.PatternType, series.Period), (YEARLY, BY_MONTH, 12))
        self.assert_days(series, "2026-03-02", "2027-03-02", "2028-03-02")
        # The day of the year, which is the 61st, in minutes.
        self.assertEqual(series.FirstDateTime, 61 * 1440)

    def test_weekdays_of_years(self):
        series, _ = self.series(4, lRecurInterval="2", lRecurInstance="1", lRecurWeekMask="2", lRecurWeekDay="1")
        self.assertEqual((series.RecurFrequency, series.PatternType, series.Period), (YEARLY, BY_MONTH_NTH, 24))
        self.assert_days(series, "2026-03-02", "2028-03-06", "2030-03-04")

    def clip_end(self, message):
        return message.named[(APPOINTMENT_SET, 0x8236)]

    def test_its_end_is_where_its_clip_ends(self):
        end = moment(2026, 3, 20)
        week = {"lRecurInterval": "1", "lRecurWeekMask": "2"}
        series, message = self.series(2, **week, bRecurHasEndDate="TRUE", dtRecurEndDate=end, lRecurRepeat="5")
        self.assertEqual((series.EndType, series.OccurrenceCount, self.clip_end(message)),
                         (END_BY_DATE, 1, utc_of(end, NEW_YORK)))
        self.assert_days(series, "2026-03-02", "2026-03-09", "2026-03-16")
        self.assertEqual(len(series.instances(10)), 3)
        series, message = self.series(2, **week, dtRecurEndDate=end, lRecurRepeat="5")
        self.assertEqual((series.EndType, series.OccurrenceCount, self.clip_end(message)),
                         (END_AFTER, 5, utc_of(end, NEW_YORK)))
        self.assertEqual(len(series.instances(10)), 5)
        series, message = self.series(2, **week, dtRecurEndDate=end)
        self.assertEqual((series.EndType, series.OccurrenceCount, series.EndDate), (NEVER, 10, NO_END))
        self.assertEqual(self.clip_end(message), utc_of(moment(4500, 12, 31, 23, 59), NEW_YORK))
        # The end of the appointment itself is its first instance's.
        self.assertEqual(message.named[END], utc_of(self.NEEDED["dtEndTime"], NEW_YORK))

    def test_one_over_midnight_ends_on_the_next_day(self):
        message = self.message_of(lRecurType="1", lRecurInterval="1", dtStartTime=moment(2026, 3, 2, 23, 30),
                               dtEndTime=moment(2026, 3, 3, 0, 30))
        [(start, end)] = recurrence_decoder.decode(message.named[RECUR]).instances(1)
        self.assertEqual((start, end), (datetime.datetime(2026, 3, 2, 23, 30), datetime.datetime(2026, 3, 3, 0, 30)))

    def test_a_series_becomes_a_single_appointment_and_one_again(self):
        identifier = self.add_named("x", lRecurType="1")
        self.send(self.named(CHANGE, identifier, "x", Location="there"))
        message = self.the_message()
        self.assertEqual(self.types(message), names(OF_APPOINTMENT, OF_COMMON))
        self.assertEqual((message.tags[0x10800003], self.of(message, (0x8223, 0x8231))), (1024, [False, 0]))
        # Its clip is that of the one appointment again.
        self.assertEqual(self.clip_end(message), message.named[END])
        self.send(self.named(CHANGE, identifier, "x", lRecurType="2", lRecurWeekMask="2"))
        self.assertEqual(recurrence_decoder.decode(self.the_message().named[RECUR]).RecurFrequency, WEEKLY)

    def test_exceptions_that_a_document_tells_of_are_not_written(self):
        rule = '<exceptions>\r\n<deletion time = "2026/03/09"></deletion>\r\n</exceptions>'
        series, _ = self.series(2, lRecurInterval="1", lRecurWeekMask="2", ExceptionRule=rule)
        self.assertEqual((series.DeletedInstanceDates, series.ModifiedInstanceDates), ([], []))
        [item] = self.read_fields().values()
        self.assertNotIn("ExceptionRule", item)


if __name__ == "__main__":
    harness.run()
