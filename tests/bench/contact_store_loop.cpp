#include <mapitags.h>

#include "store_calls.h"

namespace bench {

namespace {

constexpr ULONG kPieceBytes = 1024;
constexpr ULONG kContactPhoto = 0x7FFF000B;
constexpr ULONG kWeddingAnniversary = 0x3A410040;
constexpr ULONG kBirthday = 0x3A420040;
constexpr ULONG kLongTermId = 0x66700102;

constexpr SizedSPropTagArray(47, kColumns) = {
    47, {PR_ENTRYID, kLongTermId,         PR_CREATION_TIME, PR_LAST_MODIFICATION_TIME,
         0x3A11001F, 0x3A44001F,          0x3A06001F,       0x3A09001F,
         0x3A25001F, 0x3A08001F,          0x3A24001F,       0x3A1C001F,
         0x3A21001F, 0x3A2F001F,          0x3A1B001F,       0x3A1F001F,
         0x3A23001F, 0x3A57001F,          0x3A1A001F,       0x3A2E001F,
         0x3A2D001F, 0x3A2C001F,          0x3A4B001F,       0x3A1E001F,
         0x3A1D001F, 0x3A02001F,          0x3A50001F,       0x3A51001F,
         0x3A16001F, 0x3A17001F,          0x3A4F001F,       0x3A5A001F,
         0x3A5C001F, 0x3A59001F,          0x3A5D001F,       0x3A5B001F,
         0x3A5E001F, 0x3A60001F,          0x3A62001F,       0x3A5F001F,
         0x3A63001F, 0x3A61001F,          0x3A64001F,       0x3A05001F,
         0x3A45001F, kWeddingAnniversary, kBirthday}};

/// The table of photos, in which a contact without one has no row.
void QueryPhotos(IMessage* message) {
    ComPtr<IMAPITable> table;
    RequireResult(message->GetAttachmentTable(0, table.GetAddressOf()), "GetAttachmentTable");
    SizedSPropTagArray(3, columns) = {3, {PR_ATTACH_NUM, PR_ATTACH_DATA_BIN, PR_ATTACH_SIZE}};
    SPropValue isPhoto{};
    isPhoto.ulPropTag = kContactPhoto;
    isPhoto.Value.b = TRUE;
    SRestriction restriction{};
    restriction.rt = RES_PROPERTY;
    restriction.res.resProperty.relop = RELOP_EQ;
    restriction.res.resProperty.ulPropTag = kContactPhoto;
    restriction.res.resProperty.lpProp = &isPhoto;
    RowSet rows;
    RequireResult(pfnHrQueryAllRows(table.Get(), reinterpret_cast<LPSPropTagArray>(&columns), &restriction,
                                    nullptr, 0, rows.Put()),
                  "HrQueryAllRows");
}

/// The address stands behind its type, which says whether another property has it in a readable form.
void ReadEmail(IMessage* message, LONG number) {
    const MapiBuffer<SPropValue> type = NamedValueOf(message, kAddressSet, number - 1);
    if (type && PROP_TYPE(type->ulPropTag) == PT_UNICODE) {
        const bool isExchange = std::wstring(type->Value.lpszW) == L"EX";
        NamedValueOf(message, kAddressSet, isExchange ? number + 1 : number);
    }
}

void ReadContact(IMessage* message) {
    QueryPhotos(message);
    for (const LONG number : {0x8005, 0x8049, 0x8046, 0x8047, 0x8045, 0x8048, 0x804A, 0x802C, 0x802D}) {
        NamedValueOf(message, kAddressSet, number);
    }
    ReadStream(message, PR_BODY_W, kPieceBytes);
    for (const LONG number : {0x8083, 0x8093, 0x80A3}) {
        ReadEmail(message, number);
    }
    NamedValueOf(message, kAddressSet, 0x8062);
    const ULONG keywords = TagOf(message, kPublicStrings, 0, L"Keywords");
    ValueOf(message, CHANGE_PROP_TYPE(keywords, PT_MV_UNICODE));
}

}  // namespace

const StoreLoop kContactLoop{reinterpret_cast<const SPropTagArray*>(&kColumns), L"IPM.Contact", &ReadContact};

}  // namespace bench
