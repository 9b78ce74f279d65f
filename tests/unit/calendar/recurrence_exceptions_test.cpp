// The changed instances of a recurrence property.

#include <gtest/gtest.h>

#include "tests/unit/calendar/handmade_exceptions.h"
#include "tests/unit/text_printer.h"

namespace {

using namespace sample_series;

void ExpectSame(const tagRecurrenceException& read, const tagRecurrenceException& written) {
    EXPECT_EQ(read.OriginalDate, written.OriginalDate);
    EXPECT_EQ(read.OverrideFlags, written.OverrideFlags);
    EXPECT_EQ(read.StartDateTime, written.StartDateTime);
    EXPECT_EQ(read.EndDateTime, written.EndDateTime);
    EXPECT_EQ(read.OriginalStartDate, written.OriginalStartDate);
    EXPECT_EQ(read.MeetingType, written.MeetingType);
    EXPECT_EQ(read.ReminderDelta, written.ReminderDelta);
    EXPECT_EQ(read.ReminderSet, written.ReminderSet);
    EXPECT_EQ(read.BusyStatus, written.BusyStatus);
    EXPECT_EQ(read.Attachment, written.Attachment);
    EXPECT_EQ(read.SubType, written.SubType);
    EXPECT_EQ(read.AppointmentColor, written.AppointmentColor);
    EXPECT_EQ(read.Subject, written.Subject);
    EXPECT_EQ(read.Location, written.Location);
    EXPECT_EQ(read.Reserved, WIDE(""));
}

TEST(RecurrenceExceptions, EachSetOfOverridesIsReadAsItWasWritten) {
    for (const std::uint32_t version : {0x3008U, 0x3009U}) {
        for (unsigned flags = 0; flags <= 0x1FF; ++flags) {
            tagRecurrencePattern written = Weekly();
            written.WriterVersion2 = version;
            SetExceptions(written, {Moved(kFirstMonday, static_cast<std::uint16_t>(flags)),
                                    Moved(kFirstMonday + kDay, 0x1FF)});
            const BlobBytes blob = RecurrenceBytes(written);
            const ReadRecurrence read = ReadExactly(blob);
            EXPECT_EQ(read.result, blob.Size());
            ASSERT_EQ(read.pattern.ModifiedInstanceCount, 2U);
            ExpectSame(read.pattern.Exceptions[0], written.Exceptions[0]);
            ExpectSame(read.pattern.Exceptions[1], written.Exceptions[1]);
        }
    }
}

TEST(RecurrenceExceptions, TwoDatesWithOneCountedReadNoBlock) {
    const BlobBytes blob =
        UpToExceptionCount(0x3009, 2)
            .U16(1)              // ExceptionCount
            .Add(InfoHead(0x8))  // ExceptionInfo, of which the first 4 bytes now are a size
            .U32(1)              // ReminderSet
            .U32(0);             // ReservedBlock1Size
    const ReadRecurrence read = ReadExactly(blob);
    ASSERT_EQ(read.pattern.ModifiedInstanceCount, 2U);
    ASSERT_NE(read.pattern.Exceptions, nullptr);
    for (std::uint32_t i = 0; i < 2; ++i) {
        tagRecurrenceException dateOnly;
        dateOnly.OriginalDate = kFirstMonday + i * kDay;
        ExpectSame(read.pattern.Exceptions[i], dateOnly);
    }
    // The size of 100 leads beyond the end, where nothing more is read.
    EXPECT_EQ(read.result, UpToExceptionCount(0x3009, 2).Size() + 2 + 4 + 100);
}

TEST(RecurrenceExceptions, BlocksWithoutDatesAreNotRead) {
    const BlobBytes blob = UpToExceptionCount(0x3009, 0)
                               .U16(1)       // ExceptionCount
                               .U32(2)       // ReservedBlock1Size
                               .U16(0xFFFF)  // ReservedBlock1
                               .U32(0);      // ReservedBlock2Size
    const ReadRecurrence read = ReadExactly(blob);
    EXPECT_EQ(read.pattern.Exceptions, nullptr);
    EXPECT_EQ(read.result, blob.Size());
}

TEST(RecurrenceExceptions, Version3008HasNoChangeHighlightAnd3009HasOne) {
    for (const std::uint32_t version : {0x3008U, 0x3009U, 0x300AU}) {
        BlobBytes blob = UpToExceptionCount(version, 1)
                             .U16(1)            // ExceptionCount
                             .Add(InfoHead(1))  // ExceptionInfo with a subject
                             .U16(2)            // SubjectLength
                             .U16(1)            // SubjectLength2
                             .Narrow("S")       // Subject
                             .U32(0);           // ReservedBlock1Size
        if (version != 0x3008) {
            blob.U32(4)        // ChangeHighlightSize
                .U32(0x0180);  // ChangeHighlightValue
        }
        blob.U32(0)              // ReservedBlockEE1Size
            .U32(101)            // StartDateTime
            .U32(201)            // EndDateTime
            .U32(301)            // OriginalStartDate
            .U16(4)              // WideCharSubjectLength
            .Wide(WIDE("Wide"))  // WideCharSubject
            .U32(0)              // ReservedBlockEE2Size
            .U32(0);             // ReservedBlock2Size
        const ReadRecurrence read = ReadExactly(blob);
        EXPECT_EQ(read.result, blob.Size());
        EXPECT_EQ(read.pattern.Exceptions[0].Subject, WIDE("Wide"));
        EXPECT_EQ(read.pattern.Exceptions[0].StartDateTime, 101U);
    }
}

/// A series with one exception of a new location, whose ChangeHighlight has some size and so many bytes.
ReadRecurrence ReadWithHighlight(std::uint32_t size, std::size_t bytes) {
    return ReadExactly(UpToExceptionCount(0x3009, 1)
                           .U16(1)               // ExceptionCount
                           .Add(InfoHead(0x10))  // ExceptionInfo with a location
                           .U16(0)               // LocationLength
                           .U16(0)               // LocationLength2
                           .U32(0)               // ReservedBlock1Size
                           .U32(size)            // ChangeHighlightSize
                           .Fill(bytes, 0)       // ChangeHighlightValue and what is reserved
                           .U32(0)               // ReservedBlockEE1Size
                           .U32(111)             // StartDateTime
                           .U32(222)             // EndDateTime
                           .U32(333)             // OriginalStartDate
                           .U16(4)               // WideCharLocationLength
                           .Wide(WIDE("Room"))   // WideCharLocation
                           .U32(0)               // ReservedBlockEE2Size
                           .U32(0));             // ReservedBlock2Size
}

TEST(RecurrenceExceptions, AChangeHighlightMayHaveAnySize) {
    for (const std::uint32_t size : {0U, 1U, 3U, 4U, 5U, 8U, 1000U}) {
        const ReadRecurrence read = ReadWithHighlight(size, size);
        EXPECT_EQ(read.pattern.Exceptions[0].Location, WIDE("Room")) << size;
        EXPECT_EQ(read.pattern.Exceptions[0].OriginalStartDate, 333U) << size;
    }
}

TEST(RecurrenceExceptions, AChangeHighlightBeyondTheEndLeavesTheRestUnread) {
    for (const std::uint32_t size : {100U, 0x10000U, 0x7FFFFFFFU, 0xFFFFFF00U}) {
        const ReadRecurrence read = ReadWithHighlight(size, 4);
        EXPECT_EQ(read.pattern.Exceptions[0].Location, WIDE("")) << size;
        EXPECT_EQ(read.pattern.Exceptions[0].OriginalStartDate, 300U) << size;
    }
}

TEST(RecurrenceExceptions, ALocationAloneReadsItsDatesAgainAndNoSubject) {
    const ReadRecurrence read = ReadWithHighlight(4, 4);
    const tagRecurrenceException& exception = read.pattern.Exceptions[0];
    EXPECT_EQ(exception.StartDateTime, 111U);
    EXPECT_EQ(exception.EndDateTime, 222U);
    EXPECT_EQ(exception.OriginalStartDate, 333U);
    EXPECT_EQ(exception.Location, WIDE("Room"));
    EXPECT_EQ(exception.Subject, WIDE(""));
}

TEST(RecurrenceExceptions, AReminderAloneHasNoDatesAndNoTextInItsExtendedForm) {
    const BlobBytes blob = UpToExceptionCount(0x3009, 1)
                               .U16(1)              // ExceptionCount
                               .Add(InfoHead(0x4))  // ExceptionInfo with a reminder's minutes
                               .U32(45)             // ReminderDelta
                               .U32(0)              // ReservedBlock1Size
                               .U32(4)              // ChangeHighlightSize
                               .U32(0)              // ChangeHighlightValue
                               .U32(3)              // ReservedBlockEE1Size
                               .Fill(3, 0xEE)       // ReservedBlockEE1
                               .U32(0);             // ReservedBlock2Size
    const ReadRecurrence read = ReadExactly(blob);
    EXPECT_EQ(read.result, blob.Size());
    EXPECT_EQ(read.pattern.Exceptions[0].ReminderDelta, 45U);
    EXPECT_EQ(read.pattern.Exceptions[0].StartDateTime, 100U);
    EXPECT_EQ(read.pattern.Exceptions[0].Subject, WIDE(""));
    EXPECT_EQ(read.pattern.Exceptions[0].Location, WIDE(""));
}

/// A series with one exception of a new subject, its wide text as given, in the older version.
ReadRecurrence ReadWithSubject(std::uint16_t length, const BlobBytes& units) {
    return ReadExactly(UpToExceptionCount(0x3008, 1)
                           .U16(1)              // ExceptionCount
                           .Add(InfoHead(0x1))  // ExceptionInfo with a subject
                           .U16(1)              // SubjectLength
                           .U16(0)              // SubjectLength2
                           .U32(0)              // ReservedBlock1Size
                           .U32(0)              // ReservedBlockEE1Size
                           .U32(101)            // StartDateTime
                           .U32(201)            // EndDateTime
                           .U32(301)            // OriginalStartDate
                           .U16(length)         // WideCharSubjectLength
                           .Add(units)          // WideCharSubject and what follows
    );
}

TEST(RecurrenceExceptions, ASubjectBeyondTheEndStaysEmptyAndThePlaceIsBehindItsLength) {
    // Five characters are announced and four are there. They are read as the two sizes that follow.
    const ReadRecurrence read = ReadWithSubject(5, BlobBytes().U16(2).U16(0).U16(7).U16(0));
    const std::uint32_t behindLength = UpToExceptionCount(0x3008, 1).Size() + 2 + 14 + 4 + 4 + 4 + 12 + 2;
    EXPECT_EQ(read.pattern.Exceptions[0].Subject, WIDE(""));
    // ReservedBlockEE2Size is 2, which skips two of the other four bytes: no room for another size is left.
    EXPECT_EQ(read.result, behindLength + 4 + 2);
}

TEST(RecurrenceExceptions, ASubjectThatEndsWithTheBlobIsRead) {
    const ReadRecurrence read = ReadWithSubject(4, BlobBytes().Wide(WIDE("Last")));
    EXPECT_EQ(read.pattern.Exceptions[0].Subject, WIDE("Last"));
}

TEST(RecurrenceExceptions, AnEmptySubjectTakesNoCharacter) {
    const BlobBytes sizes = BlobBytes()
                                .U32(0)   // ReservedBlockEE2Size
                                .U32(9);  // ReservedBlock2Size
    const ReadRecurrence read = ReadWithSubject(0, sizes);
    const std::uint32_t behindLength = UpToExceptionCount(0x3008, 1).Size() + 2 + 14 + 4 + 4 + 4 + 12 + 2;
    EXPECT_EQ(read.pattern.Exceptions[0].Subject, WIDE(""));
    EXPECT_EQ(read.result, behindLength + 8 + 9);
}

TEST(RecurrenceExceptions, ACharacterOfValueZeroEndsATextAndThePlaceMovesOverAll) {
    const WideView text(WIDE("ab\0cd"), 5);
    const ReadRecurrence read = ReadWithSubject(5, BlobBytes().Wide(text).U32(0).U32(0));
    const std::uint32_t behindLength = UpToExceptionCount(0x3008, 1).Size() + 2 + 14 + 4 + 4 + 4 + 12 + 2;
    EXPECT_EQ(read.pattern.Exceptions[0].Subject, WIDE("ab"));
    EXPECT_EQ(read.result, behindLength + 10 + 8);
}

TEST(RecurrenceExceptions, TheLongestSubjectIsReadWhole) {
    const CString text(WideString(0xFFFF, WIDE('x')));
    const ReadRecurrence read = ReadWithSubject(0xFFFF, BlobBytes().Wide(text).U32(0).U32(0));
    EXPECT_EQ(read.pattern.Exceptions[0].Subject, text);
}

TEST(RecurrenceExceptions, TextsThatLieInEachOtherTakeNoMoreThanThePropertyHas) {
    const BlobBytes blob = WithSharedSubject(100, 5'000);
    const tagRecurrencePattern pattern = ReadExactly(blob).pattern;
    std::size_t units = 0;
    for (std::uint32_t i = 0; i < 100; ++i) {
        units += pattern.Exceptions[i].Subject.size();
    }
    EXPECT_EQ(pattern.Exceptions[0].Subject.size(), 5'000U);
    EXPECT_EQ(pattern.Exceptions[99].Subject, WIDE(""));
    EXPECT_LE(units, blob.Size() / 2);
}

TEST(RecurrenceExceptions, TextsThatTakeAsMuchAsThePropertyHasAreReadWhole) {
    // Two texts of half of what stands around them are as long as the property, and longer ones too long.
    const auto half = static_cast<std::uint16_t>(WithSharedSubject(2, 0).Size() / 2);
    const tagRecurrencePattern most = ReadExactly(WithSharedSubject(2, half)).pattern;
    EXPECT_EQ(most.Exceptions[0].Subject.size(), half);
    EXPECT_EQ(most.Exceptions[1].Subject.size(), half);
    const auto longer = static_cast<std::uint16_t>(half + 1);
    const tagRecurrencePattern more = ReadExactly(WithSharedSubject(2, longer)).pattern;
    EXPECT_EQ(more.Exceptions[0].Subject.size(), longer);
    EXPECT_EQ(more.Exceptions[1].Subject, WIDE(""));
}

/// The reminder's minutes behind an 8-bit subject of two lengths and some bytes.
std::uint32_t ReminderBehindSubject(std::uint16_t length, std::uint16_t length2, const BlobBytes& bytes) {
    return ReadExactly(UpToExceptionCount(0x3008, 1)
                           .U16(1)              // ExceptionCount
                           .Add(InfoHead(0x5))  // ExceptionInfo with a subject and a reminder
                           .U16(length)         // SubjectLength
                           .U16(length2)        // SubjectLength2
                           .Add(bytes))
        .pattern.Exceptions[0]
        .ReminderDelta;
}

TEST(RecurrenceExceptions, AnEightBitTextIsSkippedOnlyIfItsTwoLengthsAgree) {
    EXPECT_EQ(ReminderBehindSubject(3, 2, BlobBytes().Narrow("ab").U32(45)), 45U);
    EXPECT_EQ(ReminderBehindSubject(1, 0, BlobBytes().U32(45)), 45U);
    EXPECT_EQ(ReminderBehindSubject(2, 2, BlobBytes().U32(45)), 45U);
    EXPECT_EQ(ReminderBehindSubject(4, 2, BlobBytes().U32(45)), 45U);
    EXPECT_EQ(ReminderBehindSubject(0, 0xFFFF, BlobBytes().U32(45)), 45U);
    EXPECT_EQ(ReminderBehindSubject(0xFFFF, 0xFFFE, BlobBytes().Fill(0xFFFE, 'x').U32(45)), 45U);
}

TEST(RecurrenceExceptions, LengthsThatCannotBeReadAreThoseOfTheTextBefore) {
    const BlobBytes blob =
        UpToExceptionCount(0x3008, 2)
            .U16(2)               // ExceptionCount
            .Add(InfoHead(0x1))   // ExceptionInfo with a subject
            .U16(4)               // SubjectLength
            .U16(3)               // SubjectLength2
            .Narrow("abc")        // Subject
            .Add(InfoHead(0x1));  // ExceptionInfo with a subject, of which nothing is there
    EXPECT_EQ(ReadExactly(blob).result, blob.Size() + 3);
}

TEST(RecurrenceExceptions, SubjectAndLocationShareTheirLengths) {
    const BlobBytes subject = UpToExceptionCount(0x3008, 1)
                                  .U16(1)               // ExceptionCount
                                  .Add(InfoHead(0x11))  // ExceptionInfo with a subject and a location
                                  .U16(4)               // SubjectLength
                                  .U16(3)               // SubjectLength2
                                  .Narrow("abc");       // Subject
    EXPECT_EQ(ReadExactly(subject).result, subject.Size() + 3);
    const BlobBytes sameWord = BlobBytes(subject).U16(4);  // LocationLength
    EXPECT_EQ(ReadExactly(sameWord).result, sameWord.Size() + 3);
    const BlobBytes otherWord = BlobBytes(subject).U16(9);
    EXPECT_EQ(ReadExactly(otherWord).result, otherWord.Size());
}

TEST(RecurrenceExceptions, ExceptionsOutOfOrderStayAsTheyStand) {
    tagRecurrencePattern written = Weekly();
    SetDeleted(written, {kFirstMonday, kFirstMonday + kDay, kFirstMonday + 2 * kDay});
    SetExceptions(written, {Moved(kFirstMonday + 2 * kDay, 0x1), Moved(kFirstMonday, 0x10),
                            Moved(kFirstMonday + kDay, 0x1FF)});
    const tagRecurrencePattern pattern = ReadExactly(RecurrenceBytes(written)).pattern;
    for (std::uint32_t i = 0; i < 3; ++i) {
        ExpectSame(pattern.Exceptions[i], written.Exceptions[i]);
    }
}

TEST(RecurrenceExceptions, ASeriesWith2191ChangedInstancesIsReadWhole) {
    tagRecurrencePattern written = Weekly();
    std::vector<tagRecurrenceException> exceptions;
    for (std::uint32_t i = 0; i < 2191; ++i) {
        exceptions.push_back(Moved(kFirstMonday + i * kDay, static_cast<std::uint16_t>(i % 0x200)));
    }
    SetExceptions(written, std::move(exceptions));
    const BlobBytes blob = RecurrenceBytes(written);
    const ReadRecurrence read = ReadExactly(blob);
    EXPECT_EQ(read.result, blob.Size());
    ASSERT_EQ(read.pattern.ModifiedInstanceCount, 2191U);
    for (std::uint32_t i = 0; i < 2191; ++i) {
        ExpectSame(read.pattern.Exceptions[i], written.Exceptions[i]);
    }
}

TEST(RecurrenceExceptions, TheMostHaveAnArrayAndOneMoreHasNone) {
    constexpr std::uint32_t kMost = 1'048'576;
    const BlobBytes head = HeadBytes(Weekly())
                               .Add(PatternBytes(Weekly()))
                               .U32(0)   // EndType
                               .U32(0)   // OccurrenceCount
                               .U32(0)   // FirstDOW
                               .U32(0);  // DeletedInstanceCount
    const ReadRecurrence most = ReadExactly(BlobBytes(head).U32(kMost).Fill(4 * std::size_t{kMost}, 'x'));
    EXPECT_EQ(most.pattern.ModifiedInstanceCount, kMost);
    ASSERT_NE(most.pattern.Exceptions, nullptr);
    EXPECT_EQ(most.pattern.Exceptions[kMost - 1].OriginalDate, 0x78787878U);

    const ReadRecurrence more =
        ReadExactly(BlobBytes(head).U32(kMost + 1).Fill(4 * std::size_t{kMost + 1}, 'x'));
    EXPECT_EQ(more.pattern.ModifiedInstanceCount, kMost + 1);
    EXPECT_EQ(more.pattern.Exceptions, nullptr);
}

TEST(RecurrenceExceptions, MoreThanTheMostHaveNoArrayAndTheirDatesAreSkipped) {
    const BlobBytes blob = HeadBytes(Weekly())
                               .Add(PatternBytes(Weekly()))
                               .U32(0)            // EndType
                               .U32(0)            // OccurrenceCount
                               .U32(0)            // FirstDOW
                               .U32(0)            // DeletedInstanceCount
                               .U32(0xFFFFFFFF);  // ModifiedInstanceCount
    const ReadRecurrence read = ReadExactly(blob);
    EXPECT_EQ(read.pattern.ModifiedInstanceCount, 0xFFFFFFFFU);
    EXPECT_EQ(read.pattern.Exceptions, nullptr);
    // The skip leads back by four bytes. There the count is read once more, as StartDate.
    EXPECT_EQ(read.pattern.StartDate, 0xFFFFFFFFU);
    EXPECT_EQ(read.result, blob.Size());
}

}  // namespace
