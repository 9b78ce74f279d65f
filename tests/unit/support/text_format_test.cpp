#include <gtest/gtest.h>

#include <stdexcept>

#include "support/text.h"
#include "tests/unit/text_printer.h"

namespace {

TEST(Format, TextsAreWide) {
    EXPECT_EQ(CString::Format(L"%s\\%s.xml", L"C:\\\x00E9", L"Outlook"), L"C:\\\x00E9\\Outlook.xml");
}

TEST(Format, WritesTheNumbersOfTheLogLines) {
    EXPECT_EQ(CString::Format(L"OpenEntry(0X%08X)\r\n", 0x8004010FU), L"OpenEntry(0X8004010F)\r\n");
    EXPECT_EQ(CString::Format(L"OpenEntry(0X%08X)\r\n", 0L), L"OpenEntry(0X00000000)\r\n");
    EXPECT_EQ(CString::Format(L"GMT:%+d", -60), L"GMT:-60");
    EXPECT_EQ(CString::Format(L"GMT:%+d", 60), L"GMT:+60");
    EXPECT_EQ(CString::Format(L"return =%08x \r\n", 1740), L"return =000006cc \r\n");
}

TEST(Format, FormatWithoutPlaceholderIsTheText) {
    EXPECT_EQ(CString::Format(L"Begin\r\n"), L"Begin\r\n");
    EXPECT_EQ(CString::Format(L""), L"");
}

TEST(Format, LongTextsAreNotCut) {
    const CString text(WideString(100000, L'x'));
    EXPECT_EQ(CString::Format(L"%s", text.c_str()), text);
}

}  // namespace
