#include "contacts/contact_record.h"

#include "contacts/contact_fields.h"
#include "contacts/im_address.h"

void CContactInfoEx::Reset() {
    *this = CContactInfoEx();
}

void CContactEx::Reset() {
    m_arrFields.RemoveAll();
    m_lFlag = 0;
    m_arrReserved1.fill(-1);
    m_arrReserved2.fill(0);
    m_arrReserved3.clear();
    m_nReserved4 = 0;
    m_strPIMID.clear();
    m_strCsFolder.clear();
    m_dtLastModified = COleDateTime::GetCurrentTime();
    m_dtStamp = COleDateTime::GetCurrentTime();
}

void tagContactFields::Reset() {
    *this = tagContactFields();
}

namespace {

/// The prefix in front of an instant-messaging address; empty for every other field.
WideView ServicePrefix(std::int32_t fieldId) {
    for (const IMService& service : kIMServices) {
        if (service.fieldId == fieldId) {
            return service.prefix;
        }
    }
    return {};
}

CContactInfoEx* FirstEntry(const CContactEx& contact, std::int32_t fieldId) {
    for (const auto& entry : contact.m_arrFields) {
        if (entry && entry->m_nFieldId == fieldId) {
            return entry.get();
        }
    }
    return nullptr;
}

}  // namespace

CContactInfoEx* FindPhotoEntry(const CContactEx& contact) {
    for (const std::int32_t fieldId : {kFirstNameField, kLastNameField, kMiddleNameField, kFullNameField}) {
        if (CContactInfoEx* entry = FirstEntry(contact, fieldId)) {
            return entry;
        }
    }
    return nullptr;
}

void tagContactFields::CopyFrom(const CContactEx& contact) {
    Reset();
    m_lFlag = contact.m_lFlag;
    m_strPIMID = contact.m_strPIMID;
    m_strCsFolder = contact.m_strCsFolder;
    m_dtStamp = contact.m_dtStamp;
    m_dtLastModified = contact.m_dtLastModified;
    for (const auto& entry : contact.m_arrFields) {
        const ContactField* field = entry ? FindContactField(entry->m_nFieldId) : nullptr;
        if (field != nullptr && field->member != nullptr) {
            field->member(*this) = CString(WideString(ServicePrefix(entry->m_nFieldId)) + entry->m_strValue);
        }
    }
    if (const CContactInfoEx* entry = FindPhotoEntry(contact)) {
        m_strPicPath = entry->m_strPicPath;
    }
}
