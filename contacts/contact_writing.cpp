#include "contacts/contact_photo_writing.h"
#include "contacts/contact_properties.h"
#include "contacts/contact_record.h"
#include "mapi/change_flags.h"
#include "mapi/hex_text.h"
#include "mapi/mapi_object.h"
#include "mapi/named_properties.h"
#include "mapi/operation_log.h"
#include "mapi/store_entries.h"
#include "support/errors.h"
#include "support/log.h"
#include "timezone/conversions.h"

// Behind the base headers.
#include <mapitags.h>

namespace NAMESPACE_MAPI {

namespace {

/// Runs one operation between its two lines in the log. An exception in it is its failure.
template<class Work>
int RunLogged(const wchar_t* operation, Work work) {
    LogLine(kLogTrace, operation, L"Begin");
    bool succeeded = false;
    try {
        succeeded = work();
    } catch (...) {
        succeeded = false;
    }
    LogFinish(operation, succeeded);
    return succeeded ? 1 : 0;
}

/// Hands back the identifier by which the message can be found again. One that came with the record is that
/// of another message, and must not stay as if it were this one's.
void ReadIdentifier(IMessage* message, CContactEx& contact) {
    contact.m_strPIMID.clear();
    const MapiBuffer<SPropValue> value = GetProperty(message, PR_ENTRYID, 0);
    if (value && value->ulPropTag == PR_ENTRYID) {
        contact.m_strPIMID = BinaryToHexString(value->Value.bin.lpb, value->Value.bin.cb);
    }
}

/// Hands back the time by which a change by others can be told from this one.
void ReadTimeOfChange(IMessage* message, CContactEx& contact) {
    contact.m_dtLastModified = COleDateTime();
    const MapiBuffer<SPropValue> value = GetProperty(message, PR_LAST_MODIFICATION_TIME, 0);
    if (value && value->ulPropTag == PR_LAST_MODIFICATION_TIME) {
        FileTimeToLocalDateTime(value->Value.ft, contact.m_dtLastModified);
    }
}

bool DeleteMessageByHexId(IMAPIFolder* folder, const CString& hexId) {
    auto id = HexStringToBinary(hexId);
    SBinary entry{static_cast<ULONG>(id.size()), id.data()};
    ENTRYLIST entries{1, &entry};
    return folder->DeleteMessages(&entries, 0, nullptr, 0) == S_OK;
}

}  // namespace

int CMAPIObject::WriteContacts(CContactEx* contact) const {
    Log(kLogTrace, L"CMAPIObject::WriteContacts - Begin\r\n");
    int status = 0;
    try {
        WriteOneContact(contact);
    } catch (...) {
        status = 1;
    }
    Log(kLogTrace, L"CMAPIObject::WriteContacts - Finish\r\n");
    return status;
}

void CMAPIObject::WriteOneContact(CContactEx* contact) const {
    if (contact == nullptr) {
        Log(kLogFailure, L"CMAPIObject::WriteContacts - NULL Parameter\r\n");
        AfxThrowUserException();
    }
    // The first bit that is set decides alone, and stays set unless its operation succeeds.
    if ((contact->m_lFlag & kChangeAdd) != 0) {
        contact->m_lFlag &= AddContact(contact) != 0 ? ~kChangeAdd : -1;
    } else if ((contact->m_lFlag & kChangeUpdate) != 0) {
        contact->m_lFlag &= UpdateContact(contact) != 0 ? ~kChangeUpdate : -1;
    } else if ((contact->m_lFlag & kChangeDelete) != 0) {
        contact->m_lFlag &= DeleteContact(contact) != 0 ? ~kChangeDelete : -1;
    }
}

int CMAPIObject::AddContact(CContactEx* contact) const {
    return RunLogged(L"AddContact", [&] {
        const HeldObjects held = Hold(m_lpContactFolder);
        if (!held.folder || contact == nullptr) {
            return false;
        }
        ComPtr<IMessage> message;
        if (held.folder->CreateMessage(nullptr, 0, message.GetAddressOf()) != S_OK || !message) {
            return false;
        }
        const bool saved = UpdateContactMessage(message.Get(), contact) != 0;
        ReadIdentifier(message.Get(), *contact);
        return saved;
    });
}

int CMAPIObject::UpdateContact(CContactEx* contact) const {
    return RunLogged(L"UpdateContact", [&] {
        const HeldObjects held = Hold(m_lpContactFolder);
        if (!held.folder || contact == nullptr) {
            return false;
        }
        const ComPtr<IMessage> message = OpenMessageByHexId(held.folder.Get(), contact->m_strPIMID);
        return message && UpdateContactMessage(message.Get(), contact) != 0;
    });
}

int CMAPIObject::DeleteContact(CContactEx* contact) const {
    return RunLogged(L"DeleteContact", [&] {
        const HeldObjects held = Hold(m_lpContactFolder);
        if (!held.folder || contact == nullptr) {
            return false;
        }
        // A message may live in a sub-folder, and only its own folder can delete it.
        const ComPtr<IMAPIFolder> parent = OpenParentFolderByHexId(held.folder.Get(), contact->m_strPIMID);
        return parent && DeleteMessageByHexId(parent.Get(), contact->m_strPIMID);
    });
}

int CMAPIObject::UpdateContactMessage(IMessage* message, CContactEx* contact) const {
    return RunLogged(L"UpdateContactMessage", [&] {
        if (message == nullptr || contact == nullptr) {
            return false;
        }
        tagContactFields fields;
        fields.CopyFrom(*contact);
        SetContactTexts(message, fields);
        SetContactDates(message, fields, m_CurrentTimeZone);
        SetContactCategories(message, fields.m_strCategories);
        UpdateContactDisplayName(message, fields);
        SetContactPhoto(message, fields.m_strPicPath);
        const bool saved = message->SaveChanges(FORCE_SAVE) == S_OK;
        ReadTimeOfChange(message, *contact);
        return saved;
    });
}

int CMAPIObject::UpdateContactDisplayName(IMessage* message, const tagContactFields& fields) {
    return RunLogged(L"UpdateContactDisplayName", [&] {
        SetContactNameTexts(message, fields);
        return true;
    });
}

}  // namespace NAMESPACE_MAPI
