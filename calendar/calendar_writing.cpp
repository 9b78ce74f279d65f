#include "calendar/appointment_writing.h"
#include "calendar/calendar_record.h"
#include "mapi/item_writing.h"
#include "mapi/mapi_object.h"
#include "mapi/send_back.h"
#include "support/log.h"

namespace NAMESPACE_MAPI {

namespace {

/// The one kind of item that is written.
constexpr std::int32_t kAppointmentKind = 3;

bool IsWritten(const CCalendarEx* calendar) {
    return calendar != nullptr && calendar->m_lCalType == kAppointmentKind;
}

}  // namespace

int CMAPIObject::WriteCalendars(CCalendarEx* calendar) {
    Log(kLogTrace, L"CMAPIObject::WriteCalendars - Begin\r\n");
    int status = 0;
    try {
        LoadTimeZones(m_arrTimeZones);
        if (calendar == nullptr) {
            Log(kLogFailure, L"CMAPIObject::WriteCalendars - NULL Parameter\r\n");
            return 1;
        }
        RunByFlag(
            calendar->m_lFlag, [&] { return AddCalendar(calendar); },
            [&] { return UpdateCalendar(calendar); }, [&] { return DeleteCalendar(calendar); });
    } catch (...) {
        status = 1;
    }
    // Nothing catches the failure of this call. By now the appointment is written, or it never will be.
    SendBackOneCalendar(CString());
    Log(kLogTrace, L"CMAPIObject::WriteCalendars - Finish\r\n");
    return status;
}

int CMAPIObject::AddCalendar(CCalendarEx* calendar) const {
    return RunLogged(L"AddCalendar", [&] { return IsWritten(calendar) && AddCalendarEvent(calendar) != 0; });
}

int CMAPIObject::UpdateCalendar(CCalendarEx* calendar) const {
    return RunLogged(L"UpdateCalendar",
                     [&] { return IsWritten(calendar) && UpdateCalendarEvent(calendar) != 0; });
}

int CMAPIObject::DeleteCalendar(CCalendarEx* calendar) const {
    return RunLogged(L"DeleteCalendar", [&] {
        const HeldObjects held = Hold(m_lpEventFolder);
        return calendar != nullptr && DeleteItem(held.folder.Get(), calendar->m_strPIMID);
    });
}

int CMAPIObject::AddCalendarEvent(CCalendarEx* calendar) const {
    return RunLogged(L"AddCalendarEvent", [&] {
        const HeldObjects held = Hold(m_lpEventFolder);
        return calendar != nullptr &&
               AddItem(held.folder.Get(), calendar->m_strPIMID,
                       [&](IMessage* message) { return UpdateCalendarEventMessage(message, calendar); });
    });
}

int CMAPIObject::UpdateCalendarEvent(CCalendarEx* calendar) const {
    return RunLogged(L"UpdateCalendarEvent", [&] {
        const HeldObjects held = Hold(m_lpEventFolder);
        return calendar != nullptr &&
               UpdateItem(held.folder.Get(), calendar->m_strPIMID,
                          [&](IMessage* message) { return UpdateCalendarEventMessage(message, calendar); });
    });
}

int CMAPIObject::UpdateCalendarEventMessage(IMessage* message, CCalendarEx* calendar) const {
    return RunLogged(L"UpdateCalendarEventMessage", [&] {
        if (message == nullptr || calendar == nullptr) {
            return false;
        }
        SetAppointmentProperties(message, *calendar, m_arrTimeZones, m_CurrentTimeZone);
        const bool saved = message->SaveChanges(FORCE_SAVE) == S_OK;
        ReadTimeOfChange(message, calendar->m_dtLastModified);
        return saved;
    });
}

}  // namespace NAMESPACE_MAPI
