#include "calendar/recurrence_blob.h"

#include <memory>
#include <new>
#include <utility>

#include "calendar/blob_cursor.h"
#include "calendar/blob_writer.h"
#include "calendar/recurrence_shape.h"

namespace {

using NAMESPACE_MAPI::tagRecurrenceException;
using NAMESPACE_MAPI::tagRecurrencePattern;

/// WriterVersion2 from which on each extended exception begins with a ChangeHighlight.
constexpr std::uint32_t kFirstVersionWithHighlight = 0x3009;

/// Exceptions with a text have dates once more in their extended form.
constexpr std::uint16_t kTextFlags = ARO_SUBJECT | ARO_LOCATION;

/// The largest blob that is written: one whose pattern has two fields.
constexpr std::size_t kMostWrittenBytes = 84;

/// The two length words of an 8-bit text. One that cannot be read keeps the value of the text before it.
struct TextLengths {
    std::uint16_t withTerminator = 0;
    std::uint16_t characters = 0;
};

/// True for a count that only damage explains. What is not there stands as zeros and is told of in the
/// document, each with a paragraph, so a few bytes must not ask for many.
bool IsBeyondReason(std::uint32_t count, const BlobCursor& cursor) {
    const auto there = static_cast<std::uint32_t>(cursor.Remaining() / sizeof(std::uint32_t));
    return count > kMostInstances || (count > there && count - there > kMostMissing);
}

/// An array of as many elements as dates follow at the cursor, or null for none and if there is no memory.
template<class Element>
std::unique_ptr<Element[]> MakeArray(std::uint32_t count, const BlobCursor& cursor) {
    if (count == 0 || IsBeyondReason(count, cursor)) {
        return nullptr;
    }
    return std::unique_ptr<Element[]>(new (std::nothrow) Element[count]());
}

void ReadHead(BlobCursor& cursor, tagRecurrencePattern& pattern) {
    cursor.Read(pattern.ReaderVersion);
    cursor.Read(pattern.WriterVersion);
    cursor.Read(pattern.RecurFrequency);
    cursor.Read(pattern.PatternType);
    cursor.Read(pattern.CalendarType);
    cursor.Read(pattern.FirstDateTime);
    cursor.Read(pattern.Period);
    cursor.Read(pattern.SlidingFlag);
}

void ReadDeletedDates(BlobCursor& cursor, tagRecurrencePattern& pattern) {
    cursor.Read(pattern.DeletedInstanceCount);
    pattern.DeletedInstanceDates = MakeArray<std::uint32_t>(pattern.DeletedInstanceCount, cursor);
    if (!pattern.DeletedInstanceDates) {
        cursor.Skip(4U * pattern.DeletedInstanceCount);
        return;
    }
    for (std::uint32_t i = 0; i < pattern.DeletedInstanceCount; ++i) {
        cursor.Read(pattern.DeletedInstanceDates[i]);
    }
}

void ReadModifiedDates(BlobCursor& cursor, tagRecurrencePattern& pattern) {
    cursor.Read(pattern.ModifiedInstanceCount);
    pattern.Exceptions = MakeArray<tagRecurrenceException>(pattern.ModifiedInstanceCount, cursor);
    if (!pattern.Exceptions) {
        cursor.Skip(4U * pattern.ModifiedInstanceCount);
        return;
    }
    for (std::uint32_t i = 0; i < pattern.ModifiedInstanceCount; ++i) {
        cursor.Read(pattern.Exceptions[i].OriginalDate);
    }
}

void ReadTimes(BlobCursor& cursor, tagRecurrencePattern& pattern) {
    cursor.Read(pattern.StartDate);
    cursor.Read(pattern.EndDate);
    cursor.Read(pattern.ReaderVersion2);
    cursor.Read(pattern.WriterVersion2);
    cursor.Read(pattern.StartTimeOffset);
    cursor.Read(pattern.EndTimeOffset);
}

void ReadDates(BlobCursor& cursor, tagRecurrenceException& exception) {
    cursor.Read(exception.StartDateTime);
    cursor.Read(exception.EndDateTime);
    cursor.Read(exception.OriginalStartDate);
}

/// Passes over a text in the 8-bit code page: the extended exception has it once more, in wide characters.
void SkipNarrowText(BlobCursor& cursor, TextLengths& lengths) {
    cursor.Read(lengths.withTerminator);
    cursor.Read(lengths.characters);
    if (lengths.characters == lengths.withTerminator - 1) {
        cursor.Skip(lengths.characters);
    }
}

/// ExceptionInfo (MS-OXOCAL 2.2.1.44.2).
void ReadException(BlobCursor& cursor, TextLengths& lengths, tagRecurrenceException& exception) {
    ReadDates(cursor, exception);
    cursor.Read(exception.OverrideFlags);
    const auto readIf = [&](std::uint16_t flag, std::uint32_t& field) {
        if ((exception.OverrideFlags & flag) != 0) {
            cursor.Read(field);
        }
    };
    if ((exception.OverrideFlags & ARO_SUBJECT) != 0) {
        SkipNarrowText(cursor, lengths);
    }
    readIf(ARO_MEETINGTYPE, exception.MeetingType);
    readIf(ARO_REMINDERDELTA, exception.ReminderDelta);
    readIf(ARO_REMINDER, exception.ReminderSet);
    if ((exception.OverrideFlags & ARO_LOCATION) != 0) {
        SkipNarrowText(cursor, lengths);
    }
    readIf(ARO_BUSYSTATUS, exception.BusyStatus);
    readIf(ARO_ATTACHMENT, exception.Attachment);
    readIf(ARO_SUBTYPE, exception.SubType);
    readIf(ARO_APPTCOLOR, exception.AppointmentColor);
}

/// ChangeHighlight (MS-OXOCAL 2.2.1.44.3). Its size counts the value, and one below 4 leads backwards.
void SkipChangeHighlight(BlobCursor& cursor) {
    constexpr std::uint32_t kValueBytes = 4;
    const auto size = cursor.Take<std::uint32_t>();
    cursor.Skip(kValueBytes);
    cursor.Skip(size - kValueBytes);
}

CString ReadWideText(BlobCursor& cursor) {
    return cursor.TakeText(cursor.Take<std::uint16_t>());
}

/// ExtendedException (MS-OXOCAL 2.2.1.44.4).
void ReadExtendedException(BlobCursor& cursor, bool hasHighlight, tagRecurrenceException& exception) {
    if (hasHighlight) {
        SkipChangeHighlight(cursor);
    }
    cursor.SkipSizedBlock();
    if ((exception.OverrideFlags & kTextFlags) == 0) {
        return;
    }
    ReadDates(cursor, exception);
    if ((exception.OverrideFlags & ARO_SUBJECT) != 0) {
        exception.Subject = ReadWideText(cursor);
    }
    if ((exception.OverrideFlags & ARO_LOCATION) != 0) {
        exception.Location = ReadWideText(cursor);
    }
    cursor.SkipSizedBlock();
}

/// Both forms of the exceptions, which are read only if the two counts agree, and the block between them.
void ReadExceptions(BlobCursor& cursor, tagRecurrencePattern& pattern) {
    const std::uint32_t listed = cursor.Take<std::uint16_t>();
    const bool counted = pattern.Exceptions && pattern.ModifiedInstanceCount == listed;
    const std::uint32_t count = counted ? listed : 0;
    TextLengths lengths;
    for (std::uint32_t i = 0; i < count; ++i) {
        ReadException(cursor, lengths, pattern.Exceptions[i]);
    }
    cursor.SkipSizedBlock();
    const bool hasHighlight = pattern.WriterVersion2 >= kFirstVersionWithHighlight;
    for (std::uint32_t i = 0; i < count; ++i) {
        ReadExtendedException(cursor, hasHighlight, pattern.Exceptions[i]);
    }
}

void WriteHead(BlobWriter& blob, const tagRecurrencePattern& pattern) {
    blob.Write(pattern.ReaderVersion);
    blob.Write(pattern.WriterVersion);
    blob.Write(pattern.RecurFrequency);
    blob.Write(pattern.PatternType);
    blob.Write(pattern.CalendarType);
    blob.Write(pattern.FirstDateTime);
    blob.Write(pattern.Period);
    blob.Write(pattern.SlidingFlag);
}

/// EndType and what follows up to EndTimeOffset, with empty lists of instances.
void WriteInstances(BlobWriter& blob, const tagRecurrencePattern& pattern) {
    constexpr std::uint32_t kNoInstances = 0;
    blob.Write(pattern.EndType);
    blob.Write(pattern.OccurrenceCount);
    blob.Write(pattern.FirstDOW);
    blob.Write(kNoInstances);  // DeletedInstanceCount
    blob.Write(kNoInstances);  // ModifiedInstanceCount
    blob.Write(pattern.StartDate);
    blob.Write(pattern.EndDate);
    blob.Write(kWrittenReaderVersion2);
    blob.Write(kWrittenWriterVersion2);
    blob.Write(pattern.StartTimeOffset);
    blob.Write(pattern.EndTimeOffset);
}

/// What stands behind the series if there are no exceptions.
void WriteNoExceptions(BlobWriter& blob) {
    constexpr std::uint16_t kNoExceptions = 0;
    constexpr std::uint32_t kNoReservedBlock = 0;
    blob.Write(kNoExceptions);
    blob.Write(kNoReservedBlock);
    blob.Write(kNoReservedBlock);
}

}  // namespace

