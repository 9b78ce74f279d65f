"""An agent that is killed while it adds, changes and deletes appointments leaves every one of them old or new, and whole."""

import datetime

import harness
from calendar_case import (APPOINTMENT_SET, BODY, LOCATION, RECUR, SUBJECT, CalendarWritingCase, moment)
from killing_case import KillingTests
from recurrence_decoder import decode

MONTH = 31 * 24 * 60


class Killing(KillingTests, CalendarWritingCase):
    def content(self, number, generation):
        """An appointment of a day that its number tells and at a time that its round tells, every so many days."""
        text = f"{generation:04} of {number:03}"
        day = datetime.datetime(2026, 1, 1, generation) + datetime.timedelta(days=number)
        end = day + datetime.timedelta(minutes=generation + 1)
        return {"Description": text, "Location": f"{text} there", "Body": text * 500, "lRecurType": "1",
                "lRecurInterval": str(generation + 1), "dtStartTime": moment(*day.timetuple()[:6]),
                "dtEndTime": moment(*end.timetuple()[:6])}

    def look_at(self, message):
        generation, number = (int(part) for part in message.tags[SUBJECT].split(" of "))
        content = self.content(number, generation)
        self.assertEqual([message.tags[SUBJECT], message.named[LOCATION], message.tags[BODY]],
                         [content["Description"], content["Location"], content["Body"]])
        series = decode(message.named[RECUR])
        [(start, end)] = series.instances(1)
        self.assertEqual([moment(*time.timetuple()[:6]) for time in (start, end)],
                         [content["dtStartTime"], content["dtEndTime"]])
        self.assertEqual((series.Period, message.named[(APPOINTMENT_SET, 0x8213)]), ((generation + 1) * 1440, generation + 1))
        return number, generation

    def identifier_of(self, document_read):
        item = self.fields_of(document_read)
        return int(item["Description"].split(" of ")[1]), item["PIMID"]


if __name__ == "__main__":
    harness.run()
