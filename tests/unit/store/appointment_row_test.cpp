// The row part of an appointment's document, made of values.

#include <gtest/gtest.h>

#include "calendar/calendar_xml_output.h"
#include "mapi/property_tags.h"
#include "tests/unit/store/appointment_fixture.h"
#include "tests/unit/store/document_body.h"
#include "tests/unit/text_printer.h"

namespace {

struct RowResult {
    CString body;
    CString id;
};

RowResult Append(const std::vector<SPropValue>& values, const CString& id = {}) {
    CXMLParser document;
    EXPECT_TRUE(document.InitDocument());
    document.CreateHeader();
    document.CreateRootElement(L"Calendar");
    RowResult result{{}, id};
    const auto count = static_cast<ULONG>(values.size());
    WriteCalendarRowFields(result.id, document, values.data(), &count);
    result.body = Body(document);
    return result;
}

SPropValue Value(ULONG tag) {
    SPropValue value{};
    value.ulPropTag = tag;
    return value;
}

SPropValue TextValue(ULONG tag, const wchar_t* text) {
    SPropValue value = Value(tag);
    value.Value.lpszW = const_cast<LPWSTR>(text);
    return value;
}

SPropValue TimeValue(ULONG tag, WORD year, WORD month, WORD day, WORD hour, WORD minute, WORD second) {
    const SYSTEMTIME time{year, month, 0, day, hour, minute, second, 0};
    SPropValue value = Value(tag);
    SystemTimeToFileTime(&time, &value.Value.ft);
    return value;
}

SPropValue BinaryValue(ULONG tag, std::vector<BYTE>& bytes) {
    SPropValue value = Value(tag);
    value.Value.bin = {static_cast<ULONG>(bytes.size()), bytes.data()};
    return value;
}

SPropValue NumberValue(ULONG tag, LONG number) {
    SPropValue value = Value(tag);
    value.Value.l = number;
    return value;
}

TEST(AppointmentRow, EachColumnHasItsElementInTheOrderOfTheValues) {
    std::vector<BYTE> id{0x00, 0xAB};
    const RowResult result =
        Append({BinaryValue(PR_ENTRYID, id), TimeValue(PR_CREATION_TIME, 2011, 3, 1, 8, 15, 0),
                TimeValue(PR_LAST_MODIFICATION_TIME, 2011, 8, 2, 17, 40, 12),
                TextValue(PR_SUBJECT_W, L"Review"), NumberValue(PR_PRIORITY, -1)});
    EXPECT_EQ(result.body, CalendarOf({{L"CreateTime", LocalText(2011, 3, 1, 8, 15)},
                                       {L"lastModifiedTime", LocalText(2011, 8, 2, 17, 40, 12)},
                                       {L"Description", L"Review"},
                                       {L"Priority", L"-1"}}));
    EXPECT_EQ(result.id, L"00AB");
}

TEST(AppointmentRow, TheLongTermIdentifierWinsWhereTheTableHasOne) {
    std::vector<BYTE> shortTerm{0x01};
    std::vector<BYTE> longTerm{0xFE, 0xDC};
    EXPECT_EQ(
        Append({BinaryValue(PR_ENTRYID, shortTerm), BinaryValue(PR_LONGTERM_ENTRYID_FROM_TABLE, longTerm)})
            .id,
        L"FEDC");
    SPropValue absent = Value(PROP_TAG(PT_ERROR, PROP_ID(PR_LONGTERM_ENTRYID_FROM_TABLE)));
    EXPECT_EQ(Append({BinaryValue(PR_ENTRYID, shortTerm), absent}).id, L"01");
}

TEST(AppointmentRow, ErrorValuesAndOtherTagsGiveNoElement) {
    std::vector<SPropValue> values;
    for (const ULONG tag :
         {PR_ENTRYID, PR_CREATION_TIME, PR_LAST_MODIFICATION_TIME, PR_SUBJECT_W, PR_PRIORITY}) {
        values.push_back(Value(PROP_TAG(PT_ERROR, PROP_ID(tag))));
        values.back().Value.err = MAPI_E_NOT_FOUND;
    }
    values.push_back(TextValue(PR_SUBJECT_A, L"8-bit"));
    values.push_back(NumberValue(PR_IMPORTANCE, 2));
    const RowResult result = Append(values, L"kept");
    EXPECT_EQ(result.body, CalendarOf({}));
    EXPECT_EQ(result.id, L"kept");
}

TEST(AppointmentRow, AnEmptySubjectIsAnEmptyElement) {
    EXPECT_EQ(Append({TextValue(PR_SUBJECT_W, L"")}).body, CalendarOf({{L"Description", L""}}));
}

TEST(AppointmentRow, ANullArrayDoesNothing) {
    CXMLParser document;
    ASSERT_TRUE(document.InitDocument());
    document.CreateHeader();
    document.CreateRootElement(L"Calendar");
    CString id(L"kept");
    const ULONG count = 5;
    WriteCalendarRowFields(id, document, nullptr, &count);
    EXPECT_EQ(Body(document), CalendarOf({}));
    EXPECT_EQ(id, L"kept");
}

TEST(AppointmentRow, WhatXmlCannotCarryIsLeftOutOfTheSubject) {
    EXPECT_EQ(Append({TextValue(PR_SUBJECT_W,
                                L"a\x01"
                                L"b\xFFFF<&>")})
                  .body,
              CalendarOf({{L"Description", L"ab&lt;&amp;&gt;"}}));
}

TEST(AppointmentRow, ColumnsAreAskedForInTheirOrder) {
    EXPECT_EQ(std::vector<ULONG>(kCalendarColumns->aulPropTag,
                                 kCalendarColumns->aulPropTag + kCalendarColumns->cValues),
              (std::vector<ULONG>{0x0FFF0102, 0x66700102, 0x30070040, 0x30080040, 0x0037001F, 0x00260003}));
}

}  // namespace
