#include "desktop/text_table.h"

#include <gtest/gtest.h>

#include "desktop/item_file_name.h"
#include "desktop/progress_text.h"
#include "desktop/text_cell.h"
#include "tests/unit/text_printer.h"

namespace {

TEST(DisplayWidth, CountsColumns) {
    EXPECT_EQ(DisplayWidth(WIDE("")), 0U);
    EXPECT_EQ(DisplayWidth(WIDE("Zo\u00EB")), 3U);
    EXPECT_EQ(DisplayWidth(WIDE("\u5C71\u7530")), 4U);
    EXPECT_EQ(DisplayWidth(WIDE("\uFF21")), 2U);
    EXPECT_EQ(DisplayWidth(WIDE("\uAE40")), 2U);
    EXPECT_EQ(DisplayWidth(WIDE("e\u0301")), 1U);
    EXPECT_EQ(DisplayWidth(WIDE("\u200D")), 0U);
    EXPECT_EQ(DisplayWidth(WIDE("\U0001F600")), 2U);
    EXPECT_EQ(DisplayWidth(WIDE("\U0002000B")), 2U);
    EXPECT_EQ(DisplayWidth(WIDE("\u3003")), 2U);
    EXPECT_EQ(DisplayWidth(WIDE("\u0430\u05D0\u0639")), 3U);
    EXPECT_EQ(DisplayWidth(WIDE("\xD800x")), 2U);
}

TEST(PrintableText, CannotCommandATerminal) {
    EXPECT_EQ(PrintableText(WIDE("a\x1B[31m\tb\r\nc")), WIDE("a [31m b  c"));
    EXPECT_EQ(PrintableText(WIDE("\x9B\x7F\u2028|")), WIDE("   |"));
    EXPECT_EQ(PrintableText(WIDE("\u202Eabc\u2069")), WIDE("abc"));
}

TEST(PrintableText, KeepsWhatIsText) {
    EXPECT_EQ(PrintableText(WIDE("\u05D0\u200F \U0001F600 e\u0301")),
              WIDE("\u05D0\u200F \U0001F600 e\u0301"));
    EXPECT_EQ(PrintableText(WIDE("\xDE00\xD83D")), WIDE("\uFFFD\uFFFD"));
}

TEST(FitText, FillsAndCuts) {
    EXPECT_EQ(FitText(WIDE("abc"), 5), WIDE("abc  "));
    EXPECT_EQ(FitText(WIDE("abc"), 3), WIDE("abc"));
    EXPECT_EQ(FitText(WIDE("abcd"), 3), WIDE("ab\u2026"));
    EXPECT_EQ(FitText(WIDE("abcd"), 1), WIDE("\u2026"));
    EXPECT_EQ(FitText(WIDE("abcd"), 0), WIDE(""));
}

TEST(FitText, CutsBetweenCharacters) {
    // Two ideographs would take four of the three columns that are left.
    EXPECT_EQ(FitText(WIDE("\u5C71\u7530\u592A"), 4), WIDE("\u5C71\u2026 "));
    EXPECT_EQ(FitText(WIDE("\U0001F600\U0001F600"), 3), WIDE("\U0001F600\u2026"));
    EXPECT_EQ(FitText(WIDE("e\u0301e\u0301e\u0301"), 2), WIDE("e\u0301\u2026"));
}

TEST(TextTable, AlignsItsColumns) {
    TextTable table({WIDE("NAME"), WIDE("PHONE")});
    table.Add({WIDE("Ada Lovelace"), WIDE("1")});
    table.Add({WIDE("\u5C71\u7530\u592A\u90CE"), WIDE("22")});
    table.Add({WIDE(""), WIDE("")});
    EXPECT_EQ(table.Aligned(0), WIDE("NAME          PHONE\n") WIDE("Ada Lovelace  1\n")
                                    WIDE("\u5C71\u7530\u592A\u90CE      22\n") WIDE("\n"));
    EXPECT_EQ(table.Size(), 3U);
}

TEST(TextTable, CutsTheWidestColumnsToFit) {
    TextTable table({WIDE("A"), WIDE("B")});
    table.Add({WIDE("0123456789"), WIDE("01234")});
    EXPECT_EQ(table.Aligned(17), WIDE("A           B\n0123456789  01234\n"));
    EXPECT_EQ(table.Aligned(14), WIDE("A        B\n012345\u2026  01234\n"));
    EXPECT_EQ(table.Aligned(8), WIDE("A    B\n01\u2026  01\u2026\n"));
    EXPECT_EQ(table.Aligned(1), WIDE("A  B\n\u2026  \u2026\n"));
}

TEST(TextTable, LetsALongCellStandOutWhereNothingIsCut) {
    const CString longCell(WideString(100, WIDE('x')).c_str());
    const CString gap(WideString(61, WIDE(' ')).c_str());
    TextTable table({WIDE("A"), WIDE("B")});
    table.Add({longCell, WIDE("1")});
    table.Add({WIDE("y"), WIDE("2")});
    EXPECT_EQ(table.Aligned(0),
              WIDE("A") + gap + WIDE("B\n") + longCell + WIDE("  1\ny") + gap + WIDE("2\n"));
}

TEST(TextTable, SeparatesCellsByTabs) {
    TextTable table({WIDE("A"), WIDE("B")});
    table.Add({WIDE("one\ttwo\n"), WIDE("")});
    EXPECT_EQ(table.TabSeparated(), WIDE("A\tB\none two \t\n"));
}

TEST(ItemFileNames, DependOnTheItemAlone) {
    ItemFileNames first(WIDE("contact"));
    ItemFileNames second(WIDE("contact"));
    second.Next(WIDE("0000"));
    const CString name = first.Next(WIDE("00AB"));
    EXPECT_EQ(name.size(), WideView(WIDE("contact-0123456789abcdef.xml")).size());
    EXPECT_EQ(name.substr(0, 8), WIDE("contact-"));
    EXPECT_EQ(name, second.Next(WIDE("00AB")));
    EXPECT_NE(name, second.Next(WIDE("00AC")));
}

TEST(ItemFileNames, NeverRepeat) {
    ItemFileNames names(WIDE("contact"));
    const CString name = names.Next(WIDE(""));
    const CString stem = name.substr(0, name.size() - 4);
    EXPECT_EQ(names.Next(WIDE("")), stem + WIDE("-2.xml"));
    EXPECT_EQ(names.Next(WIDE("")), stem + WIDE("-3.xml"));
}

TEST(ItemFileNames, TakeNothingFromAnIdentifier) {
    EXPECT_EQ(ItemFileNames(WIDE("contact")).Next(WIDE("..\\..\\evil")).find_first_of(WIDE("\\/:")),
              CString::npos);
}

TEST(ProgressText, ShowsHowFarItIs) {
    const CString empty(WideString(40, WIDE('.')));
    const CString full(WideString(40, WIDE('#')));
    EXPECT_EQ(ProgressText(0, 10), WIDE("[") + empty + WIDE("] 0/10"));
    EXPECT_EQ(ProgressText(10, 10), WIDE("[") + full + WIDE("] 10/10"));
    EXPECT_EQ(ProgressText(5, 10), WIDE("[") + full.substr(20) + empty.substr(20) + WIDE("] 5/10"));
    EXPECT_EQ(ProgressText(12, 10), WIDE("[") + full + WIDE("] 12/10"));
    EXPECT_EQ(ProgressText(3, 0), WIDE("3"));
}

}  // namespace
