"""A reader of .msg files that shares nothing with the local store: the published format (MS-OXMSG) over the olefile library.

As a program it prints what a file holds: read_msg.py FILE...
"""

import pprint
import struct
import sys
import uuid

import olefile

CODE_PAGE = 0x3FFD0003
MULTIPLE = 0x1000
# The known property sets, by the number that stands for them in the mapping of names.
KNOWN_SETS = {1: "00020328-0000-0000-c000-000000000046", 2: "00020329-0000-0000-c000-000000000046"}


def _fixed(kind, raw):
    """The value of a fixed type in the 8 bytes of its entry."""
    formats = {0x0002: "<h", 0x0003: "<i", 0x0004: "<f", 0x0005: "<d", 0x0007: "<d", 0x000A: "<I", 0x0006: "<q",
               0x0014: "<q", 0x0040: "<Q"}
    if kind == 0x000B:
        return struct.unpack("<H", raw[:2])[0] != 0
    if kind in formats:
        return struct.unpack(formats[kind], raw[:struct.calcsize(formats[kind])])[0]
    return raw


def _variable(kind, raw, code_page):
    """The value of one stream."""
    if kind == 0x001F:
        return raw.decode("utf-16-le", "surrogatepass").removesuffix("\0")
    if kind == 0x001E:
        return raw.decode(code_page, "replace").removesuffix("\0")
    if kind == 0x0048:
        return str(uuid.UUID(bytes_le=raw))
    return raw


class Object:
    """A message, attachment or recipient: its values by tag, and those of named properties by set and name."""

    def __init__(self, file, place, header, names, code_page="cp1252"):
        self._file = file
        self._place = place
        stream = self._stream("__properties_version1.0")
        self.header = stream[:header]
        if (len(stream) - header) % 16:
            raise ValueError("the property stream ends in the middle of an entry")
        self.tags = {}
        self.flags = {}
        self.named = {}
        entries = [stream[i:i + 16] for i in range(header, len(stream), 16)]
        # 8-bit texts are of the code page that the object names, or else of that of the message around it.
        for entry in entries:
            if struct.unpack("<I", entry[:4])[0] == CODE_PAGE:
                code_page = f"cp{struct.unpack('<I', entry[8:12])[0]}"
        for entry in entries:
            tag, flags = struct.unpack("<II", entry[:8])
            if tag in self.tags:
                raise ValueError(f"{tag:08X} stands there twice")
            self.flags[tag] = flags
            self.tags[tag] = self._value(tag, entry[8:], code_page)
            if tag >> 16 >= 0x8000:
                self.named[names[tag >> 16]] = self.tags[tag]

    def _stream(self, name):
        return self._file.openstream(self._place + [name]).read()

    def _value(self, tag, raw, code_page):
        kind = tag & 0xFFFF
        name = f"__substg1.0_{tag:08X}"
        size = struct.unpack("<I", raw[:4])[0]
        if kind in (0x001E, 0x001F, 0x0102, 0x0048):
            content = self._stream(name)
            terminator = {0x001E: 1, 0x001F: 2}.get(kind, 0)
            if size != len(content) + terminator:
                raise ValueError(f"{tag:08X} says {size} bytes and has {len(content)}")
            return _variable(kind, content, code_page)
        if kind & MULTIPLE:
            content = self._stream(name)
            if size != len(content):
                raise ValueError(f"{tag:08X} says {size} bytes and has {len(content)}")
            return self._values(kind & ~MULTIPLE, name, content, code_page)
        if kind == 0x000D:
            return self._file.exists(self._place + [name]) and size == 0xFFFFFFFF
        return _fixed(kind, raw)

    def _values(self, kind, name, content, code_page):
        """The values of a multiple property."""
        if kind in (0x001E, 0x001F, 0x0102):
            step = 8 if kind == 0x0102 else 4
            values = []
            for number in range(len(content) // step):
                value = self._stream(f"{name}-{number:08X}")
                length = struct.unpack_from("<I", content, number * step)[0]
                if length != len(value):
                    raise ValueError(f"{name}-{number:08X} says {length} bytes and has {len(value)}")
                values.append(_variable(kind, value, code_page))
            return values
        sizes = {0x0002: 2, 0x0003: 4, 0x0004: 4, 0x0048: 16}
        step = sizes.get(kind, 8)
        return [_fixed(kind, content[i:i + step].ljust(8, b"\0")) for i in range(0, len(content), step)]


class Message(Object):
    """The message of a file, with its attachments and recipients."""

    def __init__(self, path):
        with olefile.OleFileIO(str(path)) as file:
            self.class_id = file.root.clsid
            self.names = self._read_names(file)
            super().__init__(file, [], 32, self.names)
            self.attachments = self._parts(file, "__attach_version1.0_#")
            self.recipients = self._parts(file, "__recip_version1.0_#")
            self.streams = {"/".join(entry): file.openstream(entry).read() for entry in file.listdir()}

    def _parts(self, file, prefix):
        found = sorted(entry[0] for entry in file.listdir(streams=False, storages=True)
                       if len(entry) == 1 and entry[0].startswith(prefix))
        return {int(name.removeprefix(prefix), 16): Object(file, [name], 8, self.names) for name in found}

    @staticmethod
    def _read_names(file):
        """The names of the identifiers from 0x8000 on: pairs of a property set and a number or text."""
        place = ["__nameid_version1.0"]
        sets, entries, texts = (file.openstream(place + [f"__substg1.0_{tag}0102"]).read()
                                for tag in ("0002", "0003", "0004"))
        names = {}
        for position in range(0, len(entries), 8):
            value, kind_and_set, index = struct.unpack_from("<IHH", entries, position)
            if index != position // 8:
                raise ValueError("the identifiers of names do not count up")
            number = kind_and_set >> 1
            own = sets[(number - 3) * 16:(number - 2) * 16]
            property_set = KNOWN_SETS.get(number) or str(uuid.UUID(bytes_le=own))
            if kind_and_set & 1:
                length = struct.unpack_from("<I", texts, value)[0]
                value = texts[value + 4:value + 4 + length].decode("utf-16-le")
            Message._require_look_up(file, place, position, entries, value, kind_and_set)
            names[0x8000 + index] = (property_set, value)
        return names

    @staticmethod
    def _require_look_up(file, place, position, entries, value, kind_and_set):
        """Every number must stand in the stream in which a reader looks for it."""
        if isinstance(value, str):
            return
        stream = 0x1000 + (value ^ kind_and_set) % 0x1F
        content = file.openstream(place + [f"__substg1.0_{stream:04X}0102"]).read()
        if entries[position:position + 8] not in [content[i:i + 8] for i in range(0, len(content), 8)]:
            raise ValueError(f"{value:04X} is not in its look-up stream")


def main(paths):
    for path in paths:
        message = Message(path)
        pprint.pprint({"file": path, "class": message.class_id, "named": message.named,
                       "tags": {f"{tag:08X}": value for tag, value in message.tags.items()},
                       "attachments": {number: part.tags for number, part in message.attachments.items()},
                       "recipients": {number: part.tags for number, part in message.recipients.items()}})


if __name__ == "__main__":
    main(sys.argv[1:])
