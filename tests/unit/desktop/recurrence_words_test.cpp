#include "desktop/recurrence_words.h"

#include <gtest/gtest.h>

#include "tests/unit/text_printer.h"

namespace {

RecurrenceFields Series(const wide* type, const wide* interval) {
    RecurrenceFields fields;
    fields.type = type;
    fields.interval = interval;
    return fields;
}

RecurrenceFields Weekly(const wide* interval, std::int32_t mask) {
    RecurrenceFields fields = Series(WIDE("2"), interval);
    fields.weekMask = mask;
    return fields;
}

RecurrenceFields OnDay(const wide* type, const wide* interval, std::int32_t day, std::int32_t month = 0) {
    RecurrenceFields fields = Series(type, interval);
    fields.day = day;
    fields.month = month;
    return fields;
}

RecurrenceFields OnNth(const wide* type, std::int32_t nth, std::int32_t mask, std::int32_t month = 0) {
    RecurrenceFields fields = Series(type, WIDE("1"));
    fields.instance = 1;
    fields.weekDay = nth;
    fields.weekMask = mask;
    fields.month = month;
    return fields;
}

TEST(RecurrenceWords, OfASingleAppointmentAreNone) {
    EXPECT_EQ(RecurrenceWords(RecurrenceFields()), WIDE(""));
}

TEST(RecurrenceWords, OfDays) {
    EXPECT_EQ(RecurrenceWords(Series(WIDE("1"), WIDE("1"))), WIDE("every day"));
    EXPECT_EQ(RecurrenceWords(Series(WIDE("1"), WIDE("3"))), WIDE("every 3 days"));
}

TEST(RecurrenceWords, OfWeeks) {
    EXPECT_EQ(RecurrenceWords(Weekly(WIDE("1"), 0x10)), WIDE("every week on Thu"));
    EXPECT_EQ(RecurrenceWords(Weekly(WIDE("2"), 0x0A)), WIDE("every 2 weeks on Mon, Wed"));
    EXPECT_EQ(RecurrenceWords(Weekly(WIDE("1"), 0x41)), WIDE("every week on Sun, Sat"));
    EXPECT_EQ(RecurrenceWords(Weekly(WIDE("1"), 0)), WIDE("every week"));
}

TEST(RecurrenceWords, OfEveryWeekdayHaveNoInterval) {
    EXPECT_EQ(RecurrenceWords(Weekly(WIDE("0"), 0x3E)), WIDE("every weekday"));
    EXPECT_EQ(RecurrenceWords(Weekly(WIDE("0"), 0x02)), WIDE("every week on Mon"));
}

TEST(RecurrenceWords, OfMonths) {
    EXPECT_EQ(RecurrenceWords(OnDay(WIDE("3"), WIDE("1"), 15)), WIDE("every month on day 15"));
    EXPECT_EQ(RecurrenceWords(OnDay(WIDE("3"), WIDE("3"), 31)), WIDE("every 3 months on day 31"));
    EXPECT_EQ(RecurrenceWords(OnNth(WIDE("3"), 2, 0x04)), WIDE("every month on the second Tue"));
    EXPECT_EQ(RecurrenceWords(OnNth(WIDE("3"), -1, 0x20)), WIDE("every month on the last Fri"));
    EXPECT_EQ(RecurrenceWords(OnNth(WIDE("3"), -1, 0x3E)), WIDE("every month on the last weekday"));
    EXPECT_EQ(RecurrenceWords(OnNth(WIDE("3"), 1, 0x41)), WIDE("every month on the first weekend day"));
    EXPECT_EQ(RecurrenceWords(OnNth(WIDE("3"), 4, 0x7F)), WIDE("every month on the fourth day"));
}

TEST(RecurrenceWords, OfYears) {
    EXPECT_EQ(RecurrenceWords(OnDay(WIDE("4"), WIDE("1"), 29, 2)), WIDE("every year on day 29 of February"));
    EXPECT_EQ(RecurrenceWords(OnDay(WIDE("4"), WIDE("2"), 1, 12)),
              WIDE("every 2 years on day 1 of December"));
    EXPECT_EQ(RecurrenceWords(OnNth(WIDE("4"), 3, 0x02, 1)), WIDE("every year on the third Mon of January"));
    EXPECT_EQ(RecurrenceWords(OnDay(WIDE("4"), WIDE("1"), 1, -1)), WIDE("every year on day 1 of a month"));
}

TEST(RecurrenceWords, TellTheEndAndTheExceptions) {
    RecurrenceFields fields = Weekly(WIDE("2"), 0x10);
    fields.end = WIDE("2011-06-30");
    EXPECT_EQ(RecurrenceWords(fields), WIDE("every 2 weeks on Thu until 2011-06-30"));
    fields.exceptions = WIDE("<exceptions>\r\n<deletion time = \"2011/03/10\"></deletion>\r\n")
        WIDE("<deletion time = \"2011/03/24\"></deletion>\r\n</exceptions>");
    EXPECT_EQ(RecurrenceWords(fields), WIDE("every 2 weeks on Thu until 2011-06-30, 2 deleted"));
    fields.exceptions =
        WIDE("<exceptions>\r\n<deletion time = \"2011/03/10\"></deletion>\r\n<modification time = ") WIDE(
            "\"2011/04/07\">\r\n\t<subject>bQBvAGQAaQBmAGkAYwBhAHQAaQBvAG4A</subject>\r\n</"
            "modification>\r\n</") WIDE("exceptions>");
    EXPECT_EQ(RecurrenceWords(fields), WIDE("every 2 weeks on Thu until 2011-06-30, 1 deleted, 1 changed"));
    fields.end.clear();
    EXPECT_EQ(RecurrenceWords(fields), WIDE("every 2 weeks on Thu, 1 deleted, 1 changed"));
}

TEST(RecurrenceWords, OfWhatCannotBeToldSaySo) {
    EXPECT_EQ(RecurrenceWords(Series(WIDE("2"), WIDE(""))), WIDE("a series"));
    EXPECT_EQ(RecurrenceWords(Series(WIDE("7"), WIDE("1"))), WIDE("a series of an unknown kind"));
    RecurrenceFields other = Series(WIDE("3"), WIDE(""));
    other.isOtherCalendar = true;
    EXPECT_EQ(RecurrenceWords(other), WIDE("a series of another calendar"));
}

}  // namespace
