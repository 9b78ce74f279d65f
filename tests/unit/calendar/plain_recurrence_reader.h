#pragma once

// A second reader of the recurrence property, written down from the tables of the published format
// (MS-OXOCAL 2.2.1.44) row by row, for the answers of the first to be compared with. It is slow and shares
// nothing with it but the record. What the format leaves open it has from the first reader's description:
// which counts get an array (HasArray) and how long all texts together may be (ReadWideText). In these two
// it shows that the first does what it is said to do, not that this is right.

#include "tests/unit/calendar/blob_bytes.h"

class PlainRecurrenceReader {
  public:
    PlainRecurrenceReader(const std::uint8_t* bytes, std::size_t size) : m_bytes(bytes), m_size(size) {}

    ReadRecurrence Read() {
        ReadHead();
        ReadPatternTypeSpecific();
        U32(m_pattern.EndType);
        U32(m_pattern.OccurrenceCount);
        U32(m_pattern.FirstDOW);
        ReadInstanceDates();
        U32(m_pattern.StartDate);
        U32(m_pattern.EndDate);
        U32(m_pattern.ReaderVersion2);
        U32(m_pattern.WriterVersion2);
        U32(m_pattern.StartTimeOffset);
        U32(m_pattern.EndTimeOffset);
        std::uint16_t exceptionCount = 0;
        U16(exceptionCount);
        // The two counts must agree, or the blocks are no blocks of these exceptions.
        const bool hasBlocks = m_pattern.Exceptions && m_pattern.ModifiedInstanceCount == exceptionCount;
        for (std::uint32_t i = 0; hasBlocks && i < exceptionCount; ++i) {
            ReadExceptionInfo(m_pattern.Exceptions[i]);
        }
        SkipReservedBlock();
        for (std::uint32_t i = 0; hasBlocks && i < exceptionCount; ++i) {
            ReadExtendedException(m_pattern.Exceptions[i]);
        }
        SkipReservedBlock();
        return {m_place, std::move(m_pattern)};
    }
    /// How many texts were passed over because those before them took up the room.
    [[nodiscard]] std::size_t TextsWithoutRoom() const { return m_textsWithoutRoom; }

  private:
    /// Whether so many bytes, counted without wrapping, lie in front of the end.
    [[nodiscard]] bool Has(std::uint64_t bytes) const { return std::uint64_t{m_place} + bytes <= m_size; }

    bool U16(std::uint16_t& field) {
        if (!Has(2)) {
            return false;
        }
        field = static_cast<std::uint16_t>(m_bytes[m_place] + 0x100 * m_bytes[m_place + 1]);
        m_place += 2;
        return true;
    }

    bool U32(std::uint32_t& field) {
        if (!Has(4)) {
            return false;
        }
        std::uint16_t low = 0;
        std::uint16_t high = 0;
        U16(low);
        U16(high);
        field = low + 0x10000U * high;
        return true;
    }

    void SkipReservedBlock() {
        std::uint32_t size = 0;
        U32(size);
        m_place += size;
    }

    void ReadHead() {
        U16(m_pattern.ReaderVersion);
        U16(m_pattern.WriterVersion);
        U16(m_pattern.RecurFrequency);
        U16(m_pattern.PatternType);
        U16(m_pattern.CalendarType);
        U32(m_pattern.FirstDateTime);
        U32(m_pattern.Period);
        U32(m_pattern.SlidingFlag);
    }

    void ReadPatternTypeSpecific() {
        const std::uint16_t type = m_pattern.PatternType;
        switch (m_pattern.RecurFrequency) {
            case 0x200A:  // daily
                if (type == 0x1) {
                    U32(m_pattern.WeekDays);
                }
                return;
            case 0x200B:  // weekly
                U32(m_pattern.WeekDays);
                return;
            case 0x200C:  // monthly
            case 0x200D:  // yearly
                if (type == 0x2 || type == 0x4 || type == 0xA || type == 0xC) {
                    U32(m_pattern.DayOfMonth);
                } else if (type == 0x3 || type == 0xB) {
                    U32(m_pattern.WeekDays);
                    U32(m_pattern.NthWeek);
                }
                return;
            default:
                return;
        }
    }

    /// An array is made for up to 1,048,576 dates, of which the bytes may lack 4,096. Where there is none,
    /// the dates are passed over.
    bool HasArray(std::uint32_t count) {
        std::uint64_t there = 0;
        while (there < count && Has(4 * (there + 1))) {
            ++there;
        }
        if (count <= 1'048'576 && count - there <= 4'096) {
            return count != 0;
        }
        m_place += 4 * count;
        return false;
    }

