#include "calendar/calendar_sending.h"

#include "mapi/send_back.h"

const ItemKind kCalendarItems{L"IPM.Appointment", L"IPF.Appointment", L"m_lpEventFolder"};

void BeginCalendarDocument(CXMLParser& document) {
    BeginItemDocument(document, L"Calendar");
}

void AppendCalendarKind(CXMLParser& document) {
    AppendElement(document, L"lCalType", L"3");
}

bool CloseCalendarDocument(CXMLParser& document) {
    // No document has a root of this name. With the right one, series of other calendars would not be sent.
    if (document.SelectSingleNode(L"/Calnedar/lCalType")) {
        return false;
    }
    AppendCalendarKind(document);
    return true;
}

void SendCalendar(const CString& xml) {
    SendItem(xml, &SendBackOneCalendar, L"MAPISendBackOneCalenda Excetipion");
}
