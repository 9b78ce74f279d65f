// Whatever the recurrence property of an appointment holds, a whole document comes of it.

#include <gtest/gtest.h>

#include "calendar/recurrence_xml_output.h"
#include "mapi/item_document.h"
#include "tests/unit/calendar/damaged_blobs.h"

namespace {

/// The text of an element of a document, empty if there is none.
CString TextOf(CXMLParser& document, const wchar_t* path) {
    return document.GetNodeText(document.SelectSingleNode(path).Get());
}

/// Expects that the elements of a series, or that of another calendar, lie in a document that a reader takes
/// and that goes on behind them.
void ExpectDocumentOf(const std::uint8_t* bytes, std::size_t size) {
    const ReadRecurrence read = ReadExactly(bytes, size);
    CXMLParser document;
    ASSERT_TRUE(document.InitDocument());
    document.CreateHeader();
    document.CreateRootElement(L"Calendar");
    AppendElement(document, L"lRecurType", L"1");
    ASSERT_NO_THROW(WriteRecurrenceElements(read.pattern, document));
    AppendElement(document, L"TimeZone", L"a zone");
    CXMLParser reader;
    ASSERT_TRUE(reader.InitDocument());
    reader.LoadText(document.GetDocumentText().View());
    EXPECT_EQ(TextOf(reader, L"/Calendar/TimeZone"), L"a zone");
    if (read.pattern.CalendarType != 0) {
        EXPECT_EQ(TextOf(reader, L"/Calendar/lCalType"), L"-1");
        return;
    }
    EXPECT_NE(TextOf(reader, L"/Calendar/lRecurRepeat"), L"");
    const CString rule = TextOf(reader, L"/Calendar/ExceptionRule");
    EXPECT_EQ(rule.empty(), !read.pattern.DeletedInstanceDates);
    EXPECT_TRUE(rule.empty() || (rule.starts_with(L"<exceptions>") && rule.ends_with(L"</exceptions>")));
}

TEST(DamagedSeries, EveryPrefixOfEverySampleGivesAWholeDocument) {
    const ComApartmentHold apartment;
    for (const std::vector<std::uint8_t>& bytes : SampleBlobs()) {
        for (std::size_t size = 0; size <= bytes.size(); ++size) {
            SCOPED_TRACE(size);
            ExpectDocumentOf(bytes.data(), size);
        }
    }
}

TEST(DamagedSeries, AnyDamageGivesAWholeDocument) {
    const ComApartmentHold apartment;
    DamagedBlobs blobs(2);
    for (int i = 0; i < 2'000; ++i) {
        SCOPED_TRACE(i);
        const std::vector<std::uint8_t> bytes = blobs.Next();
        ExpectDocumentOf(bytes.data(), bytes.size());
    }
}

}  // namespace
