#include "desktop/text_table.h"

#include <gtest/gtest.h>

#include "desktop/item_file_name.h"
#include "desktop/progress_text.h"
#include "desktop/text_cell.h"

namespace {

TEST(DisplayWidth, CountsColumns) {
    EXPECT_EQ(DisplayWidth(L""), 0U);
    EXPECT_EQ(DisplayWidth(L"Zo\u00EB"), 3U);
    EXPECT_EQ(DisplayWidth(L"\u5C71\u7530"), 4U);
    EXPECT_EQ(DisplayWidth(L"\uFF21"), 2U);
    EXPECT_EQ(DisplayWidth(L"\uAE40"), 2U);
    EXPECT_EQ(DisplayWidth(L"e\u0301"), 1U);
    EXPECT_EQ(DisplayWidth(L"\u200D"), 0U);
    EXPECT_EQ(DisplayWidth(L"\U0001F600"), 2U);
    EXPECT_EQ(DisplayWidth(L"\U0002000B"), 2U);
    EXPECT_EQ(DisplayWidth(L"\u3003"), 2U);
    EXPECT_EQ(DisplayWidth(L"\u0430\u05D0\u0639"), 3U);
    EXPECT_EQ(DisplayWidth(L"\xD800x"), 2U);
}

TEST(PrintableText, CannotCommandATerminal) {
    EXPECT_EQ(PrintableText(L"a\x1B[31m\tb\r\nc"), L"a [31m b  c");
    EXPECT_EQ(PrintableText(L"\x9B\x7F\u2028|"), L"   |");
    EXPECT_EQ(PrintableText(L"\u202Eabc\u2069"), L"abc");
}

TEST(PrintableText, KeepsWhatIsText) {
    EXPECT_EQ(PrintableText(L"\u05D0\u200F \U0001F600 e\u0301"), L"\u05D0\u200F \U0001F600 e\u0301");
    EXPECT_EQ(PrintableText(L"\xDE00\xD83D"), L"\uFFFD\uFFFD");
}

TEST(FitText, FillsAndCuts) {
    EXPECT_EQ(FitText(L"abc", 5), L"abc  ");
    EXPECT_EQ(FitText(L"abc", 3), L"abc");
    EXPECT_EQ(FitText(L"abcd", 3), L"ab\u2026");
    EXPECT_EQ(FitText(L"abcd", 1), L"\u2026");
    EXPECT_EQ(FitText(L"abcd", 0), L"");
}

TEST(FitText, CutsBetweenCharacters) {
    // Two ideographs would take four of the three columns that are left.
    EXPECT_EQ(FitText(L"\u5C71\u7530\u592A", 4), L"\u5C71\u2026 ");
    EXPECT_EQ(FitText(L"\U0001F600\U0001F600", 3), L"\U0001F600\u2026");
    EXPECT_EQ(FitText(L"e\u0301e\u0301e\u0301", 2), L"e\u0301\u2026");
}

TEST(TextTable, AlignsItsColumns) {
    TextTable table({L"NAME", L"PHONE"});
    table.Add({L"Ada Lovelace", L"1"});
    table.Add({L"\u5C71\u7530\u592A\u90CE", L"22"});
    table.Add({L"", L""});
    EXPECT_EQ(table.Aligned(0),
              L"NAME          PHONE\n"
              L"Ada Lovelace  1\n"
              L"\u5C71\u7530\u592A\u90CE      22\n"
              L"\n");
    EXPECT_EQ(table.Size(), 3U);
}

TEST(TextTable, CutsTheWidestColumnsToFit) {
    TextTable table({L"A", L"B"});
    table.Add({L"0123456789", L"01234"});
    EXPECT_EQ(table.Aligned(17), L"A           B\n0123456789  01234\n");
    EXPECT_EQ(table.Aligned(14), L"A        B\n012345\u2026  01234\n");
    EXPECT_EQ(table.Aligned(8), L"A    B\n01\u2026  01\u2026\n");
    EXPECT_EQ(table.Aligned(1), L"A  B\n\u2026  \u2026\n");
}

TEST(TextTable, LetsALongCellStandOutWhereNothingIsCut) {
    const CString longCell(std::wstring(100, L'x').c_str());
    const CString gap(std::wstring(61, L' ').c_str());
    TextTable table({L"A", L"B"});
    table.Add({longCell, L"1"});
    table.Add({L"y", L"2"});
    EXPECT_EQ(table.Aligned(0), L"A" + gap + L"B\n" + longCell + L"  1\ny" + gap + L"2\n");
}

TEST(TextTable, SeparatesCellsByTabs) {
    TextTable table({L"A", L"B"});
    table.Add({L"one\ttwo\n", L""});
    EXPECT_EQ(table.TabSeparated(), L"A\tB\none two \t\n");
}

TEST(ItemFileNames, DependOnTheItemAlone) {
    ItemFileNames first(L"contact");
    ItemFileNames second(L"contact");
    second.Next(L"0000");
    const CString name = first.Next(L"00AB");
    EXPECT_EQ(name.size(), std::wstring_view(L"contact-0123456789abcdef.xml").size());
    EXPECT_EQ(name.substr(0, 8), L"contact-");
    EXPECT_EQ(name, second.Next(L"00AB"));
    EXPECT_NE(name, second.Next(L"00AC"));
}

TEST(ItemFileNames, NeverRepeat) {
    ItemFileNames names(L"contact");
    const CString name = names.Next(L"");
    const CString stem = name.substr(0, name.size() - 4);
    EXPECT_EQ(names.Next(L""), stem + L"-2.xml");
    EXPECT_EQ(names.Next(L""), stem + L"-3.xml");
}

TEST(ItemFileNames, TakeNothingFromAnIdentifier) {
    EXPECT_EQ(ItemFileNames(L"contact").Next(L"..\\..\\evil").find_first_of(L"\\/:"), CString::npos);
}

TEST(ProgressText, ShowsHowFarItIs) {
    const CString empty(std::wstring(40, L'.'));
    const CString full(std::wstring(40, L'#'));
    EXPECT_EQ(ProgressText(0, 10), L"[" + empty + L"] 0/10");
    EXPECT_EQ(ProgressText(10, 10), L"[" + full + L"] 10/10");
    EXPECT_EQ(ProgressText(5, 10), L"[" + full.substr(20) + empty.substr(20) + L"] 5/10");
    EXPECT_EQ(ProgressText(12, 10), L"[" + full + L"] 12/10");
    EXPECT_EQ(ProgressText(3, 0), L"3");
}

}  // namespace
