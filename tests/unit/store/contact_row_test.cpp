// The row part of a contact's document, made of values.

#include "contacts/contact_xml_output.h"

#include <gtest/gtest.h>
#include <mapitags.h>

#include "contacts/contact_fields.h"
#include "mapi/property_tags.h"
#include "tests/unit/store/document_body.h"
#include "tests/unit/text_printer.h"

namespace {

SPropValue TextValue(ULONG tag, const wchar_t* text) {
    SPropValue value{};
    value.ulPropTag = tag;
    value.Value.lpszW = const_cast<LPWSTR>(text);
    return value;
}

SPropValue TimeValue(ULONG tag, WORD year, WORD month, WORD day, WORD hour, WORD minute, WORD second) {
    const SYSTEMTIME time{year, month, 0, day, hour, minute, second, 0};
    SPropValue value{};
    value.ulPropTag = tag;
    SystemTimeToFileTime(&time, &value.Value.ft);
    return value;
}

SPropValue BinaryValue(ULONG tag, BYTE* bytes, ULONG count) {
    SPropValue value{};
    value.ulPropTag = tag;
    value.Value.bin = {count, bytes};
    return value;
}

SPropValue ErrorValue(ULONG tag) {
    SPropValue value{};
    value.ulPropTag = PROP_TAG(PT_ERROR, PROP_ID(tag));
    value.Value.err = MAPI_E_NOT_FOUND;
    return value;
}

/// What the platform calls the local time of a UTC time.
SYSTEMTIME Local(WORD year, WORD month, WORD day, WORD hour, WORD minute, WORD second) {
    const SYSTEMTIME utc{year, month, 0, day, hour, minute, second, 0};
    SYSTEMTIME local{};
    SystemTimeToTzSpecificLocalTime(nullptr, &utc, &local);
    return local;
}

struct RowResult {
    CString body;
    CString id;
    CString text;
};

class ContactRow : public ::testing::Test {
  protected:
    static RowResult Append(const std::vector<SPropValue>& values) {
        CXMLParser document;
        EXPECT_TRUE(document.InitDocument());
        document.CreateHeader();
        document.CreateRootElement(L"Contact");
        RowResult result;
        AppendContactRowToXml(document, result.id, values.data(), static_cast<ULONG>(values.size()),
                              &result.text);
        result.body = Body(document);
        return result;
    }
};

TEST_F(ContactRow, EachTextPropertyHasItsElement) {
    const std::pair<ULONG, const wchar_t*> elements[] = {
        {0x3A11001F, L"LastName"},
        {0x3A44001F, L"MiddleName"},
        {0x3A06001F, L"FirstName"},
        {0x3A09001F, L"HomeNumber1"},
        {0x3A25001F, L"HomeFax"},
        {0x3A08001F, L"BusinessNumber"},
        {0x3A24001F, L"BusinessFax"},
        {0x3A1C001F, L"Mobile1"},
        {0x3A21001F, L"Pager1"},
        {0x3A2F001F, L"HomeNumber2"},
        {0x3A1B001F, L"BusinessNumber2"},
        {0x3A1F001F, L"OtherNumber"},
        {0x3A23001F, L"OtherFax"},
        {0x3A57001F, L"CompanyNumber"},
        {0x3A1A001F, L"PrimaryNumber"},
        {0x3A2E001F, L"AssistantNumber"},
        {0x3A2D001F, L"IsdnNumber"},
        {0x3A2C001F, L"TelexNumber"},
        {0x3A4B001F, L"TtyTddNumber"},
        {0x3A1E001F, L"CarNumber"},
        {0x3A1D001F, L"RadioNumber"},
        {0x3A02001F, L"CallBackNumber"},
        {0x3A50001F, L"Web1"},
        {0x3A51001F, L"Web2"},
        {0x3A16001F, L"CompanyX"},
        {0x3A17001F, L"JobTitle"},
        {0x3A4F001F, L"NickName"},
        {0x3A5A001F, L"HomeCountry"},
        {0x3A5C001F, L"HomeState"},
        {0x3A59001F, L"HomeCity"},
        {0x3A5D001F, L"HomeStreet1"},
        {0x3A5B001F, L"HomeZip"},
        {0x3A5E001F, L"HomePobox"},
        {0x3A60001F, L"OtherCountry"},
        {0x3A62001F, L"OtherState"},
        {0x3A5F001F, L"OtherCity"},
        {0x3A63001F, L"OtherStreet1"},
        {0x3A61001F, L"OtherZip"},
        {0x3A64001F, L"OtherPobox"},
        {0x3A05001F, L"PrefixName"},
        {0x3A45001F, L"SuffixName"},
        {0x3A26001F, L"BusinessCountry"},
        {0x3A27001F, L"BusinessCity"},
        {0x3A28001F, L"BusinessState"},
        {0x3A29001F, L"BusinessStreet1"},
        {0x3A2A001F, L"BusinessZip"},
        {0x3A2B001F, L"BusinessPobox"},
    };
    for (const auto& [tag, element] : elements) {
        const CString expected = CString::Format(L"<Contact>\n\t<%s>x</%s></Contact>", element, element);
        EXPECT_EQ(Append({TextValue(tag, L"x")}).body, expected);
    }
    EXPECT_EQ(kContactRowElements.size(), std::size(elements));
}

TEST_F(ContactRow, ElementsStandInTheOrderOfTheValues) {
    const RowResult result = Append({TextValue(0x3A11001F, L"Doe"), TextValue(0x3A06001F, L"John")});
    EXPECT_EQ(result.body, L"<Contact>\n\t<LastName>Doe</LastName>\n\t<FirstName>John</FirstName></Contact>");
}

TEST_F(ContactRow, TextOutputIsTheDocumentAtThisMoment) {
    const RowResult result = Append({TextValue(0x3A06001F, L"John")});
    EXPECT_NE(result.text.find(L"<FirstName>John</FirstName></Contact>"), CString::npos);
}

TEST_F(ContactRow, IdentifierIsUpperCaseHexadecimalAndNoElement) {
    BYTE id[] = {0x00, 0xAB};
    const RowResult result = Append({BinaryValue(PR_ENTRYID, id, 2)});
    EXPECT_EQ(result.id, L"00AB");
    EXPECT_EQ(result.body, L"<Contact/>");
}

TEST_F(ContactRow, LongTermIdentifierStandsInForTheEntryIdentifier) {
    BYTE id[] = {0x00, 0xAB};
    BYTE longTerm[] = {0xCD};
    EXPECT_EQ(
        Append({BinaryValue(PR_ENTRYID, id, 2), BinaryValue(PR_LONGTERM_ENTRYID_FROM_TABLE, longTerm, 1)}).id,
        L"CD");
}

TEST_F(ContactRow, MissingLongTermIdentifierKeepsTheEntryIdentifier) {
    BYTE id[] = {0x00, 0xAB};
    EXPECT_EQ(Append({BinaryValue(PR_ENTRYID, id, 2), ErrorValue(PR_LONGTERM_ENTRYID_FROM_TABLE)}).id,
              L"00AB");
}

TEST_F(ContactRow, AbsentPropertiesAndUnknownTagsLeaveNoElement) {
    EXPECT_EQ(Append({ErrorValue(0x3A06001F), TextValue(0x3001001F, L"name"), ErrorValue(PR_BIRTHDAY)}).body,
              L"<Contact/>");
}

TEST_F(ContactRow, TimesAreLocal) {
    const RowResult result = Append({TimeValue(PR_CREATION_TIME, 2011, 6, 30, 12, 5, 9),
                                     TimeValue(PR_LAST_MODIFICATION_TIME, 2011, 12, 1, 23, 59, 58)});
    const SYSTEMTIME made = Local(2011, 6, 30, 12, 5, 9);
    const SYSTEMTIME changed = Local(2011, 12, 1, 23, 59, 58);
    EXPECT_EQ(result.body,
              CString::Format(
                  L"<Contact>\n\t<CreateTime>%02d/%02d/%04d %02d:%02d:%02d</CreateTime>"
                  L"\n\t<lastModifiedTime>%02d/%02d/%04d %02d:%02d:%02d</lastModifiedTime></Contact>",
                  made.wMonth, made.wDay, made.wYear, made.wHour, made.wMinute, made.wSecond, changed.wMonth,
                  changed.wDay, changed.wYear, changed.wHour, changed.wMinute, changed.wSecond));
}

TEST_F(ContactRow, BirthdayAndAnniversaryAreLocalDates) {
    const RowResult result = Append({TimeValue(PR_WEDDING_ANNIVERSARY, 2001, 5, 6, 12, 0, 0),
                                     TimeValue(PR_BIRTHDAY, 1970, 1, 2, 12, 0, 0)});
    const SYSTEMTIME wedding = Local(2001, 5, 6, 12, 0, 0);
    const SYSTEMTIME birth = Local(1970, 1, 2, 12, 0, 0);
    EXPECT_EQ(result.body, CString::Format(L"<Contact>\n\t<Anniversary>%04d-%02d-%02d</Anniversary>"
                                           L"\n\t<Birthday>%04d-%02d-%02d</Birthday></Contact>",
                                           wedding.wYear, wedding.wMonth, wedding.wDay, birth.wYear,
                                           birth.wMonth, birth.wDay));
}

TEST_F(ContactRow, NullValuesDoNothing) {
    CXMLParser document;
    ASSERT_TRUE(document.InitDocument());
    document.CreateRootElement(L"Contact");
    CString id = L"kept";
    CString text = L"kept";
    AppendContactRowToXml(document, id, nullptr, 3, &text);
    EXPECT_EQ(id, L"kept");
    EXPECT_EQ(text, L"kept");
}

TEST_F(ContactRow, ColumnsAreTheFortySevenInOrder) {
    const ULONG expected[] = {
        0x0FFF0102, 0x66700102, 0x30070040, 0x30080040, 0x3A11001F, 0x3A44001F, 0x3A06001F, 0x3A09001F,
        0x3A25001F, 0x3A08001F, 0x3A24001F, 0x3A1C001F, 0x3A21001F, 0x3A2F001F, 0x3A1B001F, 0x3A1F001F,
        0x3A23001F, 0x3A57001F, 0x3A1A001F, 0x3A2E001F, 0x3A2D001F, 0x3A2C001F, 0x3A4B001F, 0x3A1E001F,
        0x3A1D001F, 0x3A02001F, 0x3A50001F, 0x3A51001F, 0x3A16001F, 0x3A17001F, 0x3A4F001F, 0x3A5A001F,
        0x3A5C001F, 0x3A59001F, 0x3A5D001F, 0x3A5B001F, 0x3A5E001F, 0x3A60001F, 0x3A62001F, 0x3A5F001F,
        0x3A63001F, 0x3A61001F, 0x3A64001F, 0x3A05001F, 0x3A45001F, 0x3A410040, 0x3A420040};
    ASSERT_EQ(kContactColumns->cValues, std::size(expected));
    EXPECT_TRUE(std::equal(std::begin(expected), std::end(expected), kContactColumns->aulPropTag));
}

}  // namespace
