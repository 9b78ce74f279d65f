#pragma once

// What the tests of writing appointments share.

#include <mapitags.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <vector>

#include "calendar/calendar_record.h"
#include "localstore/recorder.h"
#include "mapi/named_properties.h"
#include "mapi/store_entries.h"
#include "tests/unit/store/store_fixture.h"
#include "tests/unit/timezone/date_helpers.h"

/// A record that is being filled and written, in the zones of a machine that has three of them.
class CalendarWriting : public StoreTest {
  protected:
    void SetUp() override {
        StoreTest::SetUp();
        LogOn();
        g_MAPIObject.m_CurrentTimeZone = Zone(L"The machine's", -60, 0);
        g_MAPIObject.m_arrTimeZones.RemoveAll();
        g_MAPIObject.m_arrTimeZones.Add(Zone(L"First", 300, -60));
        g_MAPIObject.m_arrTimeZones.Add(Zone(L"Second", 300, -60));
        g_MAPIObject.m_arrTimeZones.Add(Zone(L"Third", -330, 0));
    }
    void TearDown() override {
        g_MAPIObject.m_arrTimeZones.RemoveAll();
        StoreTest::TearDown();
    }

    /// A zone with a rule for daylight time if it has such a bias.
    static NAMESPACE_COMMON::tagZebTimeZone Zone(const wchar_t* display, std::int32_t bias,
                                                 std::int32_t daylightBias) {
        NAMESPACE_COMMON::tagZebTimeZone zone;
        zone.Display = display;
        zone.Bias = bias;
        zone.DaylightBias = daylightBias;
        if (daylightBias != 0) {
            zone.StandardDate = {0, 11, 0, 1, 2, 0, 0, 0};
            zone.DaylightDate = {0, 3, 0, 2, 2, 0, 0, 0};
        }
        return zone;
    }

    /// Empties the record but for its identifier and gives it a flag, the kind that is written, and times.
    void Fill(std::int32_t flag) {
        const CString id = m_calendar.m_strPIMID;
        m_calendar.Reset();
        m_calendar.m_strPIMID = id;
        m_calendar.m_lFlag = flag;
        m_calendar.m_lCalType = 3;
        m_calendar.m_dtStartTime = Date(2026, 3, 10, 9, 30);
        m_calendar.m_dtEndTime = Date(2026, 3, 10, 10, 15);
        m_calendar.m_lReminderMinutes = -1;
    }
    /// Fills the record, lets a test change it, and writes it; its identifier stays for the next write.
    void Write(std::int32_t flag, const std::function<void(CCalendarEx&)>& change = {}) {
        Fill(flag);
        if (change) {
            change(m_calendar);
        }
        EXPECT_EQ(g_MAPIObject.WriteCalendars(&m_calendar), 0);
    }
    /// The lines of one write around those of its operation.
    static LogLines Lines(const std::vector<const wchar_t*>& operation) {
        LogLines lines{{1, L"CMAPIObject::WriteCalendars - Begin\r\n"}};
        for (const wchar_t* const line : operation) {
            lines.push_back({1, CString::Format(L"CMAPIObject::%s\r\n", line)});
        }
        lines.push_back({1, L"CMAPIObject::WriteCalendars - Finish\r\n"});
        return lines;
    }
    /// The message of the record; null if it is not there.
    [[nodiscard]] ComPtr<IMessage> Message() const {
        return OpenMessageByHexId(g_MAPIObject.m_lpEventFolder.Get(), m_calendar.m_strPIMID);
    }
    /// A property of the message, empty if it is not there: by its tag, or by its number and type.
    [[nodiscard]] MapiBuffer<SPropValue> Property(ULONG tag) const {
        const ComPtr<IMessage> message = Message();
        return message ? GetProperty(message.Get(), tag) : MapiBuffer<SPropValue>();
    }
    [[nodiscard]] MapiBuffer<SPropValue> Named(LONG id, ULONG type) const {
        const ComPtr<IMessage> message = Message();
        return message ? GetProperty(message.Get(), FolderWriter::AppointmentTag(message.Get(), id, type))
                       : MapiBuffer<SPropValue>();
    }
    /// Single values, and what stands for one that is not there.
    static constexpr int kNone = -1234567;
    static CString TextOf(const MapiBuffer<SPropValue>& value) {
        return value ? CString(value->Value.lpszW) : CString(L"(none)");
    }
    [[nodiscard]] CString Text(ULONG tag) const { return TextOf(Property(tag)); }
    [[nodiscard]] CString NamedText(LONG id) const { return TextOf(Named(id, PT_UNICODE)); }
    [[nodiscard]] int Number(ULONG tag) const {
        const MapiBuffer<SPropValue> value = Property(tag);
        return value ? value->Value.l : kNone;
    }
    [[nodiscard]] int NamedNumber(LONG id) const {
        const MapiBuffer<SPropValue> value = Named(id, PT_LONG);
        return value ? value->Value.l : kNone;
    }
    [[nodiscard]] int Flag(LONG id) const {
        const MapiBuffer<SPropValue> value = Named(id, PT_BOOLEAN);
        return value ? value->Value.b : kNone;
    }
    [[nodiscard]] std::vector<std::uint8_t> Bytes(LONG id) const {
        const MapiBuffer<SPropValue> value = Named(id, PT_BINARY);
        return value ? std::vector<std::uint8_t>(value->Value.bin.lpb,
                                                 value->Value.bin.lpb + value->Value.bin.cb)
                     : std::vector<std::uint8_t>();
    }
    /// A time of the message as UTC text; empty if it is not there.
    [[nodiscard]] CString UtcOf(LONG id) const {
        const MapiBuffer<SPropValue> value = Named(id, PT_SYSTIME);
        SYSTEMTIME fields{};
        return value && FileTimeToSystemTime(&value->Value.ft, &fields) != FALSE ? ::Text(fields) : CString();
    }
    /// The same as the platform shows it in local time.
    [[nodiscard]] CString LocalOf(LONG id) const { return LocalText(Named(id, PT_SYSTIME)); }
    /// When the message was changed last, in local time.
    [[nodiscard]] CString TimeOfChange() const { return LocalText(Property(PR_LAST_MODIFICATION_TIME)); }
    static CString LocalText(const MapiBuffer<SPropValue>& value) {
        SYSTEMTIME utc{};
        SYSTEMTIME local{};
        return value && FileTimeToSystemTime(&value->Value.ft, &utc) != FALSE &&
                       SystemTimeToTzSpecificLocalTime(nullptr, &utc, &local) != FALSE
                   ? ::Text(local)
                   : CString();
    }
    /// The number of messages that lie in a folder, which need not count as appointments.
    [[nodiscard]] std::size_t Files(const std::wstring& folder = L"Calendar") const {
        const std::filesystem::directory_iterator entries(m_root + L"\\Work\\Mail\\" + folder);
        return static_cast<std::size_t>(std::count_if(begin(entries), end(entries), [](const auto& entry) {
            return entry.path().extension() == L".msg";
        }));
    }

    CCalendarEx m_calendar;
};
