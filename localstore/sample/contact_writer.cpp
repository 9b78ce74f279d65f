#include "localstore/sample/contact_writer.h"

#include <mapitags.h>

#include <iterator>

#include "localstore/sample/message_properties.h"
#include "localstore/sample/sample_error.h"
#include "localstore/sample/sample_times.h"

namespace sample {

namespace {

// Published properties that the SDK headers at hand do not name.
constexpr ULONG kIconIndex = 0x10800003;
constexpr ULONG kAttachContactPhoto = 0x7FFF000B;
constexpr ULONG kAttachFlags = 0x37140003;
constexpr ULONG kAttachHidden = 0x7FFE000B;

// Numbers of names in PSETID_Address and PSETID_Common (MS-OXPROPS).
constexpr LONG kFileUnder = 0x8005;
constexpr LONG kFileUnderId = 0x8006;
constexpr LONG kHasPicture = 0x8015;
constexpr LONG kHomeAddress = 0x801A;
constexpr LONG kWorkAddress = 0x801B;
constexpr LONG kOtherAddress = 0x801C;
constexpr LONG kPostalAddressId = 0x8022;
constexpr LONG kProviderEmailList = 0x8028;
constexpr LONG kProviderArrayType = 0x8029;
constexpr LONG kListName = 0x8053;
constexpr LONG kBirthdayLocal = 0x80DE;
constexpr LONG kAnniversaryLocal = 0x80DF;
constexpr LONG kPrivate = 0x8506;

constexpr LONG kContactIcon = 512;
constexpr LONG kFiledByLastAndFirst = 0x8017;
constexpr LONG kFiledByCompany = 0x3A16;
constexpr LONG kMailToWork = 2;

/// What GetProps and SetProps carry in one piece everywhere; a longer text goes through a stream.
constexpr std::size_t kLongestSetText = 4'000;

/// Texts that are not empty, with a separator between them.
std::wstring Joined(std::initializer_list<std::wstring> parts, const wchar_t* separator) {
    std::wstring joined;
    for (const std::wstring& part : parts) {
        if (!part.empty()) {
            joined += joined.empty() ? part : separator + part;
        }
    }
    return joined;
}

std::vector<std::wstring> Split(const std::wstring& text, wchar_t separator) {
    std::vector<std::wstring> parts;
    std::size_t start = 0;
    while (start <= text.size() && !text.empty()) {
        const std::size_t end = std::min(text.find(separator, start), text.size());
        parts.push_back(text.substr(start, end - start));
        start = end + 1;
    }
    return parts;
}

void AppendText(std::vector<BYTE>& bytes, const std::wstring& text) {
    const auto* const first = reinterpret_cast<const BYTE*>(text.c_str());
    bytes.insert(bytes.end(), first, first + (text.size() + 1) * sizeof(wchar_t));
}

/// The entry identifier of an address that stands in no address book (MS-OXCDATA 2.2.5.1), in Unicode.
std::vector<BYTE> OneOffEntryId(const std::wstring& name, const std::wstring& type,
                                const std::wstring& address) {
    std::vector<BYTE> bytes = {0,    0,    0,    0,    0x81, 0x2B, 0x1F, 0xA4, 0xBE, 0xA3, 0x10, 0x19,
                               0x9D, 0x6E, 0x00, 0xDD, 0x01, 0x0F, 0x54, 0x02, 0x00, 0x00, 0x01, 0x90};
    AppendText(bytes, name);
    AppendText(bytes, type);
    AppendText(bytes, address);
    return bytes;
}

/// Collects the properties of one item.
class ItemProperties {
  public:
    ItemProperties(IMessage* message, const SampleItem& item, NamedTags& tags)
        : m_message(message), m_item(item), m_tags(tags) {}

    void AddAll() {
        AddKind();
        AddName();
        AddTexts();
        AddAddresses();
        AddEmails();
        AddDates();
        AddCategories();
    }
    void Set() { m_properties.SetOn(m_message); }

  private:
    [[nodiscard]] ULONG Named(LONG number, ULONG type) const {
        return m_tags.Tag(m_message, kAddressSet, number, type);
    }
    void NamedText(LONG number, const std::wstring& text) {
        if (!text.empty()) {
            m_properties.Text(Named(number, PT_UNICODE), text);
        }
    }

