"""A place for tests of written items that look at the messages themselves, with the independent reader."""

import datetime
import sys

import harness
from writing_case import WritingCase, time_of

try:
    from read_msg import Message
except ImportError:
    print("SKIPPED: the olefile library is not there", file=sys.stderr)
    sys.exit(harness.SKIPPED)

JPEG = b"\xFF\xD8\xFF" + bytes(i % 251 for i in range(70000)) + b"\xFF\xD9"


class MessageCase(WritingCase):
    def messages(self):
        """The messages of the folder by name."""
        found = map(Message, self.items.glob("*.msg"))
        return {message.tags.get(self.NAME_TAG): message for message in found}

    def the_message(self):
        [file] = self.items.glob("*.msg")
        return Message(file)

    def assert_present(self, moment, begin):
        """The time of an attempt, which the agent has from the clock."""
        self.assertLessEqual(begin.replace(microsecond=0), time_of(moment))
        self.assertLessEqual(time_of(moment), datetime.datetime.now())

    def picture(self, content=JPEG):
        path = self.place.path / "picture.jpg"
        path.write_bytes(content)
        return harness.windows_path(path)

    def read_one(self):
        [content] = self.place.read_with_desktop(kind=self.KIND).values()
        return content.decode()

    def take_picture(self, contact):
        """The picture of a contact that was read, which is removed."""
        file = self.place.host_path(contact["PICPath"])
        content = file.read_bytes()
        file.unlink()
        return content
