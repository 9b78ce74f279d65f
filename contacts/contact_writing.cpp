#include "contacts/contact_photo_writing.h"
#include "contacts/contact_properties.h"
#include "contacts/contact_record.h"
#include "mapi/item_writing.h"
#include "mapi/mapi_object.h"
#include "support/errors.h"
#include "support/log.h"

namespace NAMESPACE_MAPI {

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
    RunByFlag(
        contact->m_lFlag, [&] { return AddContact(contact); }, [&] { return UpdateContact(contact); },
        [&] { return DeleteContact(contact); });
}

int CMAPIObject::AddContact(CContactEx* contact) const {
    return RunLogged(L"AddContact", [&] {
        const HeldObjects held = Hold(m_lpContactFolder);
        return contact != nullptr && AddItem(held.folder.Get(), contact->m_strPIMID, [&](IMessage* message) {
                   return UpdateContactMessage(message, contact);
               });
    });
}

int CMAPIObject::UpdateContact(CContactEx* contact) const {
    return RunLogged(L"UpdateContact", [&] {
        const HeldObjects held = Hold(m_lpContactFolder);
        return contact != nullptr &&
               UpdateItem(held.folder.Get(), contact->m_strPIMID,
                          [&](IMessage* message) { return UpdateContactMessage(message, contact); });
    });
}

int CMAPIObject::DeleteContact(CContactEx* contact) const {
    return RunLogged(L"DeleteContact", [&] {
        const HeldObjects held = Hold(m_lpContactFolder);
        return contact != nullptr && DeleteItem(held.folder.Get(), contact->m_strPIMID);
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
        ReadTimeOfChange(message, contact->m_dtLastModified);
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
