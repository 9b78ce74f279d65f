"""Dates of contacts that are written: the documented values in the store, in twelve zones, and in winter as in summer."""

import datetime
import time
import unittest
import zoneinfo

import harness
from contact_fields import fields
from message_case import MessageCase
from writing_case import ADD, ADDRESS_SET, LAST_MODIFICATION_TIME, document, time_of

BIRTHDAY, ANNIVERSARY = 0x3A420040, 0x3A410040
LOCAL_BIRTHDAY, LOCAL_ANNIVERSARY = 0x80DE, 0x80DF
LORD_HOWE = "Australia/Lord_Howe"


class Zones(MessageCase):
    """Dates in the store: midnight here as UTC, and once more with the whole hours of the offset taken off."""

    # The hours by which UTC is ahead of standard time, minutes dropped.
    ZONES = {"America/New_York": 5, "America/Los_Angeles": 8, "America/St_Johns": 3, "America/Phoenix": 7,
             "Europe/Berlin": -1, "Asia/Kolkata": -5, "Asia/Kathmandu": -5, "Asia/Yangon": -6, "Asia/Tokyo": -9,
             "Australia/Adelaide": -9, "Australia/Darwin": -9, LORD_HOWE: -10}
    # In winter and summer, and the days around the changes of the zones.
    DATES = ["2020-01-15", "2020-07-15", "2021-03-14", "2021-03-15", "2021-11-07", "2021-11-08", "2021-03-28", "2021-03-29",
             "2021-10-31", "2021-11-01", "2021-10-03", "2021-10-04", "2021-04-04", "2021-04-05"]

    def offset(self, moment, name, today):
        """What the system adds to UTC for a local time of a zone, on the day on which the agent runs."""
        zone = zoneinfo.ZoneInfo(name)
        if name != LORD_HOWE:
            return moment.replace(tzinfo=zone).utcoffset()
        # Here the clocks change by half an hour. Wine makes a whole one of it, and takes the days of the change in the year in
        # which it runs for those of every year.
        this_year = moment.replace(year=today.year, tzinfo=zone)
        standard = this_year.utcoffset() - this_year.dst()
        return standard + datetime.timedelta(hours=1 if this_year.dst() else 0)

    def utc(self, moment, name, today):
        return moment - self.offset(moment, name, today)

    def filetime(self, moment):
        return (moment - datetime.datetime(1601, 1, 1)) // datetime.timedelta(microseconds=1) * 10

    def assert_dates(self, message, day, name, today):
        """A message has both dates, of that day, as they are documented."""
        midnight = datetime.datetime.fromisoformat(day)
        earlier = midnight - datetime.timedelta(hours=self.ZONES[name])
        here, shifted = (self.filetime(self.utc(moment, name, today)) for moment in (midnight, earlier))
        self.assertEqual([message.tags[tag] for tag in (BIRTHDAY, ANNIVERSARY)], [here] * 2, day)
        self.assertEqual([message.named[(ADDRESS_SET, number)] for number in (LOCAL_BIRTHDAY, LOCAL_ANNIVERSARY)],
                         [shifted] * 2, day)

    def write_dates(self, name, today, **more):
        """Writes the dates with an agent in a zone, and reads them back.

        Gives the messages, the times that came back, and what passed from the agent's start to the last of the writes.
        """
        begin = time.monotonic()
        agent = self.place.start_agent(TZ=name, **more)
        results = self.send(*(document(ADD, LastName=day, Birthday=day, Anniversary=f"{day} 00:00:00")
                              for day in self.DATES))
        passed = datetime.timedelta(seconds=time.monotonic() - begin)
        found = self.messages()
        self.assertEqual(sorted(found), sorted(self.DATES))
        for day, message in found.items():
            self.assert_dates(message, day, name, today)
        _, documents = self.place.run_client("logon", "read", "logoff")
        read = list(map(fields, documents))
        self.assertEqual(sorted((one["LastName"], one["Birthday"], one["Anniversary"]) for one in read),
                         sorted((day,) * 3 for day in self.DATES))
        agent.kill()
        agent.wait()
        for file in self.place.contacts.iterdir():
            file.unlink()
        return found.values(), [time_of(moment) for _, _, moment in results], passed

    def test_dates_of_twelve_zones_on_both_sides_of_their_changes(self):
        for name in self.ZONES:
            with self.subTest(zone=name):
                self.write_dates(name, datetime.date.today())

    @unittest.skipUnless(harness.OTHER_CLOCK, harness.NO_OTHER_CLOCK)
    def test_what_is_written_in_winter_and_in_summer_is_the_same(self):
        # The days on which the agent runs; where it is summer on one of them it is winter on the other.
        for today in ("2021-01-15", "2021-07-15"):
            for name in self.ZONES:
                with self.subTest(zone=name, today=today):
                    noon = datetime.datetime.fromisoformat(f"{today} 12:00:00")
                    messages, moments, passed = self.write_dates(name, noon.date(), **harness.clock_at(noon))
                    # The agent takes that day for today, and has the offset of that day.
                    for message in messages:
                        moment = message.tags[LAST_MODIFICATION_TIME]
                        self.assertLessEqual(self.filetime(noon), moment)
                        self.assertLessEqual(moment, self.filetime(noon + passed))
                    local = noon + self.offset(noon, name, noon)
                    self.assertLessEqual(local, min(moments))
                    self.assertLessEqual(max(moments), local + passed)


if __name__ == "__main__":
    harness.run()
