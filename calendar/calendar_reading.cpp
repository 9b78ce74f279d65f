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

/// The count between the lines of the remote procedure; 0 for a null folder.
long CountCalendars(IMAPIFolder* chosen) {
    Log(kLogTrace, L"CMAPIObject::GetCalendarCount - Begin\r\n");
    const long count = CMAPIObject::GetCalendarEventCount(chosen);
    Log(kLogTrace, L"CMAPIObject::GetCalendarCount - Finish\r\n");
    return count;
}

}  // namespace

long CMAPIObject::GetCalendarCount() const {
    const HeldObjects held = Hold(m_lpEventFolder);
    return CountCalendars(held.folder.Get());
}

long CMAPIObject::GetCalendarEventCount(IMAPIFolder* chosen) {
    Log(kLogTrace, L"CMAPIObject::GetCalendarEventCount - Begin\r\n");
    ULONG count = 0;
    if (chosen != nullptr) {
        const FolderIdentity identity = GetFolderIdentity(chosen);
        LogResult(L"GetCalendarEventCount", L"m_lpEventFolder->GetProps", identity.result);
        if (identity.IsKnown()) {
            count = GetCalendarEventCountFromFolder(chosen, identity.EntryId());
        }
    }
    Log(kLogTrace, L"CMAPIObject::GetCalendarEventCount - Finish\r\n");
    return static_cast<long>(count);
}

ULONG CMAPIObject::GetCalendarEventCountFromFolder(IMAPIFolder* chosen, const SBinary& entryId) {
    static constexpr FolderCount kCount{kCalendarItems, L"GetCalendarEventCountFromFolder",
                                        L"NULL or INVALID Parameter", L"OpenEntry Failed or NULL lpContainer",
                                        nullptr};
    return CountFolderItems(kCount, chosen, entryId);
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
    const HeldObjects held = Hold(m_lpEventFolder);
    LoadTimeZones(m_arrTimeZones);
    m_nItemsSent = 0;
    m_nItemTotal = static_cast<int>(CountCalendars(held.folder.Get()));
    Log(kLogTrace, L"CMAPIObject::ReadCalenda - Calendar Count(%d)\r\n", m_nItemTotal);
    return ReadCalendarEvent(held.folder.Get(), lParam1) != 0;
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

int CMAPIObject::ReadCalendarEvent(IMAPIFolder* chosen, const CString& lParam1) {
    Log(kLogTrace, L"CMAPIObject::ReadCalendarEvent - Begin\r\n");
    bool succeeded = false;
    try {
        succeeded = ReadChosenCalendar(chosen, lParam1);
    } catch (...) {
        succeeded = false;
    }
    LogFinish(L"ReadCalendarEvent", succeeded);
    return succeeded ? 1 : 0;
}

bool CMAPIObject::ReadChosenCalendar(IMAPIFolder* chosen, const CString& lParam1) {
    if (chosen == nullptr) {
        Log(kLogFailure, L"CMAPIObject::ReadCalendarEvent - NULL m_lpEventFolder\r\n");
        AfxThrowUserException();
    }
    const FolderIdentity identity = GetFolderIdentity(chosen);
    LogResult(L"ReadContacts", L"m_lpEventFolder->GetProps", identity.result);
    if (!identity.IsKnown()) {
        Log(kLogFailure, L"CMAPIObject::ReadContacts - Failed to GetProps or NULL lpPropValues\r\n");
        AfxThrowUserException();
    }
    const bool succeeded = lParam1.empty() ? ReadAllCalendars(chosen, identity)
                                           : ReadChangedCalendars(chosen, identity, lParam1);
    Log(kLogTrace, L"CMAPIObject::before pfnfreeBuffer\r\n");
    return succeeded;
}

bool CMAPIObject::ReadAllCalendars(IMAPIFolder* chosen, const FolderIdentity& identity) {
    Log(kLogFailure, L"CMAPIObject::ReadCalendarEvent - NULL lParam1\r\n");
    if (m_nItemTotal < 1) {
        Log(kLogFailure, L"CMAPIObject::ReadCalendarEvent - No Calendar to Read\r\n");
        return true;
    }
    if (ReadCalendarEventFromFolder(chosen, identity.EntryId(), identity.DisplayName()) == 0) {
        Log(kLogFailure, L"CMAPIObject::ReadCalendarEvent - Failed to read from folder\r\n");
        return false;
    }
    return true;
}

bool CMAPIObject::ReadChangedCalendars(IMAPIFolder* chosen, const FolderIdentity& identity,
                                       const CString& mapFile) {
    Log(kLogTrace, L"CMAPIObject::ReadCalendarEvent - Map File(%s)\r\n", mapFile.c_str());
    LogItems items;
    if (ReadCalendarEventLogFromFolder(chosen, identity.EntryId(), items) == 0) {
        Log(kLogFailure, L"CMAPIObject::ReadCalendarEvent - Failed to read from log\r\n");
        return false;
    }
    Log(kLogFailure, L"CMAPIObject::ReadCalendarEvent - Call GetChangeLog\r\n");
    bool succeeded = true;
    if (FindChanges(items, L"calendar", mapFile) < 1) {
        Log(kLogFailure, L"CMAPIObject::ReadCalendarEvent - No Change\r\n");
    } else {
        Log(kLogTrace, L"CMAPIObject::ReadCalendarEvent - Read Changes\r\n");
        succeeded = ReadCalendarEventFromLog(chosen, items, identity.DisplayName()) != 0;
        if (!succeeded) {
            Log(kLogFailure, L"CMAPIObject::ReadContacts - Failed to read calendars from log\r\n");
        }
    }
    Log(kLogTrace, L"CMAPIObject::before logArrayRemoveall\r\n");
    return succeeded;
}

int CMAPIObject::ReadCalendarEventFromFolder(IMAPIFolder* chosen, const SBinary& entryId,
                                             const CString& path) {
    // The first line says Finish, as the last one does; programs that follow the log know it so.
    const FolderRead read{kCalendarItems,
                          L"ReadCalendarEventFromFolder",
                          L"Finish",
                          kCalendarColumns,
                          m_bStop,
                          [&](const SRow& row, const CString& rowPath) { SendCalendarRow(chosen, row, rowPath); }};
    return ReadFolderItems(read, chosen, entryId, path);
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
