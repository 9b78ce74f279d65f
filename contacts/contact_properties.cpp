#include "contacts/contact_properties.h"

#include <mapitags.h>

#include <limits>
#include <vector>

#include "contacts/contact_fields.h"
#include "contacts/contact_name.h"
#include "contacts/im_address.h"
#include "mapi/named_properties.h"
#include "mapi/property_writing.h"
#include "support/errors.h"
#include "timezone/conversions.h"

namespace {

// The fields in the order in which they are written. A message can be saved by others in between, and what
// they then see depends on it.
constexpr std::int32_t kNameFields[] = {kLastNameField, kFirstNameField, kMiddleNameField};
constexpr std::int32_t kFieldsBehindTheClass[] = {
    102,  111,  100,  112,  104,  106,  103, 101, 108,  // telephone numbers
    110,  113,  114,  115,  116,  117,  119, 120, 121,  //
    1500, 1501, 4004, 4015, 4005, 3002,                 // web pages, company, title, nickname, notes
    2008, 2004, 2005, 2002, 2006, 2019,                 // home
    2038, 2034, 2035, 2032, 2036, 2030,                 // other address
    2016, 2012, 2013, 2010, 2014, 2021,                 // business
};
constexpr std::int32_t kEmailFields[] = {1000, 1001, 1002};
constexpr std::int32_t kFieldsBehindTheEmail[] = {kIMAddressField, 4037, 4038, 4001, 4011};

constexpr std::int32_t kBirthdayField = 4003;
constexpr std::int32_t kAnniversaryField = 4019;
constexpr LONG kDisplayNameId = 0x8005;

void SetField(IMessage* message, tagContactFields& fields, std::int32_t id) {
    const ContactField* const field = FindContactField(id);
    if (field == nullptr || field->member == nullptr) {
        return;
    }
    const CString& text = field->member(fields);
    if (field->tag != 0) {
        SetTextProperty(message, field->tag, text);
    } else {
        SetNamedTextProperty(message, PSETID_Address, field->namedId, text);
    }
}

void SetEmailField(IMessage* message, tagContactFields& fields, std::int32_t id) {
    if (const ContactField* const field = FindContactField(id);
        field != nullptr && field->member != nullptr) {
        SetContactEmailAddress(message, field->namedId, field->member(fields));
    }
}

/// A date under its own tag.
void SetFieldDate(IMessage* message, std::int32_t id, const COleDateTime& date) {
    if (const ContactField* const field = FindContactField(id)) {
        SetDateProperty(message, field->tag, date);
    }
}

/// A date under its name, some hours earlier.
void SetFieldLocalDate(IMessage* message, std::int32_t id, COleDateTime date, std::int32_t hours) {
    const ContactField* const field = FindContactField(id);
    if (field == nullptr) {
        return;
    }
    if (!date.IsNoDate()) {
        date.m_dt = SubtractSpan(date.m_dt, DaysOf(0, hours, 0, 0));
    }
    SetNamedDateProperty(message, PSETID_Address, field->namedId, date);
}

/// Sets a property of several texts.
void SetTexts(IMessage* message, ULONG tag, const std::vector<CString>& texts) {
    constexpr std::size_t kMost = std::numeric_limits<ULONG>::max() / sizeof(LPWSTR);
    MapiBuffer<LPWSTR> pointers;
    if (texts.size() > kMost ||
        pfnMAPIAllocateBuffer(static_cast<ULONG>(texts.size() * sizeof(LPWSTR)),
                              reinterpret_cast<void**>(pointers.Put())) != S_OK ||
        !pointers) {
        RaiseComError(kErrorOutOfMemory);
    }
    for (std::size_t i = 0; i < texts.size(); ++i) {
        pointers.Get()[i] = const_cast<LPWSTR>(texts[i].c_str());
    }
    SPropValue value{};
    value.ulPropTag = tag;
    value.Value.MVszW.cValues = static_cast<ULONG>(texts.size());
    value.Value.MVszW.lppszW = pointers.Get();
    message->SetProps(1, &value, nullptr);
}

}  // namespace

void SetContactTexts(IMessage* message, tagContactFields& fields) {
    for (const std::int32_t id : kNameFields) {
        SetField(message, fields, id);
    }
    SetTextProperty(message, PR_MESSAGE_CLASS_W, L"IPM.Contact");
    for (const std::int32_t id : kFieldsBehindTheClass) {
        SetField(message, fields, id);
    }
    for (const std::int32_t id : kEmailFields) {
        SetEmailField(message, fields, id);
    }
    for (const std::int32_t id : kFieldsBehindTheEmail) {
        SetField(message, fields, id);
    }
}

void SetContactDates(IMessage* message, const tagContactFields& fields,
                     const NAMESPACE_COMMON::tagZebTimeZone& zone) {
    const COleDateTime birthday = ParseDateTimeText(fields.m_strBirthday);
    const COleDateTime anniversary = ParseDateTimeText(fields.m_strAnniversary);
    SetFieldDate(message, kBirthdayField, birthday);
    SetFieldDate(message, kAnniversaryField, anniversary);
    // Minutes of the offset are dropped.
    const std::int32_t hours = zone.Bias / 60;
    SetFieldLocalDate(message, kBirthdayField, birthday, hours);
    SetFieldLocalDate(message, kAnniversaryField, anniversary, hours);
}

HRESULT SetContactEmailAddress(IMessage* message, LONG id, const CString& address) {
    const CString type(address.empty() ? L"" : L"SMTP");
    SetNamedTextProperty(message, PSETID_Address, id - 1, type);
    SetNamedTextProperty(message, PSETID_Address, id, address);
    SetNamedTextProperty(message, PSETID_Address, id + 1, address);
    return SetNamedTextProperty(message, PSETID_Address, id - 3, address);
}

void SetContactCategories(IMessage* message, const CString& categories) {
    ULONG tag = GetNamedPropertyTag(message, PS_PUBLIC_STRINGS_Data1, L"Keywords");
    if (tag == 0) {
        return;
    }
    tag = CHANGE_PROP_TYPE(tag, PT_MV_UNICODE);
    DeleteProperty(message, tag);
    if (!categories.empty()) {
        SetTexts(message, tag, CutCategories(categories));
    }
}

void SetContactNameTexts(IMessage* message, const tagContactFields& fields) {
    const CString name = JoinName(fields.m_strFirstName, fields.m_strMiddleName, fields.m_strLastName);
    SetTextProperty(message, PR_INITIALS_W,
                    InitialsOfName(fields.m_strFirstName, fields.m_strMiddleName, fields.m_strLastName));
    SetTextProperty(message, PR_DISPLAY_NAME_W, name);
    SetTextProperty(message, PR_SUBJECT_W, name);
    SetTextProperty(message, PR_NORMALIZED_SUBJECT_W, name);
    SetNamedTextProperty(message, PSETID_Address, kDisplayNameId, name);
}
