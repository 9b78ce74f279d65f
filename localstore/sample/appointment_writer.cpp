#include "localstore/sample/appointment_writer.h"

#include <mapitags.h>

#include "localstore/sample/message_properties.h"
#include "localstore/sample/sample_error.h"
#include "localstore/sample/sample_times.h"

namespace sample {

namespace {

// Numbers of names in PSETID_Appointment and PSETID_Common (MS-OXPROPS).
constexpr LONG kBusyStatus = 0x8205;
constexpr LONG kLocation = 0x8208;
constexpr LONG kStartWhole = 0x820D;
constexpr LONG kEndWhole = 0x820E;
constexpr LONG kDuration = 0x8213;
constexpr LONG kSubType = 0x8215;
constexpr LONG kRecur = 0x8216;
constexpr LONG kRecurring = 0x8223;
constexpr LONG kRecurrenceType = 0x8231;
constexpr LONG kTimeZoneStruct = 0x8233;
constexpr LONG kTimeZoneDescription = 0x8234;
constexpr LONG kReminderDelta = 0x8501;
constexpr LONG kReminderSet = 0x8503;
constexpr LONG kCommonStart = 0x8516;
constexpr LONG kCommonEnd = 0x8517;
constexpr LONG kReminderOverride = 0x851C;
constexpr LONG kReminderPlaySound = 0x851E;

constexpr LONG kBusy = 2;

constexpr ULONGLONG kFileTimesPerMinute = 600'000'000;

ULONGLONG CountOf(const FILETIME& time) {
    return ULONGLONG{time.dwHighDateTime} << 32 | time.dwLowDateTime;
}

FILETIME Later(const FILETIME& time, std::uint32_t minutes) {
    const ULONGLONG count = CountOf(time) + minutes * kFileTimesPerMinute;
    return {static_cast<DWORD>(count & 0xFFFFFFFF), static_cast<DWORD>(count >> 32)};
}

/// A rule that holds in every year, which is what its year of 0 says.
SYSTEMTIME RuleOf(const ZoneDate& date) {
    SYSTEMTIME rule{};
    rule.wMonth = date.month;
    rule.wDayOfWeek = date.weekday;
    rule.wDay = date.nth;
    rule.wHour = date.hour;
    return rule;
}

/// The zone in which the times of an appointment are meant. A mail program stores a whole day as midnight of
/// the machine that it runs on, and of no other zone. So whole days are of this machine's zone, and a read on
/// it finds them from midnight to midnight.
TIME_ZONE_INFORMATION ZoneOf(const SampleAppointment& item) {
    if (item.isWholeDay || item.zone == nullptr) {
        return MachineZone();
    }
    TIME_ZONE_INFORMATION zone{};
    zone.Bias = item.zone->bias;
    zone.DaylightBias = item.zone->daylightBias;
    zone.StandardDate = RuleOf(item.zone->standard);
    zone.DaylightDate = RuleOf(item.zone->daylight);
    return zone;
}

/// PidLidTimeZoneStruct (MS-OXOCAL 2.2.1.39).
std::vector<BYTE> ZoneBytes(const TIME_ZONE_INFORMATION& zone) {
    std::vector<BYTE> bytes;
    const auto add = [&bytes](ULONG number, int count) {
        for (int i = 0; i < count; ++i) {
            bytes.push_back(static_cast<BYTE>(number >> 8 * i & 0xFF));
        }
    };
    const auto addDate = [&add](const SYSTEMTIME& date) {
        // The year stands beside the date too.
        for (const WORD part : {date.wYear, date.wYear, date.wMonth, date.wDayOfWeek, date.wDay, date.wHour,
                                date.wMinute, date.wSecond, date.wMilliseconds}) {
            add(part, 2);
        }
    };
    add(static_cast<ULONG>(zone.Bias), 4);
    add(static_cast<ULONG>(zone.StandardBias), 4);
    add(static_cast<ULONG>(zone.DaylightBias), 4);
    addDate(zone.StandardDate);
    addDate(zone.DaylightDate);
    return bytes;
}

/// Collects the properties of one appointment.
class AppointmentProperties {
  public:
    AppointmentProperties(IMessage* message, const SampleAppointment& item, NamedTags& tags)
        : m_message(message), m_item(item), m_tags(tags), m_zone(ZoneOf(item)) {}

