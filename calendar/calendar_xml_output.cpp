#include "calendar/calendar_xml_output.h"

#include <mapitags.h>

#include "calendar/appointment_names.h"
#include "calendar/appointment_properties.h"
#include "calendar/recurrence_blob.h"
#include "calendar/recurrence_xml_output.h"
#include "calendar/zone_blob.h"
#include "mapi/property_tags.h"

namespace {

using NAMESPACE_COMMON::tagZebTimeZone;

constexpr SizedSPropTagArray(6, kColumns) = {6,
                                             {PR_ENTRYID, PR_LONGTERM_ENTRYID_FROM_TABLE, PR_CREATION_TIME,
                                              PR_LAST_MODIFICATION_TIME, PR_SUBJECT_W, PR_PRIORITY}};

bool IsTrue(IMessage* message, ULONG propertySet, LONG id) {
    std::int32_t value = 0;
    GetNamedBoolProperty(message, propertySet, id, value);
    return value != 0;
}

std::int32_t NumberOf(IMessage* message, ULONG propertySet, LONG id) {
    std::int32_t value = 0;
    GetNamedLongProperty(message, propertySet, id, value);
    return value;
}

CString TimeOf(IMessage* message, LONG id) {
    COleDateTime time;
    GetNamedDateProperty(message, PSETID_Appointment, id, time);
    return DateAndTimeText(time);
}

void AppendRowValue(CXMLParser& document, CString& id, const SPropValue& value) {
    if (TakeCommonRowValue(document, id, value)) {
        return;
    }
    switch (value.ulPropTag) {
        case PR_SUBJECT_W:
            AppendElement(document, L"Description", CString(value.Value.lpszW));
            return;
        case PR_PRIORITY:
            AppendElement(document, L"Priority", CString::FromNumber(value.Value.l));
            return;
        default:
            // An absent property comes as an error value, whose tag is none of these.
            return;
    }
}

void AppendTexts(CXMLParser& document, IMessage* message) {
    CString text;
    ReadLongTextProperty(message, PR_BODY_W, text);
    AppendElement(document, L"Body", text);
    GetNamedStringProperty(message, PSETID_Appointment, kPidLidLocation, text);
    AppendElement(document, L"Location", text);
}

void AppendTimes(CXMLParser& document, IMessage* message) {
    AppendElement(document, L"bAlldayEvent",
                  IsTrue(message, PSETID_Appointment, kPidLidAppointmentSubType) ? L"TRUE" : L"FALSE");
    AppendElement(document, L"dtStartTime", TimeOf(message, kPidLidAppointmentStartWhole));
    AppendElement(document, L"dtEndTime", TimeOf(message, kPidLidAppointmentEndWhole));
}

/// A reminder plays its sound unless it overrides the default and says not to.
bool HasRingTone(IMessage* message) {
    return !IsTrue(message, PSETID_Common, kPidLidReminderOverride) ||
           IsTrue(message, PSETID_Common, kPidLidReminderPlaySound);
}

/// The order of the two elements tells too whether there is a reminder; desktop programs expect both.
void AppendReminder(CXMLParser& document, IMessage* message) {
    if (IsTrue(message, PSETID_Common, kPidLidReminderSet)) {
        AppendElement(document, L"nRingTone", HasRingTone(message) ? L"1" : L"0");
        AppendElement(document, L"lReminderMinutes",
                      CString::FromNumber(NumberOf(message, PSETID_Common, kPidLidReminderDelta)));
    } else {
        AppendElement(document, L"lReminderMinutes", L"-1");
        AppendElement(document, L"nRingTone", L"0");
    }
}

void AppendPattern(CXMLParser& document, IMessage* message) {
    std::uint32_t count = 0;
    std::unique_ptr<std::uint8_t[]> bytes;
    GetNamedBinaryProperty(message, PSETID_Appointment, kPidLidAppointmentRecur, count, bytes);
    NAMESPACE_MAPI::tagRecurrencePattern pattern;
    if (ParseRecurrenceBlob(bytes.get(), count, pattern) != 0) {
        WriteRecurrenceElements(pattern, document);
    }
}

void AppendRecurrence(CXMLParser& document, IMessage* message) {
    if (!IsTrue(message, PSETID_Appointment, kPidLidRecurring)) {
        AppendElement(document, L"RecurType", L"0");
        return;
    }
    const std::int32_t type = NumberOf(message, PSETID_Appointment, kPidLidRecurrenceType);
    AppendElement(document, L"lRecurType", CString::FromNumber(type));
    if (type != 0) {
        AppendPattern(document, message);
    }
}

/// A property that is too short for a zone stands for one of zeros, and only an absent one for the fall-back.
void AppendTimeZone(CXMLParser& document, IMessage* message, const tagZebTimeZone& fallBack) {
    std::uint32_t count = 0;
    std::unique_ptr<std::uint8_t[]> bytes;
    tagZebTimeZone zone;
    const bool isThere =
        GetNamedBinaryProperty(message, PSETID_Appointment, kPidLidTimeZoneStruct, count, bytes) != 0;
    ParseTimeZoneBlob(bytes.get(), count, zone);
    AppendElement(document, L"TimeZone", FormatTimeZoneText(isThere ? zone : fallBack));
}

}  // namespace

const SPropTagArray* const kCalendarColumns = reinterpret_cast<const SPropTagArray*>(&kColumns);

void WriteCalendarRowFields(CString& id, CXMLParser& document, const SPropValue* values,
                            const ULONG* count) noexcept {
    if (values == nullptr) {
        return;
    }
    try {
        for (ULONG i = 0; i < *count; ++i) {
            AppendRowValue(document, id, values[i]);
        }
    } catch (...) {
        // The document goes on with what it holds so far.
    }
}

void WriteCalendarDetails(CXMLParser& document, IMessage* message, const tagZebTimeZone& zone) noexcept {
    if (message == nullptr) {
        return;
    }
    try {
        AppendTexts(document, message);
        AppendTimes(document, message);
        AppendReminder(document, message);
        AppendRecurrence(document, message);
        AppendTimeZone(document, message, zone);
    } catch (...) {
        // The document goes on with what it holds so far.
    }
}
