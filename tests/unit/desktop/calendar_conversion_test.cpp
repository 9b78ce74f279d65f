// An appointment's document that was read becomes one that can be written.

#include <gmock/gmock.h>

#include "desktop/calendar_conversion.h"
#include "desktop/conversion.h"
#include "desktop/failure.h"
#include "desktop/item_document.h"
#include "desktop/machine_zone.h"

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

constexpr const wchar_t* kSingle = L"<RecurType>0</RecurType>";
constexpr const wchar_t* kWeekly =
    L"<lRecurType>2</lRecurType><lRecurInterval>2</lRecurInterval><lRecurInstance>0</lRecurInstance>"
    L"<lRecurWeekMask>10</lRecurWeekMask><lRecurWeekDay>0</lRecurWeekDay><lRecurDay>0</lRecurDay>";
/// A zone that no machine is in.
constexpr const wchar_t* kOtherZone = L"GMT:+301;DST:60;STD:0000110102000000;DLT:0000030202000000";
constexpr const wchar_t* kNever =
    L"<dtRecurEndDate>NULL</dtRecurEndDate><bRecurHasEndDate>FALSE</bRecurHasEndDate>"
    L"<lRecurRepeat>0</lRecurRepeat>";

/// A document of a read with the given elements, some of which tell of its series, in this machine's zone or
/// in that of `zone`.
CString Read(const CString& elements, const CString& zone = MachineZoneText()) {
    return L"<Calendar><CsFolder>Calendar</CsFolder>" + elements + L"<TimeZone>" + zone +
           L"</TimeZone><lCalType>3</lCalType></Calendar>";
}

CString Series(const CString& end, const CString& more = CString()) {
    return Read(CString(kWeekly) + end + more);
}

CString Converted(const CString& text, bool asNew = false) {
    return ConvertDocument(text.View(), asNew).document;
}

/// The text of an element of the converted document.
CString Element(const CString& text, const wchar_t* name, bool asNew = false) {
    const CString converted = Converted(text, asNew);
    return ItemDocument(L"Calendar", converted.View()).Field(name);
}

std::vector<CString> LossesOf(const CString& text) {
    return ConvertDocument(text.View(), false).losses;
}

void ExpectRefused(const CString& text, const wchar_t* reason, bool asNew = false) {
    try {
        Converted(text, asNew);
        FAIL() << "it was converted";
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.Code(), ExitCode::kDocumentRefused);
        EXPECT_THAT(failure.Message(), HasSubstr(reason));
    }
}

TEST(ConvertCalendar, MakesAChangeOfTheSameAppointment) {
    const CString read = Read(L"<lFlag>8</lFlag><PIMID>00AB</PIMID>" + CString(kSingle));
    EXPECT_EQ(Element(read, L"lFlag"), L"4");
    EXPECT_EQ(Element(read, L"PIMID"), L"00AB");
    EXPECT_EQ(Element(read, L"CsFolder"), L"Calendar");
}

TEST(ConvertCalendar, MakesANewAppointmentWithoutTheIdentifier) {
    const CString read = Read(L"<PIMID>00AB</PIMID><Description>Review</Description>" + CString(kSingle));
    EXPECT_EQ(Element(read, L"lFlag", true), L"8");
    EXPECT_EQ(Element(read, L"Description", true), L"Review");
    EXPECT_THAT(Converted(read, true), Not(HasSubstr(L"PIMID")));
}

TEST(ConvertCalendar, HandsOnWhatIsCalledTheSame) {
    CString elements(kSingle);
    const wchar_t* const names[] = {L"Description", L"Priority",  L"Body",      L"Location",
                                    L"dtStartTime", L"dtEndTime", L"nRingTone", L"lReminderMinutes"};
    for (const wchar_t* name : names) {
        elements += L"<" + CString(name) + L">of " + name + L"</" + name + L">";
    }
    const CString read = Read(elements);
    for (const wchar_t* name : names) {
        EXPECT_EQ(Element(read, name), L"of " + CString(name));
    }
}

TEST(ConvertCalendar, SaysThatItIsAnAppointment) {
    EXPECT_EQ(Element(Read(kSingle), L"lCalType"), L"3");
    EXPECT_EQ(Element(Series(kNever), L"lCalType"), L"3");
}

TEST(ConvertCalendar, DropsTimesAndTheZoneOfThisMachine) {
    const CString converted = Converted(
        Read(L"<CreateTime>1</CreateTime><lastModifiedTime>2</lastModifiedTime>" + CString(kSingle)));
    for (const wchar_t* text : {L"CreateTime", L"lastModifiedTime", L"TimeZone"}) {
        EXPECT_THAT(converted, Not(HasSubstr(text)));
    }
}

