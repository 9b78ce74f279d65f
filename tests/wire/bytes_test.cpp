// The texts of requests, byte by byte: what the other tests of this folder send is right only if these are.

#include "tests/wire/bytes.h"

#include <gmock/gmock.h>

namespace {

TEST(WireBytes, OneText) {
    EXPECT_EQ(ByteWriter().String(u"abc").Written(),
              Hex("04 00 00 00  00 00 00 00  04 00 00 00  61 00 62 00 63 00 00 00"));
}

TEST(WireBytes, TwoTexts) {
    EXPECT_EQ(ByteWriter().String(u"q").String(u"map").Written(),
              Hex("02 00 00 00  00 00 00 00  02 00 00 00  71 00 00 00"
                  "04 00 00 00  00 00 00 00  04 00 00 00  6d 00 61 00 70 00 00 00"));
}

TEST(WireBytes, TheSecondTextBeginsAtAMultipleOfFour) {
    EXPECT_EQ(ByteWriter().String(u"ab").String(u"").Written(),
              Hex("03 00 00 00  00 00 00 00  03 00 00 00  61 00 62 00 00 00  00 00"
                  "01 00 00 00  00 00 00 00  01 00 00 00  00 00"));
}

TEST(WireBytes, TextsAreReadAsTheyAreWritten) {
    const Bytes bytes = ByteWriter().String(u"ab").String(std::u16string(u"x\0", 2), 40).Written();
    ByteReader reader(bytes);
    EXPECT_EQ(ReadString(reader).units, std::u16string(u"ab\0", 3));
    const WireString second = ReadString(reader);
    EXPECT_EQ(second.maximum, 40U);
    EXPECT_EQ(second.units, std::u16string(u"x\0", 2));
    EXPECT_TRUE(reader.AtEnd());
}

TEST(WireBytes, MissingBytesAreNotMadeUp) {
    const Bytes bytes = Hex("02 00 00 00  00 00 00 00  02 00 00 00  71 00");
    ByteReader reader(bytes);
    EXPECT_THROW((void)ReadString(reader), std::out_of_range);
}

}  // namespace
