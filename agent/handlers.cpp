// The remote procedures of the command interface, each a thin step to the session object. The RPC runtime
// calls them on threads of its own.

#include <algorithm>
#include <cstddef>

#include "agent/callback_client.h"
#include "agent/shutdown.h"
#include "calendar/calendar_record.h"
#include "calendar/calendar_xml_input.h"
#include "command.h"
#include "contacts/contact_record.h"
#include "contacts/contact_xml_input.h"
#include "mapi/mapi_object.h"
#include "support/log.h"
#include "support/rpc_guard.h"
#include "support/xml_parser.h"

namespace {

using NAMESPACE_MAPI::CMAPIObject;

constexpr long kStatusSuccess = 0;
constexpr long kStatusFailure = 1;

/// Characters of a write's two outputs, terminator included.
constexpr std::size_t kIdUnits = 400;
constexpr std::size_t kTimeUnits = 40;
constexpr const wchar_t* kTimeFormat = L"%m/%d/%Y %H:%M:%S";

/// Copies a text to an output, cut to what it holds.
void CopyOut(const CString& text, wchar_t* output, std::size_t units) {
    const std::size_t length = std::min(text.size(), units - 1);
    std::copy_n(text.begin(), length, output);
    output[length] = L'\0';
}

/// The three outputs of a write.
struct WriteOutputs {
    wchar_t* id;
    wchar_t* time;
    long* status;
};

/// Writes the item of a document as a record: by a function that reads the document and a member of the
/// session that writes the record. Returns 0, or the status of a callback that failed.
template<class Record, class Parse, class Write>
RPC_STATUS WriteItem(Parse parse, Write write, const wchar_t* xml, const WriteOutputs& outputs) {
    *outputs.id = L'\0';
    *outputs.time = L'\0';
    *outputs.status = kStatusFailure;
    try {
        const ComApartmentHold apartment;
        Record record;
        parse(CString(xml), record);
        *outputs.status = (g_MAPIObject.*write)(&record);
        CopyOut(record.m_strPIMID, outputs.id, kIdUnits);
        CopyOut(record.m_dtLastModified.Format(kTimeFormat), outputs.time, kTimeUnits);
    } catch (const RpcFailure& failure) {
        return static_cast<RPC_STATUS>(failure.Status());
    } catch (...) {
        // Without memory for the record there is nothing to write; the outputs say so.
        *outputs.status = kStatusFailure;
    }
    return RPC_S_OK;
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

void GetCalendarCount(long* count, long* status) {
    *count = g_MAPIObject.GetCalendarCount();
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

void ReadCalendars(wchar_t* /*ignored*/, wchar_t* lParam1, long* status) {
    *status = g_MAPIObject.ReadCalendars(lParam1);
}

void WriteContacts(wchar_t* xml, wchar_t* id, wchar_t* time, long* status) {
    WriteItem<CContactEx>(&ParseContactXml, &CMAPIObject::WriteContacts, xml, {id, time, status});
}

void WriteCalendars(wchar_t* xml, wchar_t* id, wchar_t* time, long* status) {
    const RPC_STATUS failure =
        WriteItem<CCalendarEx>(&ParseCalendarXml, &CMAPIObject::WriteCalendars, xml, {id, time, status});
    if (failure != RPC_S_OK) {
        // The call fails with what its callback failed with, as it would if nothing stood in between.
        RpcRaiseException(failure);
    }
}
