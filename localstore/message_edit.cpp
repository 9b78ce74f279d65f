#include "localstore/message_edit.h"

#include <windows.h>

#include <mapidefs.h>
#include <mapitags.h>
#include <objbase.h>

#include <algorithm>
#include <array>

#include "localstore/content_source.h"
#include "localstore/failure.h"
#include "localstore/text_convert.h"

namespace localstore {

namespace {

constexpr PropertyId Id(ULONG tag) {
    return static_cast<PropertyId>(tag >> 16U);
}

// MS-OXCMSG: the forms of a body beside the plain text, and what describes them.
constexpr std::array<PropertyId, 9> kOtherBodies = {0x1006, 0x1007, 0x1008, 0x1009, 0x1010,
                                                    0x1011, 0x1013, 0x1016, 0x0E1F};
constexpr PropertyTag kStoreSupportMask = 0x340D0003;
constexpr std::uint64_t kStoreUnicodeOk = 0x00040000;

/// The length of a reply or forward prefix with the blank behind it: one to three characters that are no
/// digits, and a colon (MS-OXCMSG, section 3.2.5.2).
std::size_t PrefixLength(std::wstring_view subject) {
    const std::size_t colon = subject.find(L':');
    if (colon == 0 || colon > 3 || colon == std::wstring_view::npos || colon + 1 >= subject.size() ||
        subject[colon + 1] != L' ') {
        return 0;
    }
    const auto isDigit = [](wchar_t unit) { return unit >= L'0' && unit <= L'9'; };
    return std::any_of(subject.begin(), subject.begin() + static_cast<std::ptrdiff_t>(colon), isDigit)
               ? 0
               : colon + 2;
}

/// Sets what follows from a subject: both or, if memory is short, none.
void FollowSubject(PropertyBag& bag, std::wstring_view subject) {
    const std::size_t length = PrefixLength(subject);
    Property prefix = Property::OfText(PR_SUBJECT_PREFIX_W, subject.substr(0, length));
    Property normalized = Property::OfText(PR_NORMALIZED_SUBJECT_W, subject.substr(length));
    bag.Set(std::move(prefix));
    bag.Set(std::move(normalized));
}

void DropOtherBodies(PropertyBag& bag) {
    for (const PropertyId id : kOtherBodies) {
        bag.Remove(id);
    }
}

/// Text of an 8-bit string if it comes back as the same bytes, otherwise nothing.
std::optional<Bytes> UnicodeBytes(const Bytes& bytes, UINT codePage) {
    const Text text = DecodeText(bytes, codePage);
    return EncodeText(text, codePage) == bytes ? std::optional(BytesOfText(text)) : std::nullopt;
}

std::optional<Property> InUnicode(const Property& property, UINT codePage) {
    Property converted = property;
    if (property.Type() == kTypeString8) {
        std::optional<Bytes> bytes = UnicodeBytes(property.Data(), codePage);
        if (!bytes) {
            return std::nullopt;
        }
        converted.data = std::make_shared<const Bytes>(std::move(*bytes));
        converted.hasTerminator = false;
        converted.tag = MakeTag(property.Id(), kTypeUnicode);
        return converted;
    }
    if (property.Type() != (kTypeString8 | kMultipleFlag)) {
        return std::nullopt;
    }
    for (SharedBytes& item : converted.items) {
        std::optional<Bytes> bytes = UnicodeBytes(*item, codePage);
        if (!bytes) {
            return std::nullopt;
        }
        item = std::make_shared<const Bytes>(std::move(*bytes));
    }
    converted.tag = MakeTag(property.Id(), kTypeUnicode | kMultipleFlag);
    return converted;
}

void ConvertStrings(PropertyBag& bag, UINT codePage) {
    const std::vector<Property> all = bag.All();
    for (const Property& property : all) {
        if (std::optional<Property> converted = InUnicode(property, codePage)) {
            bag.Set(std::move(*converted));
        }
    }
}

/// A message file says in one place whether its strings are Unicode; ours are.
void MakeUnicode(MessageContent& message) {
    const Property* mask = message.properties.Find(IdOf(kStoreSupportMask));
    const std::uint64_t bits = mask == nullptr ? 0 : mask->fixed;
    if ((bits & kStoreUnicodeOk) != 0) {
        return;
    }
    const UINT codePage = CodePageOf(message.properties);
    ConvertStrings(message.properties, codePage);
    for (PartContent& part : message.attachments) {
        ConvertStrings(part.properties, codePage);
    }
    for (PartContent& part : message.recipients) {
        ConvertStrings(part.properties, codePage);
    }
    message.properties.Set(Property::OfFixed(kStoreSupportMask, bits | kStoreUnicodeOk));
}

Bytes RandomKey() {
    GUID guid{};
    RequireSuccess(CoCreateGuid(&guid));
    const auto* first = reinterpret_cast<const std::uint8_t*>(&guid);
    return {first, first + sizeof(guid)};
}

void SetIfAbsent(PropertyBag& bag, Property property) {
    if (bag.Find(property.Id()) == nullptr) {
        bag.Set(std::move(property));
    }
}

}  // namespace

void PutProperty(MessageContent& message, Property property) {
    PropertyBag& bag = message.properties;
    // What follows from a property must not change without it.
    constexpr std::size_t mostAtOnce = 3;
    bag.MakeRoom(mostAtOnce);
    if (property.tag == PR_BODY_W) {
        const Property* old = bag.Find(Id(PR_BODY));
        if (old == nullptr || TextOf(*old, CodePageOf(bag)) != TextOf(property, CP_ACP)) {
            DropOtherBodies(bag);
        }
    }
    if (property.tag == PR_SUBJECT_W) {
        FollowSubject(bag, TextOf(property, CP_ACP));
    }
    bag.Set(std::move(property));
}

bool TakeProperty(MessageContent& message, PropertyId id) {
    PropertyBag& bag = message.properties;
    if (!bag.Remove(id)) {
        return false;
    }
    if (id == Id(PR_BODY)) {
        DropOtherBodies(bag);
    }
    if (id == Id(PR_SUBJECT)) {
        bag.Remove(Id(PR_SUBJECT_PREFIX));
        bag.Remove(Id(PR_NORMALIZED_SUBJECT));
    }
    return true;
}

void PrepareForSaving(MessageContent& message, std::uint64_t created, std::uint64_t changed) {
    MakeUnicode(message);
    PropertyBag& bag = message.properties;
    SetIfAbsent(bag, TimeProperty(PR_CREATION_TIME, created));
    bag.Set(TimeProperty(PR_LAST_MODIFICATION_TIME, changed));
    SetIfAbsent(bag, Property::OfText(PR_MESSAGE_CLASS_W, L"IPM.Note"));
    SetIfAbsent(bag, LongProperty(PR_MESSAGE_FLAGS, MSGFLAG_READ));
    SetIfAbsent(bag, Property::OfBytes(PR_SEARCH_KEY, RandomKey()));
}

Text TitleOf(const MessageContent& message) {
    for (const PropertyId id : {Id(PR_SUBJECT), Id(PR_DISPLAY_NAME)}) {
        const Property* property = message.properties.Find(id);
        if (property != nullptr && IsString(property->Type()) && !property->Data().empty()) {
            return TextOf(*property, CodePageOf(message.properties));
        }
    }
    return {};
}

}  // namespace localstore
