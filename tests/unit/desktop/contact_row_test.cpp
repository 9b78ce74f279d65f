#include "desktop/contact_row.h"

#include <gtest/gtest.h>

namespace {

TextTable::Row RowOf(const wchar_t* xml) {
    ItemDocument document(L"Contact", xml);
    return ContactRow(document);
}

TEST(ContactRow, TakesTheFirstOfEachKind) {
    const TextTable::Row row = RowOf(
        L"<?xml version='1.0' "
        L"encoding='utf-8'?><Contact><CsFolder>Contacts\\Friends</CsFolder><FirstName>A</FirstName>"
        L"<HomeNumber1>2</HomeNumber1><BusinessNumber>1</BusinessNumber><CompanyX>Ada &amp; Co</CompanyX>"
        L"<FULLNAME>Ada \u5C71</FULLNAME><SP-EMAIL1></SP-EMAIL1><SP-EMAIL2>b@c</SP-EMAIL2></Contact>");
    EXPECT_EQ(row, (TextTable::Row{L"Ada \u5C71", L"Ada & Co", L"1", L"b@c", L"Contacts\\Friends"}));
    EXPECT_EQ(row.size(), ContactHeadings().size());
}

TEST(ContactRow, MakesANameOfItsParts) {
    EXPECT_EQ(RowOf(L"<Contact><FULLNAME/><LastName>L</LastName><FirstName>F</FirstName></Contact>")[0],
              L"F L");
    EXPECT_EQ(RowOf(L"<Contact><LastName>L</LastName></Contact>")[0], L"L");
    EXPECT_EQ(RowOf(L"<Contact><NickName>N</NickName></Contact>")[0], L"N");
}

TEST(ItemDocument, KnowsWhatItCannotRead) {
    for (const wchar_t* text : {L"", L"<Contact>", L"<Calendar/>", L"no document"}) {
        ItemDocument document(L"Contact", text);
        EXPECT_FALSE(document.IsValid());
        EXPECT_EQ(document.Field(L"FULLNAME"), L"");
        EXPECT_EQ(document.Text(), text);
    }
    EXPECT_TRUE(ItemDocument(L"Contact", L"<Contact/>").IsValid());
}

}  // namespace
