#include "changelog/folder_log.h"
#include "contacts/contact_sending.h"
#include "contacts/contact_xml_output.h"
#include "mapi/mapi_object.h"
#include "mapi/store_entries.h"
#include "support/errors.h"
#include "support/log.h"

namespace NAMESPACE_MAPI {

namespace {

/// The progress message of a read that finds nothing to send, and its parameters.
constexpr UINT kProgressMessage = 2524;
constexpr WPARAM kContactProgress = 0x10002;
constexpr LPARAM kAllDone = 100;

/// The count between its lines; 0 for a null folder.
long CountContacts(IMAPIFolder* chosen) {
    Log(kLogTrace, L"CMAPIObject::GetContactCount - Begin\r\n");
    ULONG count = 0;
    if (chosen != nullptr) {
        const FolderIdentity identity = GetFolderIdentity(chosen);
        Log(kLogTrace, L"CMAPIObject::GetContactCount - GetProps(0X%08X)\r\n", identity.result);
        if (identity.IsKnown()) {
            count = CMAPIObject::GetContactCountFromFolder(chosen, identity.EntryId());
        }
    }
    Log(kLogTrace, L"CMAPIObject::GetContactCount - Finish\r\n");
    return static_cast<long>(count);
}

}  // namespace

long CMAPIObject::GetContactCount() const {
    const HeldObjects held = Hold(m_lpContactFolder);
    return CountContacts(held.folder.Get());
}

ULONG CMAPIObject::GetContactCountFromFolder(IMAPIFolder* chosen, const SBinary& entryId) {
    static constexpr FolderCount kCount{kContactItems, L"GetContactCountFromFolder", L"INVALID Parameter",
                                        nullptr, L"Get Count from SubFolder"};
    return CountFolderItems(kCount, chosen, entryId);
}

int CMAPIObject::ReadContacts(const wchar_t* lParam1) {
    Log(kLogTrace, L"CMAPIObject::ReadContacts - Begin\r\n");
    bool succeeded = false;
    try {
        const ComApartmentHold apartment;
        succeeded = ReadChosenContacts(lParam1);
    } catch (...) {
        succeeded = false;
    }
    m_bStop = 0;
    Log(kLogTrace, L"CMAPIObject::ReadContacts - Finish\r\n");
    return succeeded ? 0 : 1;
}

bool CMAPIObject::ReadChosenContacts(const CString& lParam1) {
    const HeldObjects held = Hold(m_lpContactFolder);
    IMAPIFolder* const chosen = held.folder.Get();
    if (chosen == nullptr) {
        Log(kLogFailure, L"CMAPIObject::ReadContacts - NULL m_lpContactFolder\r\n");
        AfxThrowUserException();
    }
    m_nItemsSent = 0;
    m_nItemTotal = static_cast<int>(CountContacts(chosen));
    Log(kLogTrace, L"CMAPIObject::ReadContacts - Contact Count(%d)\r\n", m_nItemTotal);

    const FolderIdentity identity = GetFolderIdentity(chosen);
    Log(kLogTrace, L"CMAPIObject::ReadContacts - m_lpContactFolder->GetProps(0X%08X)\r\n", identity.result);
    if (!identity.IsKnown()) {
        Log(kLogFailure, L"CMAPIObject::ReadContacts - Failed to GetProps or NULL lpPropValues\r\n");
        AfxThrowUserException();
    }
    return lParam1.empty() ? ReadAllContacts(chosen, identity)
                           : ReadChangedContacts(chosen, identity, lParam1);
}

bool CMAPIObject::ReadAllContacts(IMAPIFolder* chosen, const FolderIdentity& identity) {
    Log(kLogFailure, L"CMAPIObject::ReadContacts - Read All Items(NULL lParam1)\r\n");
    if (m_nItemTotal <= 0) {
        return true;
    }
    if (ReadContactFromFolder(chosen, identity.EntryId(), identity.DisplayName()) == 0) {
        Log(kLogFailure, L"CMAPIObject::ReadContacts - Failed to read contacts from folder\r\n");
        return false;
    }
    return true;
}

bool CMAPIObject::ReadChangedContacts(IMAPIFolder* chosen, const FolderIdentity& identity,
                                      const CString& mapFile) {
    Log(kLogTrace, L"CMAPIObject::ReadContacts - Read Changed Items(%s)\r\n", mapFile.c_str());
    LogItems items;
    if (ReadContactLogFromFolder(chosen, identity.EntryId(), items) == 0) {
        Log(kLogFailure, L"CMAPIObject::ReadContacts - Failed to read contacts from log\r\n");
        return false;
    }
    Log(kLogTrace, L"CMAPIObject::ReadContacts - Call GetChangeLog\r\n");
    if (FindChanges(items, L"contact", mapFile) < 1) {
        Log(kLogFailure, L"CMAPIObject::ReadContacts - No Change\r\n");
        SendMessageW(m_hNotifyWnd, kProgressMessage, kContactProgress, kAllDone);
        return true;
    }
    Log(kLogTrace, L"CMAPIObject::ReadContacts - Read Changes\r\n");
    if (ReadContactFromLog(chosen, items, identity.DisplayName()) == 0) {
        Log(kLogFailure, L"CMAPIObject::ReadContacts - Failed to read contacts from log\r\n");
        return false;
    }
    return true;
}

int CMAPIObject::ReadContactFromFolder(IMAPIFolder* chosen, const SBinary& entryId, const CString& path) {
    const FolderRead read{kContactItems,
                          L"ReadContactFromFolder",
                          L"Begin",
                          kContactColumns,
                          m_bStop,
                          [&](const SRow& row, const CString& rowPath) { SendContactRow(chosen, row, rowPath); }};
    return ReadFolderItems(read, chosen, entryId, path);
}

void CMAPIObject::SendContactRow(IMAPIFolder* chosen, const SRow& row, const CString& path) {
    CXMLParser document;
    BeginContactDocument(document);
    AppendElement(document, L"CsFolder", path);
    CString id;
    AppendContactRowToXml(document, id, row.lpProps, row.cValues, nullptr);
    AppendElement(document, L"PIMID", id);
    AppendContactMessageToXml(document, OpenMessageByHexId(chosen, id).Get());
    const CString xml = document.GetDocumentText();
    ++m_nItemsSent;
    SendContact(xml);
    document.ReleaseDocument();
}

}  // namespace NAMESPACE_MAPI
