#include "calendar/calendar_sending.h"
#include "calendar/calendar_xml_output.h"
#include "changelog/folder_log.h"
#include "mapi/mapi_object.h"
#include "mapi/operation_log.h"
#include "mapi/store_entries.h"
#include "support/errors.h"
#include "support/log.h"

namespace NAMESPACE_MAPI {

namespace {

/// The messages at the end of a read, and their parameters: that it is over, and how it went.
constexpr UINT kProgressMessage = 2524;
constexpr WPARAM kCalendarProgress = 0x10004;
constexpr WPARAM kReadSucceeded = 0x10000022;
constexpr WPARAM kReadFailed = 0x10000014;
constexpr LPARAM kInterrupted = 21;

}  // namespace

long CMAPIObject::GetCalendarCount() const {
    Log(kLogTrace, L"CMAPIObject::GetCalendarCount - Begin\r\n");
    const long count = GetCalendarEventCount();
    Log(kLogTrace, L"CMAPIObject::GetCalendarCount - Finish\r\n");
    return count;
}

long CMAPIObject::GetCalendarEventCount() const {
    Log(kLogTrace, L"CMAPIObject::GetCalendarEventCount - Begin\r\n");
    ULONG count = 0;
    if (const ComPtr<IMAPIFolder> chosen = m_lpEventFolder) {
        const FolderIdentity identity = GetFolderIdentity(chosen.Get());
        LogResult(L"GetCalendarEventCount", L"m_lpEventFolder->GetProps", identity.result);
        if (identity.IsKnown()) {
            count = GetCalendarEventCountFromFolder(identity.EntryId());
        }
    }
    Log(kLogTrace, L"CMAPIObject::GetCalendarEventCount - Finish\r\n");
    return static_cast<long>(count);
}

ULONG CMAPIObject::GetCalendarEventCountFromFolder(const SBinary& entryId) const {
    static constexpr FolderCount kCount{kCalendarItems, L"GetCalendarEventCountFromFolder",
                                        L"NULL or INVALID Parameter", L"OpenEntry Failed or NULL lpContainer",
                                        nullptr};
    const ComPtr<IMAPIFolder> chosen = m_lpEventFolder;
    return CountFolderItems(kCount, chosen.Get(), entryId);
}

int CMAPIObject::ReadCalendars(const wchar_t* lParam1) {
    Log(kLogTrace, L"CMAPIObject::ReadCalendars - Begin\r\n");
    bool succeeded = false;
    try {
        const ComApartmentHold apartment;
        succeeded = CountAndReadCalendars(lParam1);
    } catch (...) {
        succeeded = false;
    }
    ReportCalendarRead(succeeded);
    m_bStop = 0;
    Log(kLogTrace, L"CMAPIObject::ReadCalendars - Finish\r\n");
    return succeeded ? 0 : 1;
}

bool CMAPIObject::CountAndReadCalendars(const CString& lParam1) {
    LoadTimeZones(m_arrTimeZones);
    m_nItemsSent = 0;
    m_nItemTotal = static_cast<int>(GetCalendarCount());
    Log(kLogTrace, L"CMAPIObject::ReadCalenda - Calendar Count(%d)\r\n", m_nItemTotal);
    return ReadCalendarEvent(lParam1) != 0;
}

/// The lines name the other kind of read; programs that follow the log know them so.
void CMAPIObject::ReportCalendarRead(bool succeeded) const {
    SendMessageW(m_hNotifyWnd, kProgressMessage, kCalendarProgress, 0);
    if (succeeded) {
        Log(kLogTrace, L"CMAPIObject::ReadContacts - Succeeded\r\n");
        SendMessageW(m_hNotifyWnd, kProgressMessage, kReadSucceeded, 0);
    } else if (m_bStop != 0) {
        Log(kLogFailure, L"CMAPIObject::ReadContacts - Interrupted\r\n");
        SendMessageW(m_hNotifyWnd, kProgressMessage, kReadFailed, kInterrupted);
    } else {
        Log(kLogFailure, L"CMAPIObject::ReadContacts - Failed\r\n");
        SendMessageW(m_hNotifyWnd, kProgressMessage, kReadFailed, 0);
    }
}

int CMAPIObject::ReadCalendarEvent(const CString& lParam1) {
    Log(kLogTrace, L"CMAPIObject::ReadCalendarEvent - Begin\r\n");
    bool succeeded = false;
    try {
        succeeded = ReadChosenCalendar(lParam1);
    } catch (...) {
        succeeded = false;
    }
    LogFinish(L"ReadCalendarEvent", succeeded);
    return succeeded ? 1 : 0;
}

bool CMAPIObject::ReadChosenCalendar(const CString& lParam1) {
    const ComPtr<IMAPIFolder> chosen = m_lpEventFolder;
    if (!chosen) {
        Log(kLogFailure, L"CMAPIObject::ReadCalendarEvent - NULL m_lpEventFolder\r\n");
        AfxThrowUserException();
    }
    const FolderIdentity identity = GetFolderIdentity(chosen.Get());
    LogResult(L"ReadContacts", L"m_lpEventFolder->GetProps", identity.result);
    if (!identity.IsKnown()) {
        Log(kLogFailure, L"CMAPIObject::ReadContacts - Failed to GetProps or NULL lpPropValues\r\n");
        AfxThrowUserException();
    }
    const bool succeeded =
        lParam1.empty() ? ReadAllCalendars(identity) : ReadChangedCalendars(identity, lParam1);
    Log(kLogTrace, L"CMAPIObject::before pfnfreeBuffer\r\n");
    return succeeded;
}

bool CMAPIObject::ReadAllCalendars(const FolderIdentity& identity) {
    Log(kLogFailure, L"CMAPIObject::ReadCalendarEvent - NULL lParam1\r\n");
    if (m_nItemTotal < 1) {
        Log(kLogFailure, L"CMAPIObject::ReadCalendarEvent - No Calendar to Read\r\n");
        return true;
    }
    if (ReadCalendarEventFromFolder(identity.EntryId(), identity.DisplayName()) == 0) {
        Log(kLogFailure, L"CMAPIObject::ReadCalendarEvent - Failed to read from folder\r\n");
        return false;
    }
    return true;
}

bool CMAPIObject::ReadChangedCalendars(const FolderIdentity& identity, const CString& mapFile) {
    Log(kLogTrace, L"CMAPIObject::ReadCalendarEvent - Map File(%s)\r\n", mapFile.c_str());
    LogItems items;
    if (ReadCalendarEventLogFromFolder(identity.EntryId(), items) == 0) {
        Log(kLogFailure, L"CMAPIObject::ReadCalendarEvent - Failed to read from log\r\n");
        return false;
    }
    Log(kLogFailure, L"CMAPIObject::ReadCalendarEvent - Call GetChangeLog\r\n");
    bool succeeded = true;
    if (FindChanges(items, L"calendar", mapFile) < 1) {
        Log(kLogFailure, L"CMAPIObject::ReadCalendarEvent - No Change\r\n");
    } else {
        Log(kLogTrace, L"CMAPIObject::ReadCalendarEvent - Read Changes\r\n");
        succeeded = ReadCalendarEventFromLog(items, identity.DisplayName()) != 0;
        if (!succeeded) {
            Log(kLogFailure, L"CMAPIObject::ReadContacts - Failed to read calendars from log\r\n");
        }
    }
    Log(kLogTrace, L"CMAPIObject::before logArrayRemoveall\r\n");
    return succeeded;
}

int CMAPIObject::ReadCalendarEventFromFolder(const SBinary& entryId, const CString& path) {
    const ComPtr<IMAPIFolder> chosen = m_lpEventFolder;
    // The first line says Finish, as the last one does; programs that follow the log know it so.
    const FolderRead read{
        kCalendarItems,
        L"ReadCalendarEventFromFolder",
        L"Finish",
        kCalendarColumns,
        m_bStop,
        [&](const SRow& row, const CString& rowPath) { SendCalendarRow(chosen.Get(), row, rowPath); }};
    return ReadFolderItems(read, chosen.Get(), entryId, path);
}

void CMAPIObject::SendCalendarRow(IMAPIFolder* chosen, const SRow& row, const CString& path) {
    CXMLParser document;
    BeginCalendarDocument(document);
    AppendElement(document, L"CsFolder", path);
    CString id;
    WriteCalendarRowFields(id, document, row.lpProps, &row.cValues);
    AppendElement(document, L"PIMID", id);
    WriteCalendarDetails(document, OpenMessageByHexId(chosen, id).Get(), m_CurrentTimeZone);
    ++m_nItemsSent;
    if (CloseCalendarDocument(document)) {
        SendCalendar(document.GetDocumentText());
    }
    document.ReleaseDocument();
}

}  // namespace NAMESPACE_MAPI
