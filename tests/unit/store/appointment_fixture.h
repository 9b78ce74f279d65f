#pragma once

// What the tests of reading appointments share.

#include <algorithm>
#include <utility>

#include <mapitags.h>

#include "localstore/recorder.h"
#include "tests/unit/calendar/recurrence_writer.h"
#include "tests/unit/store/store_fixture.h"

/// The named properties of an appointment, by number.
namespace lid {
constexpr LONG kLocation = 0x8208;
constexpr LONG kStartWhole = 0x820D;
constexpr LONG kEndWhole = 0x820E;
constexpr LONG kSubType = 0x8215;
constexpr LONG kRecur = 0x8216;
constexpr LONG kRecurring = 0x8223;
constexpr LONG kRecurrenceType = 0x8231;
constexpr LONG kTimeZoneStruct = 0x8233;
constexpr LONG kReminderDelta = 0x8501;
constexpr LONG kReminderSet = 0x8503;
constexpr LONG kReminderOverride = 0x851C;
constexpr LONG kReminderPlaySound = 0x851E;
}  // namespace lid

/// An appointment that is being made, with its properties set one by one.
class NewAppointment {
  public:
    NewAppointment(FolderWriter& writer, const wchar_t* subject)
        : m_message(writer.NewMessage(L"IPM.Appointment", PropertyValues().Text(PR_SUBJECT_W, subject))) {}
    explicit NewAppointment(ComPtr<IMessage> message) : m_message(std::move(message)) {}

    NewAppointment& Text(LONG id, const wchar_t* text) {
        return Set(PropertyValues().Text(Tag(id, PT_UNICODE), text));
    }
    NewAppointment& Boolean(LONG id, bool value) {
        return Set(PropertyValues().Boolean(Tag(id, PT_BOOLEAN), value));
    }
    NewAppointment& Number(LONG id, LONG number) {
        return Set(PropertyValues().Number(Tag(id, PT_LONG), number));
    }
    NewAppointment& Time(LONG id, WORD year, WORD month, WORD day, WORD hour, WORD minute) {
        return Set(PropertyValues().Time(Tag(id, PT_SYSTIME), year, month, day, hour, minute));
    }
    NewAppointment& Binary(LONG id, const std::vector<BYTE>& bytes) {
        return Set(PropertyValues().Binary(Tag(id, PT_BINARY), bytes));
    }
    NewAppointment& Body(const wchar_t* text) { return Set(PropertyValues().Text(PR_BODY_W, text)); }
    NewAppointment& Reminder(LONG minutes) {
        return Boolean(lid::kReminderSet, true).Number(lid::kReminderDelta, minutes);
    }
    NewAppointment& Series(LONG type, const std::vector<BYTE>& blob) {
        return Boolean(lid::kRecurring, true).Number(lid::kRecurrenceType, type).Binary(lid::kRecur, blob);
    }
    NewAppointment& Series(LONG type, const NAMESPACE_MAPI::tagRecurrencePattern& pattern) {
        return Series(type, RecurrenceBytes(pattern).Bytes());
    }
    [[nodiscard]] IMessage* Get() const { return m_message.Get(); }
    void Save() const { FolderWriter::Save(m_message.Get()); }

  private:
    NewAppointment& Set(const PropertyValues& values) {
        values.SetOn(m_message.Get());
        return *this;
    }
    [[nodiscard]] ULONG Tag(LONG id, ULONG type) const {
        return FolderWriter::AppointmentTag(m_message.Get(), id, type);
    }

    ComPtr<IMessage> m_message;
};

/// Elements below the root as documents show them, each on a line of its own.
using Elements = std::vector<std::pair<CString, CString>>;

inline CString TextOf(const Elements& elements) {
    CString text;
    for (const auto& [name, value] : elements) {
        text += L"\n\t<" + name + (value.empty() ? L"/>" : L">" + value + L"</" + name + L">");
    }
    return text;
}

/// A whole document of an appointment behind its declaration, with line feeds as they were put in.
inline CString CalendarOf(const Elements& elements) {
    return elements.empty() ? CString(L"<Calendar/>")
                            : CString(L"<Calendar>" + TextOf(elements) + L"</Calendar>");
}

/// What the platform calls the local time of a UTC time, as documents carry it.
inline CString LocalText(WORD year, WORD month, WORD day, WORD hour, WORD minute, WORD second = 0) {
    const SYSTEMTIME utc{year, month, 0, day, hour, minute, second, 0};
    SYSTEMTIME local{};
    SystemTimeToTzSpecificLocalTime(nullptr, &utc, &local);
    return CString::Format(L"%02d/%02d/%04d %02d:%02d:%02d", local.wMonth, local.wDay, local.wYear,
                           local.wHour, local.wMinute, local.wSecond);
}
