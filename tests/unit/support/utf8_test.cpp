#include "support/utf8.h"

#include <gtest/gtest.h>

#include "support/text.h"

namespace {

TEST(Utf8, HasTheFirstAndTheLastCharacterOfEachLength) {
    EXPECT_EQ(Utf8FromWide(WIDE("")), "");
    EXPECT_EQ(Utf8FromWide(WIDE("\x7F")), "\x7F");
    EXPECT_EQ(Utf8FromWide(WIDE("\u0080\u07FF")), "\xC2\x80\xDF\xBF");
    EXPECT_EQ(Utf8FromWide(WIDE("\u0800\uFFFF")), "\xE0\xA0\x80\xEF\xBF\xBF");
    EXPECT_EQ(Utf8FromWide(WIDE("\U00010000\U0010FFFF")), "\xF0\x90\x80\x80\xF4\x8F\xBF\xBF");
    EXPECT_EQ(Utf8FromWide(WideView(WIDE("a\0b"), 3)), std::string_view("a\0b", 3));
}

TEST(Utf8, HasTheReplacementCharacterForEachSurrogateWithoutItsOther) {
    const wide halves[] = {0xD83D, WIDE('x'), 0xDE00, 0xD83D, 0xD83D, 0xDE00, 0xDE00, 0xD83D};
    EXPECT_EQ(Utf8FromWide(WideView(halves, std::size(halves))),
              "\xEF\xBF\xBDx\xEF\xBF\xBD\xEF\xBF\xBD\xF0\x9F\x98\x80\xEF\xBF\xBD\xEF\xBF\xBD");
}

}  // namespace