    void Set() {
        AddTexts();
        AddTimes();
        AddReminder();
        AddZone();
        AddSeries();
        m_properties.SetOn(m_message);
    }

  private:
    [[nodiscard]] ULONG Tag(LONG number, ULONG type) const {
        return m_tags.Tag(m_message, kAppointmentSet, number, type);
    }
    [[nodiscard]] ULONG CommonTag(LONG number, ULONG type) const {
        return m_tags.Tag(m_message, kCommonSet, number, type);
    }

    void AddTexts() {
        m_properties.Text(PR_MESSAGE_CLASS_W, L"IPM.Appointment");
        m_properties.Text(PR_SUBJECT_W, m_item.subject);
        m_properties.Text(PR_NORMALIZED_SUBJECT_W, m_item.subject);
        m_properties.Number(PR_PRIORITY, PRIO_NORMAL);
        m_properties.Number(PR_IMPORTANCE, IMPORTANCE_NORMAL);
        m_properties.Text(Tag(kLocation, PT_UNICODE), m_item.location);
        if (!m_item.body.empty()) {
            m_properties.Text(PR_BODY_W, m_item.body);
        }
    }

    void AddTimes() {
        const FILETIME start = LocalToUtc(TimeOf(m_item.start), m_zone);
        // The end is as many minutes of the clock later, also where the clock changes in between. The
        // duration is the time that passes.
        const FILETIME end = LocalToUtc(Later(TimeOf(m_item.start), m_item.minutes), m_zone);
        m_properties.Time(Tag(kStartWhole, PT_SYSTIME), start);
        m_properties.Time(Tag(kEndWhole, PT_SYSTIME), end);
        m_properties.Time(CommonTag(kCommonStart, PT_SYSTIME), start);
        m_properties.Time(CommonTag(kCommonEnd, PT_SYSTIME), end);
        m_properties.Number(Tag(kDuration, PT_LONG),
                            static_cast<LONG>((CountOf(end) - CountOf(start)) / kFileTimesPerMinute));
        m_properties.Flag(Tag(kSubType, PT_BOOLEAN), m_item.isWholeDay);
        m_properties.Number(Tag(kBusyStatus, PT_LONG), kBusy);
    }

    void AddReminder() {
        const bool isSet = m_item.reminder != kNoReminder;
        m_properties.Flag(CommonTag(kReminderSet, PT_BOOLEAN), isSet);
        if (isSet) {
            m_properties.Number(CommonTag(kReminderDelta, PT_LONG), m_item.reminder);
            m_properties.Flag(CommonTag(kReminderOverride, PT_BOOLEAN), m_item.isSilent);
            m_properties.Flag(CommonTag(kReminderPlaySound, PT_BOOLEAN), !m_item.isSilent);
        }
    }

    void AddZone() {
        if (!m_item.isWholeDay && m_item.zone == nullptr) {
            return;
        }
        m_properties.Bytes(Tag(kTimeZoneStruct, PT_BINARY), ZoneBytes(m_zone));
        m_properties.Text(Tag(kTimeZoneDescription, PT_UNICODE),
                          m_item.isWholeDay ? m_zone.StandardName : m_item.zone->name);
    }

    void AddSeries() {
        m_properties.Flag(Tag(kRecurring, PT_BOOLEAN), m_item.series.has_value());
        if (m_item.series) {
            m_properties.Number(Tag(kRecurrenceType, PT_LONG), RecurrenceType(m_item.series->kind));
            m_properties.Bytes(Tag(kRecur, PT_BINARY),
                               SeriesBytes(*m_item.series, m_item.start, m_item.minutes));
        }
    }

    IMessage* m_message;
    const SampleAppointment& m_item;
    NamedTags& m_tags;
    TIME_ZONE_INFORMATION m_zone;
    MessageProperties m_properties;
};

}  // namespace

void WriteAppointment(IMAPIFolder* folder, const SampleAppointment& appointment, NamedTags& tags) {
    ComPtr<IMessage> message;
    Require(folder->CreateMessage(nullptr, 0, message.GetAddressOf()), L"make a message");
    AppointmentProperties(message.Get(), appointment, tags).Set();
    Require(message->SaveChanges(0), L"save a message");
}

}  // namespace sample