std::uint32_t ParseRecurrenceBlob(const std::uint8_t* bytes, std::uint32_t size,
                                  tagRecurrencePattern& pattern) {
    if (bytes == nullptr) {
        return 0;
    }
    pattern = tagRecurrencePattern();
    BlobCursor cursor(bytes, size);
    ReadHead(cursor, pattern);
    ForEachSpecificField(pattern, [&cursor](std::uint32_t& field) { cursor.Read(field); });
    cursor.Read(pattern.EndType);
    cursor.Read(pattern.OccurrenceCount);
    cursor.Read(pattern.FirstDOW);
    ReadDeletedDates(cursor, pattern);
    ReadModifiedDates(cursor, pattern);
    ReadTimes(cursor, pattern);
    ReadExceptions(cursor, pattern);
    cursor.SkipSizedBlock();
    return cursor.Offset();
}

int WriteRecurrenceBlob(const tagRecurrencePattern& pattern, std::unique_ptr<std::uint8_t[]>* bytes,
                        std::uint32_t& size) {
    if (bytes == nullptr) {
        return 0;
    }
    std::unique_ptr<std::uint8_t[]> room(new (std::nothrow) std::uint8_t[kMostWrittenBytes]());
    if (!room) {
        return 0;
    }
    BlobWriter blob({room.get(), kMostWrittenBytes});
    WriteHead(blob, pattern);
    ForEachSpecificField(pattern, [&blob](std::uint32_t field) { blob.Write(field); });
    WriteInstances(blob, pattern);
    WriteNoExceptions(blob);
    size = blob.Size();
    *bytes = std::move(room);
    return 1;
}