    void AddKind() {
        m_properties.Text(PR_MESSAGE_CLASS_W, m_item.messageClass);
        m_properties.Number(PR_IMPORTANCE, IMPORTANCE_NORMAL);
        m_properties.Number(PR_SENSITIVITY, SENSITIVITY_NONE);
        m_properties.Flag(m_tags.Tag(m_message, kCommonSet, kPrivate, PT_BOOLEAN), false);
    }

    void AddName() {
        using enum Field;
        const std::wstring company = m_item.Text(Company);
        m_name = Joined({m_item.Text(Subject), m_item.Text(NamePrefix), m_item.Text(GivenName),
                         m_item.Text(MiddleName), m_item.Text(Surname), m_item.Text(NameSuffix)},
                        L" ");
        const bool isPerson = !m_name.empty();
        if (!isPerson) {
            m_name = company;
        }
        const std::wstring given = Joined({m_item.Text(GivenName), m_item.Text(MiddleName)}, L" ");
        const std::wstring filed = Joined({m_item.Text(Surname), given}, L", ");
        m_properties.Text(PR_DISPLAY_NAME_W, m_name);
        m_properties.Text(PR_SUBJECT_W, m_name);
        m_properties.Text(PR_NORMALIZED_SUBJECT_W, m_name);
        m_properties.Number(kIconIndex, kContactIcon);
        NamedText(kFileUnder, filed.empty() ? m_name : filed);
        m_properties.Number(Named(kFileUnderId, PT_LONG), isPerson ? kFiledByLastAndFirst : kFiledByCompany);
        if (m_item.messageClass == std::wstring(L"IPM.DistList")) {
            NamedText(kListName, m_name);
        }
        std::wstring initials;
        for (const Field part : {GivenName, MiddleName, Surname}) {
            const std::wstring text = m_item.Text(part);
            initials += text.empty() ? L"" : text.substr(0, 1) + L".";
        }
        if (!initials.empty()) {
            m_properties.Text(PR_INITIALS_W, initials);
        }
    }

    void AddTexts() {
        for (const auto& [field, text] : m_item.fields) {
            if (const TextField* const kept = FindTextField(field)) {
                if (kept->tag != 0) {
                    m_properties.Text(kept->tag, text);
                }
                if (kept->namedId != 0) {
                    NamedText(kept->namedId, text);
                }
            }
        }
    }

    [[nodiscard]] std::wstring AddressText(Field street, Field city, Field state, Field zip,
                                           Field country) const {
        const std::wstring place = Joined({m_item.Text(zip), m_item.Text(city), m_item.Text(state)}, L" ");
        return Joined({m_item.Text(street), place, m_item.Text(country)}, L"\r\n");
    }

    /// The addresses as a mail program shows them, beside their parts.
    void AddAddresses() {
        using enum Field;
        const std::wstring work =
            AddressText(BusinessStreet, BusinessCity, BusinessState, BusinessZip, BusinessCountry);
        NamedText(kHomeAddress, AddressText(HomeStreet, HomeCity, HomeState, HomeZip, HomeCountry));
        NamedText(kWorkAddress, work);
        NamedText(kOtherAddress, AddressText(OtherStreet, OtherCity, OtherState, OtherZip, OtherCountry));
        if (!work.empty()) {
            m_properties.Text(PR_POSTAL_ADDRESS_W, work);
            m_properties.Number(Named(kPostalAddressId, PT_LONG), kMailToWork);
        }
    }

    /// One of the three e-mail addresses; `first` is the number of its display name.
    void AddEmail(LONG first, const std::wstring& type, const std::wstring& address,
                  const std::wstring& readable) {
        NamedText(first, m_name + L" (" + readable + L")");
        NamedText(first + 2, type);
        NamedText(first + 3, address);
        NamedText(first + 4, readable);
        m_properties.Bytes(Named(first + 5, PT_BINARY), OneOffEntryId(m_name, type, address));
    }

