#include "support/text.h"

#include <gtest/gtest.h>

#include "tests/unit/text_printer.h"

namespace {

using NAMESPACE_COMMON::CStringEx;

TEST(NextToken, CutsADateIntoItsParts) {
    CStringEx text(WIDE("2011-12-06"));
    EXPECT_EQ(text.NextToken(WIDE("-")), WIDE("2011"));
    EXPECT_EQ(text.NextToken(WIDE("-")), WIDE("12"));
    EXPECT_EQ(text.NextToken(WIDE("-")), WIDE("06"));
    EXPECT_TRUE(text.empty());
}

TEST(NextToken, CutsACopyAndLeavesTheText) {
    const CString text(WIDE("a;b"));
    CStringEx rest(text);
    EXPECT_EQ(rest.NextToken(WIDE(";")), WIDE("a"));
    EXPECT_EQ(rest, WIDE("b"));
    EXPECT_EQ(text, WIDE("a;b"));
}

TEST(NextToken, EmptySeparatorCopiesAndCutsNothing) {
    CStringEx text(WIDE("abc"));
    EXPECT_EQ(text.NextToken({}), WIDE("abc"));
    EXPECT_EQ(text, WIDE("abc"));
}

TEST(NextToken, EmptyTextGivesEmptyText) {
    CStringEx text;
    EXPECT_EQ(text.NextToken(WIDE("-")), WIDE(""));
    EXPECT_TRUE(text.empty());
    EXPECT_EQ(text.NextToken({}), WIDE(""));
}

TEST(NextToken, WithoutTheSeparatorAllIsCutOff) {
    CStringEx text(WIDE("abc"));
    EXPECT_EQ(text.NextToken(WIDE("-")), WIDE("abc"));
    EXPECT_TRUE(text.empty());
}

TEST(NextToken, SeparatorInFrontGivesEmptyTextAndIsRemoved) {
    CStringEx text(WIDE("-abc"));
    EXPECT_EQ(text.NextToken(WIDE("-")), WIDE(""));
    EXPECT_EQ(text, WIDE("abc"));
}

TEST(NextToken, SeparatorBehindGivesTheTextInFrontOnce) {
    CStringEx text(WIDE("a--b-"));
    EXPECT_EQ(text.NextToken(WIDE("-")), WIDE("a"));
    EXPECT_EQ(text.NextToken(WIDE("-")), WIDE(""));
    EXPECT_EQ(text.NextToken(WIDE("-")), WIDE("b"));
    EXPECT_TRUE(text.empty());
}

TEST(NextToken, SeparatorOfSeveralUnitsIsMatchedAsAWhole) {
    CStringEx text(WIDE("a;b; c; d"));
    EXPECT_EQ(text.NextToken(WIDE("; ")), WIDE("a;b"));
    EXPECT_EQ(text.NextToken(WIDE("; ")), WIDE("c"));
    EXPECT_EQ(text, WIDE("d"));
}

TEST(Trim, RemovesWhiteSpaceAtBothEndsOnly) {
    EXPECT_EQ(CString(WIDE(" \t\r\n\v\fa b \t\r\n\v\f")).Trim(), WIDE("a b"));
    EXPECT_EQ(CString(WIDE("a")).Trim(), WIDE("a"));
    EXPECT_EQ(CString(WIDE(" \t ")).Trim(), WIDE(""));
    EXPECT_EQ(CString().Trim(), WIDE(""));
}

TEST(EqualsNoCase, ComparesAsciiLettersWithoutCase) {
    EXPECT_TRUE(CString(WIDE("True")).EqualsNoCase(WIDE("tRUE")));
    EXPECT_TRUE(CString().EqualsNoCase({}));
    EXPECT_FALSE(CString(WIDE("true")).EqualsNoCase(WIDE("true ")));
    EXPECT_FALSE(CString(WIDE("true")).EqualsNoCase(WIDE("tru")));
    EXPECT_FALSE(CString(WIDE("true")).EqualsNoCase({}));
}

TEST(EqualsNoCase, UnitsBesideTheLettersAreNoLetters) {
    EXPECT_FALSE(CString(WIDE("@")).EqualsNoCase(WIDE("`")));
    EXPECT_FALSE(CString(WIDE("[")).EqualsNoCase(WIDE("{")));
    // LATIN CAPITAL and SMALL LETTER A WITH DIAERESIS.
    EXPECT_FALSE(CString(WIDE("\x00C4")).EqualsNoCase(WIDE("\x00E4")));
}

TEST(FromNumber, WritesDecimalDigits) {
    EXPECT_EQ(CString::FromNumber(0), WIDE("0"));
    EXPECT_EQ(CString::FromNumber(-12), WIDE("-12"));
    EXPECT_EQ(CString::FromNumber(4294967295), WIDE("4294967295"));
    EXPECT_EQ(CString::FromNumber(INT64_MIN), WIDE("-9223372036854775808"));
}

TEST(CString, NullIsEmpty) {
    EXPECT_TRUE(CString(static_cast<const wide*>(nullptr)).empty());
}

}  // namespace
