#include "calendar/calendar_xml_input.h"

#include <cwchar>

#include "mapi/item_document.h"
#include "support/number_text.h"
#include "support/xml_parser.h"

namespace {

template<std::int32_t CCalendarEx::*Member>
void TakeNumber(CCalendarEx& calendar, const CString& text) {
    calendar.*Member = ReadNumber(text);
}

template<std::int32_t CCalendarEx::*Member>
void TakeYesNo(CCalendarEx& calendar, const CString& text) {
    calendar.*Member = text == L"TRUE" ? 1 : 0;
}

template<CString CCalendarEx::*Member>
void TakeText(CCalendarEx& calendar, const CString& text) {
    calendar.*Member = text;
}

template<std::int32_t FieldId>
void TakeEntry(CCalendarEx& calendar, const CString& text) {
    calendar.AddField(FieldId, text);
}

/// Of a date that does not exist only the status is taken, because platforms differ in what they make of its
/// value.
template<COleDateTime CCalendarEx::*Member>
void TakeDate(CCalendarEx& calendar, const CString& text) {
    int month = 0;
    int day = 0;
    int year = 0;
    int hour = 0;
    int minute = 0;
    int second = 0;
    // A field that the text does not hold stays 0.
    static_cast<void>(std::swscanf(text.c_str(), L"%02d/%02d/%04d %02d:%02d:%02d", &month, &day, &year, &hour,
                                   &minute, &second));
    COleDateTime date;
    date.SetDateTime(static_cast<WORD>(year), static_cast<WORD>(month), static_cast<WORD>(day),
                     static_cast<WORD>(hour), static_cast<WORD>(minute), static_cast<WORD>(second));
    (calendar.*Member).m_status = date.m_status;
    if (date.m_status == kDateValid) {
        (calendar.*Member).m_dt = date.m_dt;
    }
}

/// An element that a document can bring, and what becomes of its text.
struct InputElement {
    const wchar_t* name;
    void (*take)(CCalendarEx& calendar, const CString& text);
};

/// The elements in the order in which they are looked for. What the texts become decides the order of the
/// record's entries.
constexpr InputElement kInputElements[] = {
    {L"lFlag", TakeNumber<&CCalendarEx::m_lFlag>},
    {L"PIMID", TakeText<&CCalendarEx::m_strPIMID>},
    {L"CsFolder", TakeText<&CCalendarEx::m_strCsFolder>},
    {L"Priority", TakeNumber<&CCalendarEx::m_nPriority>},
    {L"Description", TakeEntry<kSubjectField>},
    {L"Location", TakeEntry<kLocationField>},
    {L"Body", TakeEntry<kBodyField>},
    {L"bAlldayEvent", TakeYesNo<&CCalendarEx::m_bAlldayEvent>},
    {L"dtStartTime", TakeDate<&CCalendarEx::m_dtStartTime>},
    {L"dtEndTime", TakeDate<&CCalendarEx::m_dtEndTime>},
    {L"nRingTone", TakeNumber<&CCalendarEx::m_nRingTone>},
    {L"lReminderMinutes", TakeNumber<&CCalendarEx::m_lReminderMinutes>},
    {L"lRecurType", TakeNumber<&CCalendarEx::m_lRecurType>},
    {L"TimeZone", TakeEntry<kTimeZoneField>},
    {L"lCalType", TakeNumber<&CCalendarEx::m_lCalType>},
    {L"lRecurInterval", TakeNumber<&CCalendarEx::m_lRecurInterval>},
    {L"lRecurMonth", TakeNumber<&CCalendarEx::m_lRecurMonth>},
    {L"lRecurInstance", TakeNumber<&CCalendarEx::m_lRecurInstance>},
    {L"lRecurWeekMask", TakeNumber<&CCalendarEx::m_lRecurWeekMask>},
    {L"lRecurWeekDay", TakeNumber<&CCalendarEx::m_lRecurWeekDay>},
    {L"lRecurDay", TakeNumber<&CCalendarEx::m_lRecurDay>},
    {L"lRecurRepeat", TakeNumber<&CCalendarEx::m_lRecurRepeat>},
    {L"bRecurHasEndDate", TakeYesNo<&CCalendarEx::m_bRecurHasEndDate>},
    {L"dtRecurEndDate", TakeDate<&CCalendarEx::m_dtRecurEndDate>},
    {L"ExceptionRule", TakeEntry<kExceptionRuleField>},
};

/// COM stays initialised for the whole reading, and is afterwards what it was before.
void ReadCalendar(const CString& xml, CCalendarEx& calendar) {
    const ComInitialization com;
    CXMLParser document;
    if (!document.InitDocument()) {
        return;
    }
    document.LoadText(xml);
    for (const InputElement& element : kInputElements) {
        CString text;
        if (ReadElement(document, L"Calendar", element.name, text)) {
            element.take(calendar, text);
        }
    }
}

}  // namespace

int ParseCalendarXml(const CString& xml, CCalendarEx& calendar) {
    try {
        ReadCalendar(xml, calendar);
    } catch (...) {
        // What has been found so far stands, and the write goes on with it.
    }
    return 1;
}