    void AddEmails() {
        constexpr std::pair<Field, LONG> kEmails[] = {
            {Field::Email1, 0x8080}, {Field::Email2, 0x8090}, {Field::Email3, 0x80A0}};
        std::vector<LONG> there;
        LONG bits = 0;
        for (std::size_t i = 0; i < std::size(kEmails); ++i) {
            const std::wstring readable = m_item.Text(kEmails[i].first);
            if (readable.empty()) {
                continue;
            }
            const std::wstring exchange = i == 0 ? m_item.Text(Field::ExchangeAddress) : std::wstring();
            if (exchange.empty()) {
                AddEmail(kEmails[i].second, L"SMTP", readable, readable);
            } else {
                AddEmail(kEmails[i].second, L"EX", exchange, readable);
            }
            there.push_back(static_cast<LONG>(i));
            bits |= 1L << i;
        }
        if (!there.empty()) {
            m_properties.Numbers(Named(kProviderEmailList, PT_MV_LONG), there);
            m_properties.Number(Named(kProviderArrayType, PT_LONG), bits);
        }
    }

    /// A date is kept as the local midnight in UTC, and again as it stands.
    void AddDate(Field field, ULONG tag, LONG localNumber) {
        const std::wstring text = m_item.Text(field);
        if (!text.empty()) {
            const FILETIME midnight = TimeOf(text);
            m_properties.Time(tag, LocalToUtc(midnight, MachineZone()));
            m_properties.Time(Named(localNumber, PT_SYSTIME), midnight);
        }
    }
    void AddDates() {
        AddDate(Field::Birthday, PR_BIRTHDAY, kBirthdayLocal);
        AddDate(Field::Anniversary, PR_WEDDING_ANNIVERSARY, kAnniversaryLocal);
    }

    void AddCategories() {
        const std::vector<std::wstring> categories = Split(m_item.Text(Field::Categories), L';');
        if (!categories.empty()) {
            m_properties.Texts(m_tags.KeywordsTag(m_message), categories);
        }
    }

    IMessage* m_message;
    const SampleItem& m_item;
    NamedTags& m_tags;
    MessageProperties m_properties;
    std::wstring m_name;
};

void WriteBody(IMessage* message, const std::wstring& body) {
    if (body.size() > kLongestSetText) {
        WriteStream(message, PR_BODY_W, body.data(), body.size() * sizeof(wchar_t));
    } else if (!body.empty()) {
        MessageProperties properties;
        properties.Text(PR_BODY_W, body);
        properties.SetOn(message);
    }
}

void AttachPicture(IMessage* message, const std::vector<BYTE>& picture, NamedTags& tags) {
    ULONG number = 0;
    ComPtr<IAttach> attachment;
    Require(message->CreateAttach(nullptr, 0, &number, attachment.GetAddressOf()), L"make an attachment");
    const wchar_t* const name = L"ContactPicture.jpg";
    MessageProperties properties;
    properties.Text(PR_DISPLAY_NAME_W, name);
    properties.Text(PR_ATTACH_FILENAME_W, L"Contac~1.jpg");
    properties.Text(PR_ATTACH_LONG_FILENAME_W, name);
    properties.Text(PR_ATTACH_EXTENSION_W, L".jpg");
    properties.Text(PR_ATTACH_MIME_TAG_W, L"image/jpeg");
    properties.Number(PR_ATTACH_METHOD, ATTACH_BY_VALUE);
    properties.Number(PR_RENDERING_POSITION, -1);
    properties.Number(kAttachFlags, 0);
    properties.Flag(kAttachHidden, false);
    properties.Flag(kAttachContactPhoto, true);
    properties.SetOn(attachment.Get());
    WriteStream(attachment.Get(), PR_ATTACH_DATA_BIN, picture.data(), picture.size());
    Require(attachment->SaveChanges(0), L"save an attachment");

    MessageProperties flags;
    flags.Flag(tags.Tag(message, kAddressSet, kHasPicture, PT_BOOLEAN), true);
    flags.SetOn(message);
}

}  // namespace

void WriteItem(IMAPIFolder* folder, const SampleItem& item, NamedTags& tags) {
    ComPtr<IMessage> message;
    Require(folder->CreateMessage(nullptr, 0, message.GetAddressOf()), L"make a message");
    ItemProperties properties(message.Get(), item, tags);
    properties.AddAll();
    properties.Set();
    WriteBody(message.Get(), item.Text(Field::Body));
    if (item.portrait.size != 0) {
        AttachPicture(message.Get(), DrawPortrait(item.portrait), tags);
    }
    Require(message->SaveChanges(0), L"save a message");
}

}  // namespace sample
