#include "tests/faults/contact_details.h"

#include <mapitags.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>

#include "contacts/contact_fields.h"
#include "contacts/contact_photo.h"
#include "tests/faults/detail_checks.h"
#include "tests/unit/store/store_fixture.h"

namespace {

/// The picture is copied in pieces of a kilobyte; the new one has two, each of a byte of its own.
constexpr std::size_t kPiece = 1024;
constexpr std::size_t kRest = 200;

constexpr const wchar_t* kCategories = L"friends;work";
constexpr const wchar_t* kBirthday = L"1980-03-07 00:00:00";
constexpr const wchar_t* kAnniversary = L"2005-12-24 00:00:00";

constexpr std::int32_t kCategoriesField = 3018;
constexpr std::int32_t kBirthdayField = 4003;
constexpr std::int32_t kAnniversaryField = 4019;

std::string NewPicture() {
    return std::string(kPiece, 'a') + std::string(kRest, 'b');
}

/// The elements' names are those of the agent's own table.
CString FieldElement(std::int32_t id, const wchar_t* text) {
    const wchar_t* const name = FindContactField(id)->in;
    return CString::Format(L"<%s>%s</%s>", name, text, name);
}

/// A day without a time, which is no time of a zone.
CString DayText(WORD year, WORD month, WORD day) {
    return TimeText({year, month, 0, day, 0, 0, 0, 0});
}

std::string PictureOf(IMessage* message) {
    const TableRows photos = QueryContactPhotos(message);
    EXPECT_LE(photos.Count(), 2U);
    std::string bytes;
    for (ULONG i = 0; i < photos.Count(); ++i) {
        const SPropValue* const data = ValueOfColumn(photos.Row(i), kPhotoData, PR_ATTACH_DATA_BIN);
        if (data != nullptr) {
            bytes.append(reinterpret_cast<const char*>(data->Value.bin.lpb), data->Value.bin.cb);
        }
    }
    return bytes;
}

/// True if a document brought a text that was found in it, or one that was not.
bool Came(const CContactEx& contact, std::int32_t field, const wchar_t* whole) {
    const auto entry = std::ranges::find_if(contact.m_arrFields,
                                            [&](const auto& each) { return each->m_nFieldId == field; });
    if (entry == contact.m_arrFields.end()) {
        return false;
    }
    EXPECT_EQ((*entry)->m_strValue, whole);
    return true;
}

/// The elements of a contact's document that were found.
struct Arrived {
    bool hasFirstName;
    bool hasLastName;
    bool hasCompany;
    bool hasCategories;
    bool hasBirthday;
    bool hasAnniversary;
    bool hasPicture;
};

Arrived ArrivedOf(const StoreState& state) {
    const CContactEx& contact = state.contact;
    const CContactInfoEx* const photo = FindPhotoEntry(contact);
    return {.hasFirstName = Came(contact, kFirstNameField, kNewName),
            .hasLastName = Came(contact, kLastNameField, kNewName),
            .hasCompany = Came(contact, kCompanyField, kNewName),
            .hasCategories = Came(contact, kCategoriesField, kCategories),
            .hasBirthday = Came(contact, kBirthdayField, kBirthday),
            .hasAnniversary = Came(contact, kAnniversaryField, kAnniversary),
            .hasPicture = photo != nullptr && photo->m_strPicPath == state.picture};
}

bool HasTexts(const Arrived& arrived) {
    return arrived.hasFirstName && arrived.hasLastName && arrived.hasCompany;
}

bool HasDetails(const Arrived& arrived) {
    return arrived.hasCategories && arrived.hasBirthday && arrived.hasAnniversary && arrived.hasPicture;
}

void ExpectTexts(WrittenProperties& properties, const Arrived& arrived) {
    const auto fresh = [](bool came) { return came ? kNewName : kNoValue; };
    properties.Class(L"IPM.Contact");
    properties.Tagged(PR_GIVEN_NAME_W, kOldName, fresh(arrived.hasFirstName));
    properties.Tagged(PR_SURNAME_W, kOldName, fresh(arrived.hasLastName));
    properties.Tagged(PR_COMPANY_NAME_W, kOldName, fresh(arrived.hasCompany));
}

/// What may be there of a picture if something failed: a piece that the store does not take is lacking, and
/// an old one that it does not delete stays, which are two failures.
bool IsPicture(const std::string& bytes, const std::string& whole, bool forever) {
    const std::set<std::string> pictures{
        {}, whole.substr(0, kPiece), whole.substr(std::min(kPiece, whole.size()))};
    return pictures.contains(bytes) || bytes == OldPicture() + whole ||
           (forever && bytes.starts_with(OldPicture()) &&
            pictures.contains(bytes.substr(OldPicture().size())));
}

void ExpectPicture(WrittenProperties& properties, bool came, const Outcome& outcome) {
    const std::string picture = PictureOf(properties.Message());
    const std::string whole = came ? NewPicture() : std::string();
    if (picture == whole) {
        return;
    }
    const bool mayBeLeft =
        outcome.fileFailed ||
        properties.MayBeLeft({"IAttach::", "IStream::", "IMessage::CreateAttach", "IMessage::DeleteAttach",
                              "IMessage::GetAttachmentTable", "HrQueryAllRows"});
    EXPECT_TRUE(mayBeLeft && IsPicture(picture, whole, outcome.forever)) << picture.size() << " bytes";
}

void ExpectDetails(WrittenProperties& properties, const Arrived& arrived) {
    const auto fresh = [](bool came, const CString& value) { return came ? value : CString(kNoValue); };
    properties.Tagged(PR_BIRTHDAY, kNoValue, fresh(arrived.hasBirthday, DayText(1980, 3, 7)));
    properties.Tagged(PR_WEDDING_ANNIVERSARY, kNoValue, fresh(arrived.hasAnniversary, DayText(2005, 12, 24)));
    properties.Categories(fresh(arrived.hasCategories, kCategories));
}

}  // namespace

std::string OldPicture() {
    std::string bytes(500, 'p');
    return bytes;
}

void WritePicture(const std::wstring& path) {
    std::ofstream file(std::filesystem::path(path), std::ios::binary);
    file << NewPicture();
}

CString DetailElements(const CString& picture) {
    return FieldElement(kCategoriesField, kCategories) + FieldElement(kBirthdayField, kBirthday) +
           FieldElement(kAnniversaryField, kAnniversary) + L"<PICPath>" + picture + L"</PICPath>";
}

void ExpectContact(IMessage* message, const StoreState& state, bool wasAdded, const Outcome& outcome) {
    const Arrived arrived = ArrivedOf(state);
    EXPECT_TRUE(outcome.documentsFailed || HasTexts(arrived));
    WrittenProperties properties(message, wasAdded, HasTexts(arrived), outcome);
    ExpectTexts(properties, arrived);
}

void ExpectFullContact(IMessage* message, const StoreState& state, bool wasAdded, const Outcome& outcome) {
    const Arrived arrived = ArrivedOf(state);
    const bool isWhole = HasTexts(arrived) && HasDetails(arrived);
    EXPECT_TRUE(outcome.documentsFailed || isWhole);
    WrittenProperties properties(message, wasAdded, isWhole, outcome);
    ExpectTexts(properties, arrived);
    ExpectDetails(properties, arrived);
    ExpectPicture(properties, arrived.hasPicture, outcome);
}
