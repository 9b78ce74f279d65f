#include "changelog/folder_log.h"
#include "changelog/marked_items.h"
#include "contacts/contact_sending.h"
#include "contacts/contact_xml_output.h"
#include "mapi/mapi_object.h"
#include "timezone/conversions.h"

namespace NAMESPACE_MAPI {

namespace {

constexpr const wchar_t* kOperation = L"ReadContactFromLog";

/// Deletions name no time before this year.
constexpr int kFirstYear = 1901;

/// Sends a contact that is new or changed; one that is gone meanwhile is passed over.
void SendChangedContact(IMAPIFolder* chosen, const tagLogItem& item, const CString& path) {
    const ComPtr<IMessage> message = OpenMarkedItem(kOperation, chosen, item);
    if (!message) {
        return;
    }
    ULONG count = 0;
    const MapiBuffer<SPropValue> values = ReadColumns(kOperation, message.Get(), kContactColumns, count);
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
    LogDeletion(kOperation, item);
    CXMLParser document;
    BeginContactDocument(document);
    AppendElement(document, L"lFlag", CString::FromNumber(item.m_lLogFlag));
    AppendElement(document, L"PIMID", item.m_strId);
    if (SplitDate(item.m_dtModified).year >= kFirstYear) {
        // The capital letter is particular to deletions.
        AppendElement(document, L"LastModifiedTime", DateAndTimeText(item.m_dtModified));
    }
    SendContact(document.GetDocumentText());
}

}  // namespace

int CMAPIObject::ReadContactLogFromFolder(IMAPIFolder* chosen, const SBinary& entryId,
                                          CArray<tagLogItem, const tagLogItem&>& items) const {
    const FolderLog log{kContactItems, L"ReadContactLogFromFolder", m_bStop};
    return ReadFolderLog(log, chosen, entryId, items);
}

int CMAPIObject::ReadContactFromLog(IMAPIFolder* chosen, const CArray<tagLogItem, const tagLogItem&>& items,
                                    const CString& path) {
    const MarkedItemRead read{kOperation, &m_bStop, m_nItemTotal,
                              [&](const tagLogItem& item) { SendChangedContact(chosen, item, path); },
                              [](const tagLogItem& item, int /*index*/) { SendDeletedContact(item); }};
    return SendMarkedItems(read, items);
}

}  // namespace NAMESPACE_MAPI
