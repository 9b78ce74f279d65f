// Message files as storages and streams of any content: reading never fails badly, and what was read comes
// back from what is written.
//
// The input is a list of elements. Each begins with one byte that says where it belongs, for some four bytes
// of a number that is part of its name, and two bytes of length.

#include <cstring>
#include <vector>

#include "fuzz_input.h"
#include "localstore/little_endian.h"
#include "localstore/msg_content.h"

namespace {

using namespace localstore;

class Input {
  public:
    Input(const std::uint8_t* data, std::size_t size) : m_bytes(data, data + size) {}

    [[nodiscard]] bool IsAtEnd() const { return m_place >= m_bytes.size(); }
    std::uint32_t Number(std::size_t size) {
        if (size > m_bytes.size() - m_place) {
            m_place = m_bytes.size();
            return 0;
        }
        const std::uint64_t number = ReadNumber(m_bytes, m_place, size);
        m_place += size;
        return static_cast<std::uint32_t>(number);
    }
    Bytes Rest() {
        const std::size_t size = std::min<std::size_t>(Number(2), m_bytes.size() - m_place);
        const auto first = m_bytes.begin() + static_cast<std::ptrdiff_t>(m_place);
        m_place += size;
        return {first, first + static_cast<std::ptrdiff_t>(size)};
    }

  private:
    Bytes m_bytes;
    std::size_t m_place = 0;
};

/// Puts one element into the storage that holds it: the file's, an attachment's or a recipient's.
void AddElement(Input& input, StorageTree& storage, unsigned what) {
    switch (what) {
        case 0:
            storage.AddStream(kPropertyStreamName, input.Rest());
            break;
        case 1: {
            const Text name = ValueStreamName(input.Number(4));
            storage.AddStream(name, input.Rest());
            break;
        }
        case 2: {
            const Text name = ValueStreamName(input.Number(4)) + WIDE("-") + HexDigits(input.Number(1));
            storage.AddStream(name, input.Rest());
            break;
        }
        default: {
            constexpr PropertyTag tags[] = {0x00020102, 0x00030102, 0x00040102, 0x10030102};
            storage.storages[kNamesStorageName].AddStream(ValueStreamName(tags[what % 4]), input.Rest());
            break;
        }
    }
}

StorageTree FileOf(Input& input) {
    StorageTree file;
    while (!input.IsAtEnd()) {
        const std::uint32_t kind = input.Number(1);
        const unsigned what = kind & 7U;
        switch (kind >> 3U & 3U) {
            case 1:
                AddElement(input, file.storages[WIDE("__attach_version1.0_#") + HexDigits(kind >> 6U)], what);
                break;
            case 2:
                AddElement(input, file.storages[WIDE("__recip_version1.0_#00000000")], what);
                break;
            default:
                AddElement(input, file, what);
                break;
        }
    }
    return file;
}

void RequireSame(const PropertyBag& left, const PropertyBag& right) {
    Require(left.All().size() == right.All().size());
    for (std::size_t i = 0; i < left.All().size(); ++i) {
        Require(left.All()[i].SameValue(right.All()[i]));
    }
}

void RequireSame(const std::vector<PartContent>& left, const std::vector<PartContent>& right) {
    Require(left.size() == right.size());
    for (std::size_t i = 0; i < left.size(); ++i) {
        Require(left[i].number == right[i].number);
        RequireSame(left[i].properties, right[i].properties);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    const char* reason = nullptr;
    std::optional<MessageContent> message = ReadMessage(FileOf(input), reason);
    if (!message) {
        Require(reason != nullptr);
        return 0;
    }
    const StorageTree written = WriteMessage(*message);
    const std::optional<MessageContent> again = ReadMessage(written, reason);
    Require(again.has_value());
    RequireSame(message->properties, again->properties);
    RequireSame(message->attachments, again->attachments);
    RequireSame(message->recipients, again->recipients);
    Require(WriteMessage(*again) == written);

    PropertyName name;
    name.isText = true;
    name.text = WIDE("added");
    if (const std::optional<PropertyId> id = message->AddName(name)) {
        const std::optional<MessageContent> named = ReadMessage(WriteMessage(*message), reason);
        Require(named && named->names.IdOfName(name) == id);
    }
    return 0;
}
