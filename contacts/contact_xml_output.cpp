#include "contacts/contact_xml_output.h"

#include <mapitags.h>

#include "contacts/contact_fields.h"
#include "contacts/contact_photo.h"
#include "contacts/im_address.h"
#include "mapi/named_properties.h"
#include "mapi/property_tags.h"
#include "timezone/conversions.h"

namespace {

constexpr int kElementDepth = 1;

constexpr SizedSPropTagArray(47, kColumns) = {47, {PR_ENTRYID,       PR_LONGTERM_ENTRYID_FROM_TABLE,
                                                   PR_CREATION_TIME, PR_LAST_MODIFICATION_TIME,
                                                   0x3A11001F,       0x3A44001F,
                                                   0x3A06001F,       0x3A09001F,
                                                   0x3A25001F,       0x3A08001F,
                                                   0x3A24001F,       0x3A1C001F,
                                                   0x3A21001F,       0x3A2F001F,
                                                   0x3A1B001F,       0x3A1F001F,
                                                   0x3A23001F,       0x3A57001F,
                                                   0x3A1A001F,       0x3A2E001F,
                                                   0x3A2D001F,       0x3A2C001F,
                                                   0x3A4B001F,       0x3A1E001F,
                                                   0x3A1D001F,       0x3A02001F,
                                                   0x3A50001F,       0x3A51001F,
                                                   0x3A16001F,       0x3A17001F,
                                                   0x3A4F001F,       0x3A5A001F,
                                                   0x3A5C001F,       0x3A59001F,
                                                   0x3A5D001F,       0x3A5B001F,
                                                   0x3A5E001F,       0x3A60001F,
                                                   0x3A62001F,       0x3A5F001F,
                                                   0x3A63001F,       0x3A61001F,
                                                   0x3A64001F,       0x3A05001F,
                                                   0x3A45001F,       PR_WEDDING_ANNIVERSARY,
                                                   PR_BIRTHDAY}};

/// The named texts of the message part behind the photo, in the order of their elements.
struct NamedElement {
    LONG id;
    const wchar_t* element;
};
constexpr NamedElement kNamedElements[] = {
    {0x8005, L"FULLNAME"},         {0x8049, L"SP-BUSINESSCOUNTRY"}, {0x8046, L"SP-BUSINESSCITY"},
    {0x8047, L"SP-BUSINESSSTATE"}, {0x8045, L"SP-BUSINESSSTREET1"}, {0x8048, L"SP-BUSINESSZIP"},
    {0x804A, L"SP-BUSINESSPOBOX"}, {0x802C, L"SP-YOMIFIRSTNAME"},   {0x802D, L"SP-YOMILASTNAME"},
};
constexpr NamedElement kEmailElements[] = {
    {0x8083, L"SP-EMAIL1"}, {0x8093, L"SP-EMAIL2"}, {0x80A3, L"SP-EMAIL3"}};
constexpr LONG kIMAddressId = 0x8062;

COleDateTime LocalTimeOf(const FILETIME& utc) {
    COleDateTime local;
    FileTimeToLocalDateTime(utc, local);
    return local;
}

CString DateText(const COleDateTime& date) {
    return date.Format(L"%Y-%m-%d");
}

CString AnniversaryText(const FILETIME& utc) {
    const DateParts parts = SplitDate(LocalTimeOf(utc));
    COleDateTime date;
    MakeDateOnly(static_cast<WORD>(parts.year), static_cast<WORD>(parts.month), static_cast<WORD>(parts.day),
                 &date);
    return DateText(date);
}

void AppendRowValue(CXMLParser& document, CString& id, const SPropValue& value) {
    if (TakeCommonRowValue(document, id, value)) {
        return;
    }
    switch (value.ulPropTag) {
        case PR_WEDDING_ANNIVERSARY:
            AppendElement(document, L"Anniversary", AnniversaryText(value.Value.ft));
            return;
        case PR_BIRTHDAY:
            AppendElement(document, L"Birthday", DateText(LocalTimeOf(value.Value.ft)));
            return;
        default:
            // An absent property comes as an error value, whose tag is in no table.
            if (const wchar_t* const element = FindContactRowElement(value.ulPropTag)) {
                AppendElement(document, element, CString(value.Value.lpszW));
            }
    }
}

void AppendPhoto(CXMLParser& document, IMessage* message) {
    const CString path = SaveContactPhoto(message);
    if (IsExistingFile(path)) {
        AppendElement(document, L"PICPath", path);
    }
}

void AppendIMAddress(CXMLParser& document, IMessage* message) {
    CString address;
    GetNamedStringProperty(message, PSETID_Address, kIMAddressId, address);
    const std::int32_t fieldId = SplitIMAddress(address);
    const ComPtr<IXMLDOMElement> element =
        document.CreateChildElement(L"SP-IMADRESS", address.c_str(), nullptr, true, kElementDepth);
    if (element) {
        document.SetAttribute(L"IMType", CString::FromNumber(fieldId).c_str(), element.Get());
    }
}

void AppendMessage(CXMLParser& document, IMessage* message) {
    AppendPhoto(document, message);
    CString text;
    for (const NamedElement& named : kNamedElements) {
        GetNamedStringProperty(message, PSETID_Address, named.id, text);
        AppendElement(document, named.element, text);
    }
    ReadLongTextProperty(message, PR_BODY_W, text);
    AppendElement(document, L"SP-BODY", text);
    for (const NamedElement& email : kEmailElements) {
        GetContactEmailAddress(message, email.id, text);
        AppendElement(document, email.element, text);
    }
    AppendIMAddress(document, message);
    GetContactCategories(message, text);
    AppendElement(document, L"SP-CATEGORIES", text);
}

}  // namespace

const SPropTagArray* const kContactColumns = reinterpret_cast<const SPropTagArray*>(&kColumns);

void AppendContactRowToXml(CXMLParser& document, CString& id, const SPropValue* values, ULONG count,
                           CString* text) {
    if (values == nullptr) {
        return;
    }
    try {
        for (ULONG i = 0; i < count; ++i) {
            AppendRowValue(document, id, values[i]);
        }
        if (text != nullptr) {
            *text = document.GetDocumentText();
        }
    } catch (...) {
        // The document goes on with what it holds so far.
    }
}

void AppendContactMessageToXml(CXMLParser& document, IMessage* message) {
    if (message == nullptr) {
        return;
    }
    try {
        AppendMessage(document, message);
    } catch (...) {
        // The document goes on with what it holds so far.
    }
}

int GetContactEmailAddress(IMessage* message, LONG id, CString& address) {
    address.clear();
    CString type;
    if (GetNamedStringProperty(message, PSETID_Address, id - 1, type) == 0) {
        return 0;
    }
    return GetNamedStringProperty(message, PSETID_Address, type == L"EX" ? id + 1 : id, address);
}

int GetContactCategories(IMessage* message, CString& categories) {
    categories.clear();
    const ULONG tag = GetNamedPropertyTag(message, PS_PUBLIC_STRINGS_Data1, L"Keywords");
    if (tag == 0) {
        return 0;
    }
    const MapiBuffer<SPropValue> value = GetProperty(message, CHANGE_PROP_TYPE(tag, PT_MV_UNICODE));
    if (!value || PROP_TYPE(value->ulPropTag) != PT_MV_UNICODE) {
        return 0;
    }
    const SWStringArray& texts = value->Value.MVszW;
    for (ULONG i = 0; i < texts.cValues; ++i) {
        if (i != 0) {
            categories += L';';
        }
        categories += CString(texts.lppszW[i]);
    }
    return 1;
}