    void ReadInstanceDates() {
        const std::uint32_t& deleted = m_pattern.DeletedInstanceCount;
        U32(m_pattern.DeletedInstanceCount);
        if (HasArray(deleted)) {
            m_pattern.DeletedInstanceDates = std::make_unique<std::uint32_t[]>(deleted);
            for (std::uint32_t i = 0; i < deleted; ++i) {
                U32(m_pattern.DeletedInstanceDates[i]);
            }
        }
        const std::uint32_t& modified = m_pattern.ModifiedInstanceCount;
        U32(m_pattern.ModifiedInstanceCount);
        if (HasArray(modified)) {
            m_pattern.Exceptions = std::make_unique<NAMESPACE_MAPI::tagRecurrenceException[]>(modified);
            for (std::uint32_t i = 0; i < modified; ++i) {
                U32(m_pattern.Exceptions[i].OriginalDate);
            }
        }
    }

    /// A text in the 8-bit code page, of which nothing is kept. A length that is cut off is that of the text
    /// before it, and a text whose lengths do not fit together has no bytes.
    void SkipNarrowText() {
        U16(m_length);
        U16(m_length2);
        if (m_length2 != 0 && m_length2 + 1 == m_length) {
            m_place += m_length2;
        }
    }

    void ReadExceptionInfo(NAMESPACE_MAPI::tagRecurrenceException& exception) {
        ReadDates(exception);
        U16(exception.OverrideFlags);
        const unsigned flags = exception.OverrideFlags;
        if ((flags & 0x0001U) != 0) {
            SkipNarrowText();
        }
        if ((flags & 0x0002U) != 0) {
            U32(exception.MeetingType);
        }
        if ((flags & 0x0004U) != 0) {
            U32(exception.ReminderDelta);
        }
        if ((flags & 0x0008U) != 0) {
            U32(exception.ReminderSet);
        }
        if ((flags & 0x0010U) != 0) {
            SkipNarrowText();
        }
        if ((flags & 0x0020U) != 0) {
            U32(exception.BusyStatus);
        }
        if ((flags & 0x0040U) != 0) {
            U32(exception.Attachment);
        }
        if ((flags & 0x0080U) != 0) {
            U32(exception.SubType);
        }
        if ((flags & 0x0100U) != 0) {
            U32(exception.AppointmentColor);
        }
    }

    void ReadDates(NAMESPACE_MAPI::tagRecurrenceException& exception) {
        U32(exception.StartDateTime);
        U32(exception.EndDateTime);
        U32(exception.OriginalStartDate);
    }

    void ReadExtendedException(NAMESPACE_MAPI::tagRecurrenceException& exception) {
        const bool hasSubject = (exception.OverrideFlags & 0x0001U) != 0;
        const bool hasLocation = (exception.OverrideFlags & 0x0010U) != 0;
        if (m_pattern.WriterVersion2 >= 0x3009) {
            SkipReservedBlock();  // ChangeHighlight, whose size counts its value and what is reserved
        }
        SkipReservedBlock();  // ReservedBlockEE1
        if (hasSubject || hasLocation) {
            ReadDates(exception);
            if (hasSubject) {
                ReadWideText(exception.Subject);
            }
            if (hasLocation) {
                ReadWideText(exception.Location);
            }
            SkipReservedBlock();  // ReservedBlockEE2
        }
    }

    /// Only a text that is whole has a place of its own; it ends with the first null character. All texts
    /// together are no longer than the property, and one more is passed over.
    void ReadWideText(CString& text) {
        std::uint16_t length = 0;
        U16(length);
        if (!Has(2 * std::uint64_t{length})) {
            return;
        }
        m_textUnits += length;
        bool hasEnded = m_textUnits > m_size / 2;
        m_textUnits -= hasEnded ? length : 0;
        m_textsWithoutRoom += hasEnded ? 1 : 0;
        for (std::uint16_t i = 0; i < length; ++i) {
            std::uint16_t unit = 0;
            U16(unit);
            hasEnded = hasEnded || unit == 0;
            if (!hasEnded) {
                text += static_cast<wide>(unit);
            }
        }
    }

    const std::uint8_t* m_bytes;
    std::uint64_t m_size;
    std::uint32_t m_place = 0;  ///< wraps as every place in the format does
    std::uint64_t m_textUnits = 0;
    std::size_t m_textsWithoutRoom = 0;
    std::uint16_t m_length = 0;
    std::uint16_t m_length2 = 0;
    NAMESPACE_MAPI::tagRecurrencePattern m_pattern;
};