TEST(ConvertCalendar, NamesAnotherZoneByItsNumbersUnlessItIsASeries) {
    EXPECT_EQ(Element(Read(kSingle, kOtherZone), L"TimeZone"), L"GMT:+301;DST:60");
    EXPECT_EQ(Element(Read(CString(kWeekly) + kNever, kOtherZone), L"TimeZone"), L"");
}

TEST(ConvertCalendar, TellsNothingOfASeriesForASingleAppointment) {
    EXPECT_THAT(Converted(Read(kSingle)), Not(HasSubstr(L"Recur")));
}

TEST(ConvertCalendar, HandsOnHowASeriesRecurs) {
    const CString read = Read(
        L"<lRecurType>4</lRecurType><lRecurMonth>11</lRecurMonth><lRecurInterval>2</lRecurInterval>"
        L"<lRecurInstance>1</lRecurInstance><lRecurWeekMask>4</lRecurWeekMask>"
        L"<lRecurWeekDay>-1</lRecurWeekDay><lRecurDay>7</lRecurDay>" +
        CString(kNever));
    EXPECT_EQ(Element(read, L"lRecurType"), L"4");
    EXPECT_EQ(Element(read, L"lRecurMonth"), L"11");
    EXPECT_EQ(Element(read, L"lRecurInterval"), L"2");
    EXPECT_EQ(Element(read, L"lRecurInstance"), L"1");
    EXPECT_EQ(Element(read, L"lRecurWeekMask"), L"4");
    EXPECT_EQ(Element(read, L"lRecurWeekDay"), L"-1");
    EXPECT_EQ(Element(read, L"lRecurDay"), L"7");
}

TEST(ConvertCalendar, KeepsTheIntervalOfASeriesOnWeekdays) {
    const auto interval = [](const wchar_t* mask) {
        return Element(Read(L"<lRecurType>2</lRecurType><lRecurInterval>0</lRecurInterval><lRecurWeekMask>" +
                            CString(mask) + L"</lRecurWeekMask>" + kNever),
                       L"lRecurInterval");
    };
    EXPECT_EQ(interval(L"62"), L"0");
    // On other days of the week it would be an interval of no weeks at all.
    EXPECT_EQ(interval(L"65"), L"1");
}

TEST(ConvertCalendar, LetsASeriesEndByItsCountSoThatItKeepsItsLastDayToo) {
    const CString read = Series(
        L"<dtRecurEndDate>05/04/2011 00:00:00</dtRecurEndDate><bRecurHasEndDate>TRUE</bRecurHasEndDate>"
        L"<lRecurRepeat>10</lRecurRepeat>");
    EXPECT_EQ(Element(read, L"dtRecurEndDate"), L"05/04/2011 00:00:00");
    EXPECT_EQ(Element(read, L"bRecurHasEndDate"), L"FALSE");
    EXPECT_EQ(Element(read, L"lRecurRepeat"), L"10");
}

TEST(ConvertCalendar, LetsASeriesWithoutAMeaningfulCountEndByItsLastDay) {
    for (const wchar_t* count : {L"1", L"0", L"-1"}) {
        const CString read = Series(
            L"<dtRecurEndDate>05/04/2011 00:00:00</dtRecurEndDate><bRecurHasEndDate>TRUE</bRecurHasEndDate>"
            L"<lRecurRepeat>" +
            CString(count) + L"</lRecurRepeat>");
        EXPECT_EQ(Element(read, L"dtRecurEndDate"), L"05/04/2011 00:00:00");
        EXPECT_EQ(Element(read, L"bRecurHasEndDate"), L"TRUE");
        EXPECT_EQ(Element(read, L"lRecurRepeat"), L"");
    }
}

TEST(ConvertCalendar, LeavesTheEndOutOfASeriesWithoutOne) {
    const CString converted = Converted(Series(kNever));
    for (const wchar_t* text : {L"NULL", L"dtRecurEndDate", L"bRecurHasEndDate", L"lRecurRepeat"}) {
        EXPECT_THAT(converted, Not(HasSubstr(text)));
    }
}

TEST(ConvertCalendar, TellsOfExceptionsThatNoWriteKeeps) {
    const CString read =
        Series(kNever,
               L"<ExceptionRule>&lt;exceptions&gt;&lt;deletion time = \"2011/03/14\"&gt;&lt;/deletion&gt;"
               L"&lt;deletion time = \"2011/03/28\"&gt;&lt;/deletion&gt;"
               L"&lt;modification time = "
               L"\"2011/03/21\"&gt;&lt;/modification&gt;&lt;/exceptions&gt;</ExceptionRule>");
    EXPECT_THAT(LossesOf(read), ElementsAre(HasSubstr(L"exceptions of its series cannot be written (2 "
                                                      L"deleted, 1 changed)")));
    EXPECT_THAT(Converted(read), Not(HasSubstr(L"ExceptionRule")));
    EXPECT_THAT(LossesOf(Series(kNever)), IsEmpty());
}

