#include "localstore/sample/sample_appointments.h"

namespace sample {

namespace {

using enum SeriesKind;

constexpr SampleZone kBerlin = {
    L"(UTC+01:00) Amsterdam, Berlin, Bern, Rome, Stockholm, Vienna", -60, -60, {10, 0, 5, 3}, {3, 0, 5, 2}};
constexpr SampleZone kNewYork = {
    L"(UTC-05:00) Eastern Time (US & Canada)", 300, -60, {11, 0, 1, 2}, {3, 0, 2, 2}};
constexpr SampleZone kAdelaide = {L"(UTC+09:30) Adelaide", -570, -60, {4, 0, 1, 3}, {10, 0, 1, 2}};
constexpr SampleZone kTokyo = {L"(UTC+09:00) Osaka, Sapporo, Tokyo", -540, -60, {}, {}};
constexpr SampleZone kKolkata = {L"(UTC+05:30) Chennai, Kolkata, Mumbai, New Delhi", -330, 0, {}, {}};

constexpr std::uint32_t kDay = 1440;

/// Single appointments: on both sides of a change of the clocks, across one, of whole days, with and without
/// a reminder.
void AddSingle(std::vector<SampleAppointment>& items) {
    items.push_back({.subject = L"Dentist",
                     .location = L"Marktstraße 4",
                     .start = L"2026-01-14 08:15",
                     .minutes = 45,
                     .reminder = 90,
                     .zone = &kBerlin});
    items.push_back({.subject = L"プロジェクト会議",
                     .location = L"会議室 三",
                     .body = L"議題:\r\n- 予算\r\n- 日程",
                     .start = L"2026-07-08 13:30",
                     .minutes = 90,
                     .reminder = 15,
                     .zone = &kTokyo});
    items.push_back({.subject = L"Night shift over the change of clocks",
                     .location = L"Observatory",
                     .start = L"2026-03-28 22:00",
                     .minutes = 9 * 60,
                     .reminder = 0,
                     .zone = &kBerlin});
    items.push_back(
        {.subject = L"Fête nationale", .start = L"2026-07-14 00:00", .minutes = kDay, .isWholeDay = true});
    items.push_back({.subject = L"Trade fair <North & South>",
                     .location = L"Hall \"B\"",
                     .start = L"2026-10-24 00:00",
                     .minutes = 3 * kDay,
                     .isWholeDay = true,
                     .reminder = 1080});
    items.push_back({.subject = L"Call with the supplier",
                     .start = L"2026-05-06 16:00",
                     .minutes = 30,
                     .reminder = 5,
                     .isSilent = true,
                     .zone = &kKolkata});
    items.push_back({.subject = L"موعد", .location = L"القاهرة", .start = L"2026-06-01 10:00"});
}

/// Daily and weekly series.
void AddOftenRecurring(std::vector<SampleAppointment>& items) {
    items.push_back({.subject = L"Water the plants",
                     .start = L"2026-02-01 07:00",
                     .minutes = 15,
                     .reminder = 0,
                     .zone = &kBerlin,
                     .series = SampleSeries{.kind = Days, .every = 3, .until = L"2026-04-29", .times = 30}});
    items.push_back({.subject = L"Stand-up",
                     .location = L"Room 4",
                     .start = L"2026-03-02 09:00",
                     .minutes = 15,
                     .reminder = 5,
                     .zone = &kNewYork,
                     .series = SampleSeries{
                         .kind = Weekdays, .days = kWorkDays, .deleted = {L"2026-04-03", L"2026-04-06"}}});
    items.push_back({.subject = L"Backup tapes",
                     .start = L"2026-01-01 00:00",
                     .minutes = kDay,
                     .isWholeDay = true,
                     .series = SampleSeries{.kind = Days}});
    items.push_back(
        {.subject = L"Chorprobe",
         .location = L"Großer Saal",
         .body = L"Noten mitbringen.",
         .start = L"2026-01-08 19:30",
         .minutes = 120,
         .reminder = 60,
         .zone = &kBerlin,
         .series = SampleSeries{.kind = Weeks,
                                .every = 2,
                                .days = kThursday,
                                .until = L"2026-06-25",
                                .times = 13,
                                .deleted = {L"2026-01-22", L"2026-02-19", L"2026-04-02", L"2026-05-14"},
                                .changes = {{.day = L"2026-03-05",
                                             .moved = L"2026-03-06 18:00",
                                             .minutes = 150,
                                             .subject = L"Generalprobe",
                                             .location = L"Stadtkirche"}}}});
    items.push_back({.subject = L"Training",
                     .location = L"Gym",
                     .start = L"2026-03-02 18:00",
                     .zone = &kNewYork,
                     .series = SampleSeries{.kind = Weeks, .days = kMonday | kWednesday | kFriday}});
}

/// A series whose changed instances have each override alone, all of them and none.
void AddWithEachOverride(std::vector<SampleAppointment>& items) {
    items.push_back(
        {.subject = L"Review",
         .location = L"Room 4",
         .start = L"2026-03-03 10:00",
         .reminder = 15,
         .zone = &kBerlin,
         .series = SampleSeries{
             .kind = Weeks,
             .days = kTuesday,
             .until = L"2026-06-30",
             .times = 18,
             .changes = {
                 {.day = L"2026-03-10", .moved = L"2026-03-11 10:00", .minutes = 60},
                 {.day = L"2026-03-17",
                  .moved = L"2026-03-17 10:00",
                  .minutes = 60,
                  .subject = L"Review 予備"},
                 {.day = L"2026-03-24", .moved = L"2026-03-24 10:00", .minutes = 60, .location = L"Kantine"},
                 {.day = L"2026-03-31", .moved = L"2026-03-31 10:00", .minutes = 60, .meetingType = 1},
                 {.day = L"2026-04-07", .moved = L"2026-04-07 10:00", .minutes = 60, .reminderMinutes = 45},
                 {.day = L"2026-04-14", .moved = L"2026-04-14 10:00", .minutes = 60, .reminderSet = 0},
                 {.day = L"2026-04-21", .moved = L"2026-04-21 10:00", .minutes = 60, .busy = 1},
                 {.day = L"2026-04-28", .moved = L"2026-04-28 10:00", .minutes = 60, .attachment = 1},
                 {.day = L"2026-05-05", .moved = L"2026-05-05 00:00", .minutes = kDay, .wholeDay = 1},
                 {.day = L"2026-05-12", .moved = L"2026-05-12 10:00", .minutes = 60, .color = 3},
                 {.day = L"2026-05-19",
                  .moved = L"2026-05-20 14:00",
                  .minutes = 90,
                  .subject = L"Long review",
                  .location = L"Room 1",
                  .meetingType = 1,
                  .reminderMinutes = 30,
                  .reminderSet = 1,
                  .busy = 2,
                  .attachment = 0,
                  .wholeDay = 0,
                  .color = 5}}}});
}

/// Monthly and yearly series.
void AddSeldomRecurring(std::vector<SampleAppointment>& items) {
    items.push_back({.subject = L"Rent",
                     .start = L"2026-01-31 12:00",
                     .minutes = 5,
                     .reminder = 0,
                     .zone = &kBerlin,
                     .series = SampleSeries{.kind = DayOfMonth, .day = 31}});
    items.push_back({.subject = L"Invoice run",
                     .start = L"2026-01-15 08:00",
                     .minutes = 30,
                     .zone = &kAdelaide,
                     .series = SampleSeries{.kind = DayOfMonth,
                                            .every = 3,
                                            .day = 15,
                                            .until = L"2027-10-15",
                                            .times = 8,
                                            .deleted = {L"2026-07-15"}}});
    items.push_back({.subject = L"Book club",
                     .location = L"Library",
                     .start = L"2026-01-13 19:00",
                     .minutes = 120,
                     .reminder = 120,
                     .zone = &kNewYork,
                     .series = SampleSeries{.kind = NthOfMonth, .days = kTuesday, .nth = 2}});
    items.push_back(
        {.subject = L"Town hall meeting",
         .start = L"2026-01-30 15:00",
         .zone = &kAdelaide,
         .series = SampleSeries{
             .kind = NthOfMonth, .days = kFriday, .nth = kLastWeek, .until = L"2026-12-25", .times = 12}});
    items.push_back({.subject = L"Oma Geburtstag",
                     .start = L"2026-02-28 00:00",
                     .minutes = kDay,
                     .isWholeDay = true,
                     .reminder = 1080,
                     .series = SampleSeries{.kind = DayOfYear, .day = 28}});
    items.push_back({.subject = L"Election",
                     .start = L"2026-11-03 07:00",
                     .minutes = 12 * 60,
                     .zone = &kNewYork,
                     .series = SampleSeries{.kind = NthOfYear, .every = 2, .days = kTuesday, .nth = 1}});
    items.push_back({.subject = L"Leap day party",
                     .start = L"2024-02-29 20:00",
                     .minutes = 300,
                     .zone = &kBerlin,
                     .series = SampleSeries{
                         .kind = DayOfYear, .every = 4, .day = 29, .until = L"2040-02-29", .times = 5}});
    items.push_back({.subject = L"敬老の日",
                     .start = L"2026-09-21 00:00",
                     .minutes = kDay,
                     .isWholeDay = true,
                     .series = SampleSeries{.kind = NthOfYear, .days = kMonday, .nth = 3}});
}

}  // namespace

std::vector<SampleAppointment> SampleAppointments() {
    std::vector<SampleAppointment> items;
    AddSingle(items);
    AddOftenRecurring(items);
    AddWithEachOverride(items);
    AddSeldomRecurring(items);
    return items;
}

}  // namespace sample
