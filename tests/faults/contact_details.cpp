#include "tests/faults/contact_details.h"

#include <mapitags.h>

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

/// A piece that the store does not take is lacking, and an old picture that it does not delete stays.
bool IsPicture(const std::string& bytes) {
    const std::string first(kPiece, 'a');
    const std::string second(kRest, 'b');
    const std::set<std::string> pictures{{}, first, second, first + second};
    return pictures.contains(bytes) ||
           (bytes.starts_with(OldPicture()) && pictures.contains(bytes.substr(OldPicture().size())));
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
    return FieldElement(kCategoriesField, L"friends;work") +
           FieldElement(kBirthdayField, L"1980-03-07 00:00:00") +
           FieldElement(kAnniversaryField, L"2005-12-24 00:00:00") + L"<PICPath>" + picture + L"</PICPath>";
}

void ExpectDetails(IMessage* message, const Outcome& outcome) {
    ExpectOldOrNew(message, PR_BIRTHDAY, kNoValue, {DayText(1980, 3, 7)}, outcome);
    ExpectOldOrNew(message, PR_WEDDING_ANNIVERSARY, kNoValue, {DayText(2005, 12, 24)}, outcome);
    ExpectOldOrNew(message, FolderWriter::KeywordsTag(message), kNoValue, {L"friends;work"}, outcome);
    const std::string picture = PictureOf(message);
    if (outcome.complete) {
        EXPECT_EQ(picture, NewPicture());
    } else {
        EXPECT_TRUE(IsPicture(picture)) << picture.size() << " bytes";
    }
}
