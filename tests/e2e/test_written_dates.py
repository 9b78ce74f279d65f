"""Dates of contacts that are written: the same day in every zone, whenever the agent runs."""

import datetime
import zoneinfo

import harness
from contact_fields import fields
from message_case import MessageCase
from writing_case import ADD, ADDRESS_SET, document


class Zones(MessageCase):
    """Dates in the store: midnight here as UTC, and once more with the whole hours of the offset taken off."""

    # The hours by which UTC is ahead of standard time, minutes dropped.
    ZONES = {"America/New_York": 5, "America/St_Johns": 3, "Europe/Berlin": -1, "Asia/Kolkata": -5,
             "Australia/Adelaide": -9, "Asia/Tokyo": -9}
    # In winter and summer, and the days around the changes of the zones.
    DATES = ["2020-01-15", "2020-07-15", "2021-03-14", "2021-03-15", "2021-11-07", "2021-11-08", "2021-03-28", "2021-03-29",
             "2021-10-31", "2021-11-01", "2021-10-03", "2021-10-04", "2021-04-04", "2021-04-05"]

    def filetime(self, moment, zone):
        """A local time of a zone as the store has it."""
        start = datetime.datetime(1601, 1, 1, tzinfo=datetime.timezone.utc)
        return (moment.replace(tzinfo=zone) - start) // datetime.timedelta(microseconds=1) * 10

    def test_dates_of_a_zone_on_both_sides_of_its_changes(self):
        for name, hours in self.ZONES.items():
            with self.subTest(zone=name):
                agent = self.place.start_agent(TZ=name)
                self.send(*(document(ADD, LastName=date, Birthday=date, Anniversary=f"{date} 00:00:00")
                            for date in self.DATES))
                zone = zoneinfo.ZoneInfo(name)
                for date, message in self.messages().items():
                    midnight = datetime.datetime.fromisoformat(date)
                    day = self.filetime(midnight, zone)
                    earlier = self.filetime(midnight - datetime.timedelta(hours=hours), zone)
                    self.assertEqual([message.tags[0x3A420040], message.tags[0x3A410040]], [day] * 2, date)
                    self.assertEqual([message.named[(ADDRESS_SET, number)] for number in (0x80DE, 0x80DF)],
                                     [earlier] * 2, date)
                _, documents = self.place.run_client("logon", "read", "logoff")
                read = list(map(fields, documents))
                self.assertEqual(sorted((one["LastName"], one["Birthday"], one["Anniversary"]) for one in read),
                                 sorted((date,) * 3 for date in self.DATES))
                agent.kill()
                agent.wait()
                for file in self.place.contacts.iterdir():
                    file.unlink()


if __name__ == "__main__":
    harness.run()
