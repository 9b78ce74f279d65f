"""Appointments that cannot be written: what is there stays as it is, and nothing new appears."""

import harness
from calendar_case import CalendarWritingCase
from refusal_case import RefusalTests
from writing_case import ADD, CHANGE, DELETE, NO_TIME, REFUSED


class Refusals(RefusalTests, CalendarWritingCase):
    OPERATIONS = {ADD: "AddCalendar", CHANGE: "UpdateCalendar", DELETE: "DeleteCalendar"}

    def assert_time_of_attempt(self, moment, begin):
        self.assertEqual(moment, NO_TIME)

    def test_a_document_that_is_not_said_to_be_an_appointment_is_refused(self):
        identifier, _ = self.add_one("old")
        before = self.files()
        for kind in ("2", "-1", "three", ""):
            added, changed = self.send(self.named(ADD, None, "new", lCalType=kind),
                                       self.named(CHANGE, identifier, "new", lCalType=kind))
            self.assertEqual((added, changed), ((0, "", NO_TIME), (0, identifier, NO_TIME)))
            self.assert_finish(CHANGE, "Failed")
        self.assertEqual(self.write(self.named(ADD, None, "new", lCalType=""), status=REFUSED)[0][0], "refused")
        self.assertEqual(self.files(), before)
        # A deletion does not need to be.
        self.assertEqual(self.send(self.document(DELETE, identifier, lCalType=""))[0], (0, identifier, NO_TIME))
        self.assertEqual(self.files(), {})


if __name__ == "__main__":
    harness.run()
