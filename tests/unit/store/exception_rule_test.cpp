// The text of what is different about single instances, character for character.

#include "calendar/exception_rule.h"

#include <gtest/gtest.h>

#include "tests/unit/calendar/sample_series.h"
#include "tests/unit/text_printer.h"

namespace {

using namespace sample_series;

/// What the tests' series say of all instances: "Review" in "Room 4", 15 minutes ahead. In base64 of UTF-16
/// the two texts are as below.
const SeriesDefaults kDefaults{L"Review", L"Room 4", 15, 0};
constexpr const wchar_t* kReview = L"UgBlAHYAaQBlAHcA";
constexpr const wchar_t* kRoom = L"UgBvAG8AbQAgADQA";

/// The lines of a changed instance that was moved from its day to the next, at nine.
CString Modification(const wchar_t* day, const wchar_t* moved, const CString& subject,
                     const CString& location, const wchar_t* reminderSet, const wchar_t* reminderDelta,
                     const wchar_t* allDay) {
    return CString(L"<modification time = \"") + day + L"\">\r\n\t<subject>" + subject +
           L"</subject>\r\n\t<location>" + location + L"</location>\r\n\t<start>" + moved +
           L" 09:00:00</start>\r\n\t<end>" + moved + L" 10:00:00</end>\r\n\t<reminderset>" + reminderSet +
           L"</reminderset>\r\n\t<reminderdelta>" + reminderDelta + L"</reminderdelta>\r\n\t<allday>" +
           allDay + L"</allday>\r\n</modification>\r\n";
}

CString TextOf(const tagRecurrencePattern& pattern, const SeriesDefaults& defaults = kDefaults) {
    return ExceptionRuleText(pattern, [&defaults] { return defaults; });
}

/// How often the text of a series asks for what its changed instances have from it.
int QuestionsOf(const tagRecurrencePattern& pattern) {
    int questions = 0;
    EXPECT_FALSE(ExceptionRuleText(pattern, [&questions] {
                     ++questions;
                     return kDefaults;
                 }).empty());
    return questions;
}

/// The text of a series with one changed instance, the one of its first day.
CString TextOfOne(const tagRecurrenceException& exception, const SeriesDefaults& defaults = kDefaults) {
    tagRecurrencePattern pattern = Weekly();
    SetDeleted(pattern, {kFirstMonday});
    std::vector<tagRecurrenceException> exceptions;
    exceptions.push_back(exception);
    SetExceptions(pattern, std::move(exceptions));
    return TextOf(pattern, defaults);
}

CString Whole(const CString& lines) {
    return L"<exceptions>\r\n" + lines + L"</exceptions>";
}

TEST(ExceptionRule, OfOneDeletionIsItsLineBetweenHeadAndEnd) {
    tagRecurrencePattern pattern = Weekly();
    SetDeleted(pattern, {kFirstMonday + 7 * kDay});
    EXPECT_EQ(TextOf(pattern),
              L"<exceptions>\r\n<deletion time = \"2011/03/14\"></deletion>\r\n</exceptions>");
}

TEST(ExceptionRule, OfOneDeletionAndOneChangeIsTheSameCharacterByCharacter) {
    tagRecurrencePattern pattern = Weekly();
    SetDeleted(pattern, {kFirstMonday + 7 * kDay, kFirstMonday + 14 * kDay});
    tagRecurrenceException moved = Moved(kFirstMonday + 14 * kDay, 0x11);
    moved.Subject = WIDE("Test");
    moved.Location = WIDE("Room");
    SetExceptions(pattern, {moved});
    EXPECT_EQ(TextOf(pattern),
              L"<exceptions>\r\n"
              L"<deletion time = \"2011/03/14\"></deletion>\r\n"
              L"<modification time = \"2011/03/21\">\r\n"
              L"\t<subject>VABlAHMAdAA=</subject>\r\n"
              L"\t<location>UgBvAG8AbQA=</location>\r\n"
              L"\t<start>2011/03/22 09:00:00</start>\r\n"
              L"\t<end>2011/03/22 10:00:00</end>\r\n"
              L"\t<reminderset>1</reminderset>\r\n"
              L"\t<reminderdelta>15</reminderdelta>\r\n"
              L"\t<allday>0</allday>\r\n"
              L"</modification>\r\n"
              L"</exceptions>");
}

TEST(ExceptionRule, AChangeWithoutOverridesStillHasWhatTheSeriesHas) {
    EXPECT_EQ(TextOfOne(Moved(kFirstMonday, 0)),
              Whole(Modification(L"2011/03/07", L"2011/03/08", kReview, kRoom, L"1", L"15", L"0")));
}

TEST(ExceptionRule, WithoutAReminderOfTheSeriesAChangeHasNone) {
    SeriesDefaults silent = kDefaults;
    silent.reminderMinutes = -1;
    EXPECT_EQ(TextOfOne(Moved(kFirstMonday, 0), silent),
              Whole(Modification(L"2011/03/07", L"2011/03/08", kReview, kRoom, L"0", L"-1", L"0")));
}

TEST(ExceptionRule, AReminderOfTheSeriesAtItsStartOrBehindItIsOneToo) {
    for (const auto& [minutes, text] : {std::pair{0, L"0"}, std::pair{-2, L"-2"}}) {
        SeriesDefaults defaults = kDefaults;
        defaults.reminderMinutes = minutes;
        EXPECT_EQ(TextOfOne(Moved(kFirstMonday, 0), defaults),
                  Whole(Modification(L"2011/03/07", L"2011/03/08", kReview, kRoom, L"1", text, L"0")));
    }
}

TEST(ExceptionRule, EachOverrideChangesItsOwnLine) {
    tagRecurrenceException own = Moved(kFirstMonday, 0x1FF);
    own.Subject = WIDE("Test");
    own.Location = WIDE("Room");
    own.ReminderSet = 0;
    const auto with = [&own](std::uint16_t flags) {
        own.OverrideFlags = flags;
        return TextOfOne(own);
    };
    const auto lines = [](const wchar_t* subject, const wchar_t* location, const wchar_t* set,
                          const wchar_t* delta, const wchar_t* allDay) {
        return Whole(Modification(L"2011/03/07", L"2011/03/08", subject, location, set, delta, allDay));
    };
    EXPECT_EQ(with(ARO_SUBJECT), lines(L"VABlAHMAdAA=", kRoom, L"1", L"15", L"0"));
    EXPECT_EQ(with(ARO_LOCATION), lines(kReview, L"UgBvAG8AbQA=", L"1", L"15", L"0"));
    EXPECT_EQ(with(ARO_REMINDER), lines(kReview, kRoom, L"0", L"15", L"0"));
    EXPECT_EQ(with(ARO_REMINDERDELTA), lines(kReview, kRoom, L"1", L"45", L"0"));
    EXPECT_EQ(with(ARO_SUBTYPE), lines(kReview, kRoom, L"1", L"15", L"5"));
    for (const std::uint16_t silent : {ARO_MEETINGTYPE, ARO_BUSYSTATUS, ARO_ATTACHMENT, ARO_APPTCOLOR}) {
        EXPECT_EQ(with(silent), lines(kReview, kRoom, L"1", L"15", L"0"));
    }
    EXPECT_EQ(with(0x1FF), lines(L"VABlAHMAdAA=", L"UgBvAG8AbQA=", L"0", L"45", L"5"));
}

TEST(ExceptionRule, NumbersOfAnOverrideAreSigned) {
    tagRecurrenceException own = Moved(kFirstMonday, ARO_REMINDER | ARO_REMINDERDELTA | ARO_SUBTYPE);
    own.ReminderSet = 0xFFFFFFFF;
    own.ReminderDelta = 0x80000000;
    own.SubType = 0xFFFFFFFE;
    EXPECT_EQ(TextOfOne(own), Whole(Modification(L"2011/03/07", L"2011/03/08", kReview, kRoom, L"-1",
                                                 L"-2147483648", L"-2")));
}

TEST(ExceptionRule, ADeletedDayOfAChangeHasNoLineAndAnyOtherHasOne) {
    tagRecurrencePattern pattern = Weekly();
    SetDeleted(pattern, {kFirstMonday, kFirstMonday + 7 * kDay});
    // The second change is of a day that is not deleted: it removes nothing, and is told all the same.
    SetExceptions(pattern, {Moved(kFirstMonday, 0), Moved(kFirstMonday + 7 * kDay + 1, 0)});
    EXPECT_EQ(TextOf(pattern),
              Whole(L"<deletion time = \"2011/03/14\"></deletion>\r\n" +
                    Modification(L"2011/03/07", L"2011/03/08", kReview, kRoom, L"1", L"15", L"0") +
                    CString(L"<modification time = \"2011/03/14\">\r\n\t<subject>") + kReview +
                    L"</subject>\r\n\t<location>" + kRoom +
                    L"</location>\r\n\t<start>2011/03/15 09:01:00</start>\r\n"
                    L"\t<end>2011/03/15 10:01:00</end>\r\n\t<reminderset>1</reminderset>\r\n"
                    L"\t<reminderdelta>15</reminderdelta>\r\n\t<allday>0</allday>\r\n</modification>\r\n"));
}

TEST(ExceptionRule, DeletionsStayInTheirOrderWithDoubles) {
    tagRecurrencePattern pattern = Weekly();
    SetDeleted(pattern, {kFirstMonday + 2 * kDay, kFirstMonday, kFirstMonday + 2 * kDay});
    EXPECT_EQ(TextOf(pattern), Whole(L"<deletion time = \"2011/03/09\"></deletion>\r\n"
                                     L"<deletion time = \"2011/03/07\"></deletion>\r\n"
                                     L"<deletion time = \"2011/03/09\"></deletion>\r\n"));
}

TEST(ExceptionRule, ChangesStayInTheirOrder) {
    tagRecurrencePattern pattern = Weekly();
    SetDeleted(pattern, {kFirstMonday, kFirstMonday + 7 * kDay});
    SetExceptions(pattern, {Moved(kFirstMonday + 7 * kDay, 0), Moved(kFirstMonday, 0)});
    const CString text = TextOf(pattern);
    EXPECT_EQ(text.find(L"<deletion"), CString::npos);
    EXPECT_LT(text.find(L"<modification time = \"2011/03/14\">"),
              text.find(L"<modification time = \"2011/03/07\">"));
}

TEST(ExceptionRule, ACountOfChangesWithoutTheirArrayIsNone) {
    tagRecurrencePattern pattern = Weekly();
    SetDeleted(pattern, {kFirstMonday});
    pattern.ModifiedInstanceCount = 5;
    EXPECT_EQ(TextOf(pattern), Whole(L"<deletion time = \"2011/03/07\"></deletion>\r\n"));
}

TEST(ExceptionRule, WhatTheSeriesHasIsAskedForOnceForAllChangesAndNotForDeletions) {
    tagRecurrencePattern pattern = Weekly();
    SetDeleted(pattern, {kFirstMonday, kFirstMonday + 7 * kDay});
    EXPECT_EQ(QuestionsOf(pattern), 0);
    pattern.ModifiedInstanceCount = 5;
    EXPECT_EQ(QuestionsOf(pattern), 0) << "a count without its array";
    SetExceptions(pattern, {Moved(kFirstMonday, 0), Moved(kFirstMonday + 7 * kDay, 0)});
    EXPECT_EQ(QuestionsOf(pattern), 1);
}

/// The subject line of a change whose own subject has so many characters.
CString SubjectOfLength(std::size_t length) {
    tagRecurrenceException own = Moved(kFirstMonday, ARO_SUBJECT);
    own.Subject = CString(WideString(length, WIDE('a')));
    const CString text = TextOfOne(own);
    const std::size_t start = text.find(L"<subject>") + 9;
    return text.substr(start, text.find(L"</subject>") - start);
}

TEST(ExceptionRule, ASubjectOf384CharactersIsEncodedAndOneOf385IsEmpty) {
    CString encoded;
    for (int i = 0; i < 128; ++i) {
        encoded += L"YQBhAGEA";
    }
    EXPECT_EQ(SubjectOfLength(384), encoded);
    EXPECT_EQ(SubjectOfLength(385), L"");
    EXPECT_EQ(SubjectOfLength(386), L"");
    EXPECT_EQ(SubjectOfLength(1024), L"");
    EXPECT_EQ(SubjectOfLength(1025), L"");
    EXPECT_EQ(SubjectOfLength(0xFFFF), L"");
}

TEST(ExceptionRule, LocationAndTextsOfTheSeriesHaveTheSameRoom) {
    CString encoded;
    for (int i = 0; i < 128; ++i) {
        encoded += L"YQBhAGEA";
    }
    const CString longest(WideString(384, WIDE('a')));
    const CString tooLong(WideString(385, WIDE('a')));
    const auto lines = [](const CString& subject, const CString& location) {
        return Whole(Modification(L"2011/03/07", L"2011/03/08", subject, location, L"1", L"15", L"0"));
    };
    tagRecurrenceException own = Moved(kFirstMonday, ARO_LOCATION);
    own.Location = longest;
    EXPECT_EQ(TextOfOne(own), lines(kReview, encoded));
    own.Location = tooLong;
    EXPECT_EQ(TextOfOne(own), lines(kReview, L""));

    const tagRecurrenceException plain = Moved(kFirstMonday, 0);
    EXPECT_EQ(TextOfOne(plain, {longest, L"Room 4", 15, 0}), lines(encoded, kRoom));
    EXPECT_EQ(TextOfOne(plain, {tooLong, L"Room 4", 15, 0}), lines(L"", kRoom));
    EXPECT_EQ(TextOfOne(plain, {L"Review", longest, 15, 0}), lines(kReview, encoded));
    EXPECT_EQ(TextOfOne(plain, {L"Review", tooLong, 15, 0}), lines(kReview, L""));
}

TEST(ExceptionRule, ASubjectOfAnyCharactersIsEncodedAsItsUnits) {
    tagRecurrenceException own = Moved(kFirstMonday, ARO_SUBJECT);
    own.Subject = CString(WIDE("\u00fc\u4f1a\xD83D\xDE00<&"));
    EXPECT_NE(TextOfOne(own).find(L"<subject>/AAaTz3YAN48ACYA</subject>"), CString::npos);
}

}  // namespace
