#include <functional>

#include "calendar/calendar_sending.h"
#include "calendar/calendar_xml_output.h"
#include "changelog/folder_log.h"
#include "changelog/marked_items.h"
#include "mapi/mapi_object.h"
#include "support/log.h"

namespace NAMESPACE_MAPI {

namespace {

constexpr const wchar_t* kOperation = L"ReadCalendarEventFromLog";

/// Fills the document of an appointment that is new or changed; false if it is gone meanwhile. The message is
/// let go before the document is sent.
bool FillDocument(CXMLParser& document, IMAPIFolder* chosen, const tagLogItem& item, const CString& path,
                  const NAMESPACE_COMMON::tagZebTimeZone& zone) {
    const ComPtr<IMessage> message = OpenMarkedItem(kOperation, chosen, item);
    if (!message) {
        return false;
    }
    ULONG count = 0;
    const MapiBuffer<SPropValue> values = ReadColumns(kOperation, message.Get(), kCalendarColumns, count);
    BeginCalendarDocument(document);
    AppendElement(document, L"CsFolder", path);
    AppendElement(document, L"lFlag", CString::FromNumber(item.m_lLogFlag));
    // The message's own identifier goes out, which can differ from the one in the list.
    CString ownId;
    WriteCalendarRowFields(ownId, document, values.Get(), &count);
    AppendElement(document, L"PIMID", ownId);
    WriteCalendarDetails(document, message.Get(), zone);
    return true;
}

/// Sends an appointment that is new or changed; one that is gone meanwhile is passed over.
void SendChangedCalendar(IMAPIFolder* chosen, const tagLogItem& item, const CString& path,
                         const NAMESPACE_COMMON::tagZebTimeZone& zone) {
    CXMLParser document;
    if (!FillDocument(document, chosen, item, path, zone)) {
        return;
    }
    if (CloseCalendarDocument(document)) {
        SendCalendar(document.GetDocumentText());
    }
    document.ReleaseDocument();
}

/// Sends a deletion, for which the list is all there is.
void SendDeletedCalendar(const tagLogItem& item, int index, int total) {
    LogDeletion(kOperation, item);
    CXMLParser document;
    BeginCalendarDocument(document);
    AppendElement(document, L"lFlag", CString::FromNumber(item.m_lLogFlag));
    AppendElement(document, L"PIMID", item.m_strId);
    AppendCalendarKind(document);
    // The capital letter is particular to deletions.
    AppendElement(document, L"LastModifiedTime", DateAndTimeText(item.m_dtModified));
    const CString xml = document.GetDocumentText();
    Log(kLogTrace, L"CMAPIObject::total item %d delete index - %d\r\n", total, index);
    SendCalendar(xml);
    document.ReleaseDocument();
}

}  // namespace

int CMAPIObject::ReadCalendarEventLogFromFolder(IMAPIFolder* chosen, const SBinary& entryId,
                                                CArray<tagLogItem, const tagLogItem&>& items) const {
    const FolderLog log{kCalendarItems, L"ReadCalendarEventLogFromFolder", m_bStop};
    return ReadFolderLog(log, chosen, entryId, items);
}

int CMAPIObject::ReadCalendarEventFromLog(IMAPIFolder* chosen,
                                          const CArray<tagLogItem, const tagLogItem&>& items,
                                          const CString& path) {
    const auto sendWhole = [&](const tagLogItem& item) {
        SendChangedCalendar(chosen, item, path, m_CurrentTimeZone);
    };
    const auto sendDeletion = [&](const tagLogItem& item, int index) {
        SendDeletedCalendar(item, index, m_nItemTotal);
    };
    // A read of changes runs to its end: nothing looks at m_bStop.
    const MarkedItemRead read{kOperation, nullptr, m_nItemTotal, std::cref(sendWhole),
                              std::cref(sendDeletion)};
    return SendMarkedItems(read, items);
}

}  // namespace NAMESPACE_MAPI
