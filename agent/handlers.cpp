// The remote procedures of the command interface, each a thin step to the session object. The RPC runtime
// calls them on threads of its own.

#include "agent/callback_client.h"
#include "agent/shutdown.h"
#include "command.h"
#include "mapi/mapi_object.h"
#include "support/log.h"

namespace {

constexpr long kStatusSuccess = 0;
constexpr long kStatusFailure = 1;

/// The outputs of a write that did nothing.
void ReturnNothing(wchar_t* id, wchar_t* time, long* status) {
    *id = L'\0';
    *time = L'\0';
    *status = kStatusFailure;
}

}  // namespace

void Shutdown() {
    RequestShutdown();
}

void Stop() {
    g_MAPIObject.Stop();
}

void MAPILogOn(wchar_t* profile, long* status) {
    *status =
        BindOutlookServer() != 0 && g_MAPIObject.MAPILogOn(0, profile) != 0 ? kStatusSuccess : kStatusFailure;
}

void MAPILogOff() {
    g_MAPIObject.MAPILogOff();
}

void GetAppProfile(wchar_t* profiles, long* status) {
    *status = g_MAPIObject.GetAppProfile(profiles);
}

void GetAppFolder(wchar_t* folders, long* status) {
    *status = g_MAPIObject.GetAppFolder(folders);
}

void SetContactFolder(wchar_t* selection, long* status) {
    *status = g_MAPIObject.SetContactFolder(selection);
}

void SetCalendarFolder(wchar_t* selection, long* status) {
    *status = g_MAPIObject.SetCalendarFolder(selection);
}

void GetContactCount(long* count, long* status) {
    *count = g_MAPIObject.GetContactCount();
    *status = kStatusSuccess;
}

void GetContactFolder(wchar_t* /*folder*/, long* status) {
    Log(kLogTrace, L"CMAPIObject::GetContactFolder - Begin\r\n");
    Log(kLogTrace, L"CMAPIObject::GetContactFolder - Finish\r\n");
    *status = kStatusFailure;
}

void GetCalendarFolder(wchar_t* /*folder*/, long* status) {
    Log(kLogTrace, L"Outlook2k - GetCalendarFolder : Begin\r\n");
    Log(kLogTrace, L"Outlook2k - GetCalendarFolder : Finish\r\n");
    *status = kStatusSuccess;
}

void Reserved10(wchar_t* /*text*/, long* /*status*/) {}

void ReadContacts(wchar_t* /*ignored*/, wchar_t* lParam1, long* status) {
    *status = g_MAPIObject.ReadContacts(lParam1);
}

// Procedures that are not served: each fails, with outputs that carry nothing.

void WriteContacts(wchar_t* /*xml*/, wchar_t* id, wchar_t* time, long* status) {
    ReturnNothing(id, time, status);
}

void WriteCalendars(wchar_t* /*xml*/, wchar_t* id, wchar_t* time, long* status) {
    ReturnNothing(id, time, status);
}

void ReadCalendars(wchar_t* /*ignored*/, wchar_t* /*lParam1*/, long* status) {
    *status = kStatusFailure;
}

void GetCalendarCount(long* count, long* status) {
    *count = 0;
    *status = kStatusFailure;
}