TEST(ConvertCalendar, TellsOfASeriesOfAnotherZoneAndOfNoSingleAppointment) {
    EXPECT_THAT(LossesOf(Read(CString(kWeekly) + kNever, kOtherZone)),
                ElementsAre(HasSubstr(L"another time zone")));
    EXPECT_THAT(LossesOf(Read(kSingle, kOtherZone)), IsEmpty());
}

TEST(ConvertCalendar, TellsOfWholeDaysThatAreNotFromMidnightToMidnightHere) {
    const auto losses = [](const wchar_t* allDay, const wchar_t* start, const wchar_t* end) {
        return LossesOf(Read(CString(kSingle) + L"<bAlldayEvent>" + allDay + L"</bAlldayEvent><dtStartTime>" +
                             start + L"</dtStartTime><dtEndTime>" + end + L"</dtEndTime>"));
    };
    EXPECT_THAT(losses(L"TRUE", L"03/07/2011 00:00:00", L"03/08/2011 00:00:00"), IsEmpty());
    EXPECT_THAT(losses(L"FALSE", L"03/07/2011 18:00:00", L"03/08/2011 18:00:00"), IsEmpty());
    for (const wchar_t* end : {L"03/08/2011 18:00:00", L"03/08/2011 00:00:00"}) {
        EXPECT_THAT(losses(L"TRUE", L"03/07/2011 18:00:00", end), ElementsAre(HasSubstr(L"midnight")));
    }
    EXPECT_THAT(losses(L"TRUE", L"03/07/2011 00:00:00", L"03/08/2011 00:00:01"),
                ElementsAre(HasSubstr(L"midnight")));
}

TEST(ConvertCalendar, LeavesADeletionADeletion) {
    const CString deletion =
        L"<Calendar><lFlag>32</lFlag><PIMID>00AB</PIMID><lCalType>3</lCalType>"
        L"<LastModifiedTime>03/02/2011 17:40:12</LastModifiedTime></Calendar>";
    EXPECT_EQ(Element(deletion, L"lFlag"), L"32");
    EXPECT_EQ(Element(deletion, L"PIMID"), L"00AB");
    ExpectRefused(deletion, L"deletion", true);
}

TEST(ObjectionToCalendar, IsThatItIsNoAppointment) {
    const auto hasObjection = [](const wchar_t* elements) {
        const CString text = CString(L"<Calendar><lFlag>8</lFlag>") + elements + L"</Calendar>";
        ItemDocument document(L"Calendar", text.View());
        return ObjectionToCalendar(document) != nullptr;
    };
    EXPECT_FALSE(hasObjection(L"<lCalType>3</lCalType>"));
    EXPECT_FALSE(hasObjection(L"<lCalType>03rd</lCalType>"));
    EXPECT_TRUE(hasObjection(L""));
    EXPECT_TRUE(hasObjection(L"<lCalType/>"));
    EXPECT_TRUE(hasObjection(L"<lCalType>2</lCalType>"));
    // Of several the first one counts.
    EXPECT_TRUE(hasObjection(L"<lCalType>-1</lCalType><lCalType>3</lCalType>"));
}

TEST(ConvertCalendar, RefusesASeriesThatDoesNotTellHowItRecurs) {
    // Its property could not be read, is missing, or is of a kind that nobody knows.
    for (const wchar_t* type : {L"0", L"2", L""}) {
        ExpectRefused(Read(L"<lRecurType>" + CString(type) + L"</lRecurType>"), L"how it recurs");
    }
    for (const wchar_t* type : {L"0", L"5", L"-1"}) {
        ExpectRefused(
            Read(L"<lRecurType>" + CString(type) + L"</lRecurType><lRecurInterval>1</lRecurInterval>"),
            L"how it recurs");
    }
}

TEST(ConvertCalendar, RefusesASeriesOfAnotherCalendar) {
    ExpectRefused(Read(L"<lRecurType>3</lRecurType><lCalType>-1</lCalType>"), L"Gregorian");
}

TEST(ConvertCalendar, RefusesWhatIsNoWholeDocumentOfARead) {
    ExpectRefused(L"<Calendar/>", L"no document of a read");
    // One whose message could not be opened: written back, it would empty the appointment.
    ExpectRefused(
        L"<Calendar><CsFolder>Calendar</CsFolder><Description>Review</Description><PIMID>00AB</PIMID>"
        L"<lCalType>3</lCalType></Calendar>",
        L"ends too early");
    // One that was converted already.
    ExpectRefused(Converted(Read(kSingle)), L"no document of a read");
    ExpectRefused(Converted(Read(kSingle, kOtherZone)), L"no document of a read");
    ExpectRefused(Converted(Series(kNever)), L"no document of a read");
}

}  // namespace
