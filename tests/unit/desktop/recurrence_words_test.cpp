#include "desktop/recurrence_words.h"

#include <gtest/gtest.h>

namespace {

RecurrenceFields Series(const wchar_t* type, const wchar_t* interval) {
    RecurrenceFields fields;
    fields.type = type;
    fields.interval = interval;
    return fields;
}

RecurrenceFields Weekly(const wchar_t* interval, std::int32_t mask) {
    RecurrenceFields fields = Series(L"2", interval);
    fields.weekMask = mask;
    return fields;
}

RecurrenceFields OnDay(const wchar_t* type, const wchar_t* interval, std::int32_t day,
                       std::int32_t month = 0) {
    RecurrenceFields fields = Series(type, interval);
    fields.day = day;
    fields.month = month;
    return fields;
}

RecurrenceFields OnNth(const wchar_t* type, std::int32_t nth, std::int32_t mask, std::int32_t month = 0) {
    RecurrenceFields fields = Series(type, L"1");
    fields.instance = 1;
    fields.weekDay = nth;
    fields.weekMask = mask;
    fields.month = month;
    return fields;
}

TEST(RecurrenceWords, OfASingleAppointmentAreNone) {
    EXPECT_EQ(RecurrenceWords(RecurrenceFields()), L"");
}

TEST(RecurrenceWords, OfDays) {
    EXPECT_EQ(RecurrenceWords(Series(L"1", L"1")), L"every day");
    EXPECT_EQ(RecurrenceWords(Series(L"1", L"3")), L"every 3 days");
}

TEST(RecurrenceWords, OfWeeks) {
    EXPECT_EQ(RecurrenceWords(Weekly(L"1", 0x10)), L"every week on Thu");
    EXPECT_EQ(RecurrenceWords(Weekly(L"2", 0x0A)), L"every 2 weeks on Mon, Wed");
    EXPECT_EQ(RecurrenceWords(Weekly(L"1", 0x41)), L"every week on Sun, Sat");
    EXPECT_EQ(RecurrenceWords(Weekly(L"1", 0)), L"every week");
}

TEST(RecurrenceWords, OfEveryWeekdayHaveNoInterval) {
    EXPECT_EQ(RecurrenceWords(Weekly(L"0", 0x3E)), L"every weekday");
    EXPECT_EQ(RecurrenceWords(Weekly(L"0", 0x02)), L"every week on Mon");
}

TEST(RecurrenceWords, OfMonths) {
    EXPECT_EQ(RecurrenceWords(OnDay(L"3", L"1", 15)), L"every month on day 15");
    EXPECT_EQ(RecurrenceWords(OnDay(L"3", L"3", 31)), L"every 3 months on day 31");
    EXPECT_EQ(RecurrenceWords(OnNth(L"3", 2, 0x04)), L"every month on the second Tue");
    EXPECT_EQ(RecurrenceWords(OnNth(L"3", -1, 0x20)), L"every month on the last Fri");
    EXPECT_EQ(RecurrenceWords(OnNth(L"3", -1, 0x3E)), L"every month on the last weekday");
    EXPECT_EQ(RecurrenceWords(OnNth(L"3", 1, 0x41)), L"every month on the first weekend day");
    EXPECT_EQ(RecurrenceWords(OnNth(L"3", 4, 0x7F)), L"every month on the fourth day");
}

TEST(RecurrenceWords, OfYears) {
    EXPECT_EQ(RecurrenceWords(OnDay(L"4", L"1", 29, 2)), L"every year on day 29 of February");
    EXPECT_EQ(RecurrenceWords(OnDay(L"4", L"2", 1, 12)), L"every 2 years on day 1 of December");
    EXPECT_EQ(RecurrenceWords(OnNth(L"4", 3, 0x02, 1)), L"every year on the third Mon of January");
    EXPECT_EQ(RecurrenceWords(OnDay(L"4", L"1", 1, -1)), L"every year on day 1 of a month");
}

TEST(RecurrenceWords, TellTheEndAndTheExceptions) {
    RecurrenceFields fields = Weekly(L"2", 0x10);
    fields.end = L"2011-06-30";
    EXPECT_EQ(RecurrenceWords(fields), L"every 2 weeks on Thu until 2011-06-30");
    fields.exceptions =
        L"<exceptions>\r\n<deletion time = \"2011/03/10\"></deletion>\r\n"
        L"<deletion time = \"2011/03/24\"></deletion>\r\n</exceptions>";
    EXPECT_EQ(RecurrenceWords(fields), L"every 2 weeks on Thu until 2011-06-30, 2 deleted");
    fields.exceptions =
        L"<exceptions>\r\n<deletion time = \"2011/03/10\"></deletion>\r\n<modification time = "
        L"\"2011/04/07\">\r\n\t<subject>bQBvAGQAaQBmAGkAYwBhAHQAaQBvAG4A</subject>\r\n</modification>\r\n</"
        L"exceptions>";
    EXPECT_EQ(RecurrenceWords(fields), L"every 2 weeks on Thu until 2011-06-30, 1 deleted, 1 changed");
    fields.end.clear();
    EXPECT_EQ(RecurrenceWords(fields), L"every 2 weeks on Thu, 1 deleted, 1 changed");
}

TEST(RecurrenceWords, OfWhatCannotBeToldSaySo) {
    EXPECT_EQ(RecurrenceWords(Series(L"2", L"")), L"a series");
    EXPECT_EQ(RecurrenceWords(Series(L"7", L"1")), L"a series of an unknown kind");
    RecurrenceFields other = Series(L"3", L"");
    other.isOtherCalendar = true;
    EXPECT_EQ(RecurrenceWords(other), L"a series of another calendar");
}

}  // namespace
