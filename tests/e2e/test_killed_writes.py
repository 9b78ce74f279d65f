"""An agent that is killed while it adds, changes and deletes contacts leaves every one of them old or new, and whole."""

import harness
from contact_fields import fields
from killing_case import KillingTests
from message_case import JPEG, MessageCase
from writing_case import ADDRESS_SET, KEYWORDS, LAST_NAME, PICTURE

FIRST_NAME, BODY = 0x3A06001F, 0x1000001F


class Killing(KillingTests, MessageCase):
    def setUp(self):
        super().setUp()
        self.pictures = {}

    def texts(self, number, generation):
        text = f"{generation:04} of {number:03}"
        return {"FirstName": f"no{number:03}", "LastName": text, "Body": text * 500, "Email1": text, "Categories": text}

    def content(self, number, generation):
        file = self.place.path / f"picture{generation}.jpg"
        if generation not in self.pictures:
            self.pictures[generation] = JPEG + f"{generation}".encode() * 1000
            file.write_bytes(self.pictures[generation])
        return self.texts(number, generation) | {"PICPath": harness.windows_path(file)}

    def look_at(self, message):
        number = int(message.tags[FIRST_NAME].removeprefix("no"))
        generation = int(message.tags[LAST_NAME].split()[0])
        texts = {"FirstName": message.tags[FIRST_NAME], "LastName": message.tags[LAST_NAME], "Body": message.tags[BODY],
                 "Email1": message.named[(ADDRESS_SET, 0x8083)], "Categories": message.named[KEYWORDS][0]}
        self.assertEqual(texts, self.texts(number, generation))
        [attachment] = message.attachments.values()
        self.assertEqual(attachment.tags[PICTURE], self.pictures[generation])
        return number, generation

    def identifier_of(self, document_read):
        contact = fields(document_read)
        self.take_picture(contact)
        return int(contact["FirstName"].removeprefix("no")), contact["PIMID"]


if __name__ == "__main__":
    harness.run()
