"""Documents and identifiers of somebody who means harm: no appointment is made of them, and the agent goes on."""

import harness
from calendar_case import LOCATION, CalendarWritingCase
from hostile_case import DocumentTests, IdentifierTests


class Documents(DocumentTests, CalendarWritingCase):
    OTHER_ROOT, READ_BODY = "Contact", "Body"
    TEXT, TEXT_PLACE = "Location", LOCATION


class Identifiers(IdentifierTests, CalendarWritingCase):
    pass


if __name__ == "__main__":
    harness.run()
