#include "desktop/calendar_row.h"

#include <gtest/gtest.h>

namespace {

TextTable::Row RowOf(const wchar_t* xml) {
    ItemDocument document(L"Calendar", xml);
    return CalendarRow(document);
}

TEST(CalendarRow, OfASeriesTellsTimesTextsAndTheSeriesInWords) {
    const TextTable::Row row = RowOf(
        L"<?xml version='1.0' encoding='utf-8'?><Calendar><CsFolder>Calendar\\Team</CsFolder>"
        L"<Description>Review</Description><Location>Room 4</Location><bAlldayEvent>FALSE</bAlldayEvent>"
        L"<dtStartTime>03/10/2011 09:00:00</dtStartTime><dtEndTime>03/10/2011 10:30:00</dtEndTime>"
        L"<lRecurType>2</lRecurType><lRecurInterval>2</lRecurInterval><lRecurInstance>0</lRecurInstance>"
        L"<lRecurWeekMask>16</lRecurWeekMask><lRecurWeekDay>0</lRecurWeekDay><lRecurDay>0</lRecurDay>"
        L"<dtRecurEndDate>06/30/2011 00:00:00</dtRecurEndDate>"
        L"<ExceptionRule>&lt;exceptions&gt;&lt;deletion time = \"2011/03/24\"&gt;&lt;/deletion&gt;"
        L"&lt;modification time = \"2011/04/07\"&gt;&lt;/modification&gt;&lt;/exceptions&gt;</ExceptionRule>"
        L"<lCalType>3</lCalType></Calendar>");
    EXPECT_EQ(row, (TextTable::Row{L"2011-03-10 09:00", L"2011-03-10 10:30", L"Review", L"Room 4",
                                   L"every 2 weeks on Thu until 2011-06-30, 1 deleted, 1 changed",
                                   L"Calendar\\Team"}));
    EXPECT_EQ(row.size(), CalendarHeadings().size());
}

TEST(CalendarRow, OfWholeDaysHasNoTimes) {
    const TextTable::Row row = RowOf(
        L"<Calendar><bAlldayEvent>TRUE</bAlldayEvent><dtStartTime>03/10/2011 00:00:00</dtStartTime>"
        L"<dtEndTime>03/11/2011 00:00:00</dtEndTime><RecurType>0</RecurType></Calendar>");
    EXPECT_EQ(row[0], L"2011-03-10");
    EXPECT_EQ(row[1], L"2011-03-11");
    EXPECT_EQ(row[4], L"");
}

TEST(CalendarRow, OfAnAppointmentWithoutTimesHasNone) {
    const TextTable::Row row = RowOf(
        L"<Calendar><dtStartTime>12/30/1899 00:00:00</dtStartTime><dtEndTime>Invalid DateTime</dtEndTime>"
        L"</Calendar>");
    EXPECT_EQ(row[0], L"");
    EXPECT_EQ(row[1], L"");
}

TEST(CalendarRow, OfASeriesThatNeverEndsNamesNoDay) {
    EXPECT_EQ(RowOf(L"<Calendar><lRecurType>1</lRecurType><lRecurInterval>1</lRecurInterval>"
                    L"<dtRecurEndDate>NULL</dtRecurEndDate></Calendar>")[4],
              L"every day");
}

TEST(CalendarRow, OfAnotherCalendarSaysSo) {
    EXPECT_EQ(RowOf(L"<Calendar><lRecurType>3</lRecurType><lCalType>-1</lCalType><lCalType>3</lCalType>"
                    L"</Calendar>")[4],
              L"a series of another calendar");
}

}  // namespace
