#include "changelog/folder_log.h"
#include "contacts/contact_sending.h"
#include "contacts/contact_xml_output.h"
#include "mapi/mapi_object.h"
#include "mapi/operation_log.h"
#include "mapi/store_entries.h"
#include "support/errors.h"
#include "support/log.h"
#include "timezone/conversions.h"

namespace NAMESPACE_MAPI {

namespace {

constexpr std::int32_t kSentInFull = kItemNew | kItemChanged;

/// Deletions name no time before this year.
constexpr int kFirstYear = 1901;

MapiBuffer<SPropValue> ReadContactValues(IMessage* message, ULONG& count) {
    MapiBuffer<SPropValue> values;
    // Absent properties make the result a warning; the values are there all the same.
    message->GetProps(const_cast<LPSPropTagArray>(kContactColumns), MAPI_UNICODE, &count, values.Put());
    if (!values) {
        Log(kLogFailure, L"CMAPIObject::ReadContactFromLog - NULL lpPropValues\r\n");
        AfxThrowUserException();
    }
    return values;
}

/// Sends a contact that is new or changed; one that is gone meanwhile is passed over.
void SendChangedContact(IMAPIFolder* chosen, const tagLogItem& item, const CString& path) {
    Log(kLogTrace, L"CMAPIObject::ReadContactFromLog - %s(%s)\r\n",
        (item.m_lLogFlag & kItemNew) != 0 ? L"New" : L"Update", item.m_strId.c_str());
    const ComPtr<IMessage> message = OpenMessageByHexId(chosen, item.m_strId);
    if (!message) {
        return;
    }
    ULONG count = 0;
    const MapiBuffer<SPropValue> values = ReadContactValues(message.Get(), count);
    CXMLParser document;
    BeginContactDocument(document);
    AppendElement(document, L"CsFolder", path);
    AppendElement(document, L"lFlag", CString::FromNumber(item.m_lLogFlag));
    // An open message does not give the identifier by which the list names it.
    CString ownId;
    AppendContactRowToXml(document, ownId, values.Get(), count, nullptr);
    AppendElement(document, L"PIMID", item.m_strId);
    AppendContactMessageToXml(document, message.Get());
    const CString xml = document.GetDocumentText();
    document.ReleaseDocument();
    SendContact(xml);
}

/// Sends a deletion, for which the list is all there is.
void SendDeletedContact(const tagLogItem& item) {
    Log(kLogTrace, L"CMAPIObject::ReadContactFromLog - Delete(%s)\r\n", item.m_strId.c_str());
    CXMLParser document;
    BeginContactDocument(document);
    AppendElement(document, L"lFlag", CString::FromNumber(item.m_lLogFlag));
    AppendElement(document, L"PIMID", item.m_strId);
    if (SplitDate(item.m_dtModified).year >= kFirstYear) {
        // The capital letter is particular to deletions.
        AppendElement(document, L"LastModifiedTime", item.m_dtModified.Format(L"%m/%d/%Y %H:%M:%S"));
    }
    SendContact(document.GetDocumentText());
}

}  // namespace

int CMAPIObject::ReadContactLogFromFolder(const SBinary& entryId,
                                          CArray<tagLogItem, const tagLogItem&>& items) {
    const ComPtr<IMAPIFolder> chosen = m_lpContactFolder;
    const FolderLog log{kContactItems, L"ReadContactLogFromFolder", m_bStop};
    return ReadFolderLog(log, chosen.Get(), entryId, items);
}

int CMAPIObject::ReadContactFromLog(const CArray<tagLogItem, const tagLogItem&>& items, const CString& path) {
    Log(kLogTrace, L"CMAPIObject::ReadContactFromLog - Begin\r\n");
    bool succeeded = false;
    try {
        succeeded = SendContactsOfLog(items, path);
    } catch (const NoDocument&) {
        return 0;
    } catch (...) {
        succeeded = false;
    }
    LogFinish(L"ReadContactFromLog", succeeded);
    return succeeded ? 1 : 0;
}

bool CMAPIObject::SendContactsOfLog(const CArray<tagLogItem, const tagLogItem&>& items, const CString& path) {
    const ComPtr<IMAPIFolder> chosen = m_lpContactFolder;
    m_nItemTotal = static_cast<int>(items.GetSize());
    for (const tagLogItem& item : items) {
        if (m_bStop != 0) {
            return false;
        }
        if ((item.m_lLogFlag & kSentInFull) != 0) {
            SendChangedContact(chosen.Get(), item, path);
        } else if ((item.m_lLogFlag & kItemDeleted) != 0) {
            SendDeletedContact(item);
        }
    }
    return true;
}

}  // namespace NAMESPACE_MAPI
