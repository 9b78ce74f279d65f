#include "support/xml_text.h"

#include <gtest/gtest.h>

#include "tests/unit/text_printer.h"

namespace {

CString Permitted(WideView text) {
    CString room;
    return PermittedXmlText(text, room);
}

TEST(PermittedXmlText, TextWithNothingToDropIsReturnedWithoutACopy) {
    const CString text(WIDE("tab\t line\r\n \x00E9 \xE000 \xFFFD \xD83D\xDE00"));
    CString room;
    const WideView result = PermittedXmlText(text, room);
    EXPECT_EQ(result.data(), text.data());
    EXPECT_EQ(result.size(), text.size());
    EXPECT_TRUE(room.empty());
}

TEST(PermittedXmlText, EmptyTextStaysEmpty) {
    EXPECT_EQ(Permitted({}), WIDE(""));
}

TEST(PermittedXmlText, ControlCharactersAreDropped) {
    for (wide unit = 0; unit < 0x20; ++unit) {
        const wide text[] = {WIDE('a'), unit, WIDE('b')};
        const bool stays = unit == 0x9 || unit == 0xA || unit == 0xD;
        EXPECT_EQ(Permitted({text, 3}), stays ? CString(text, 3) : CString(WIDE("ab")))
            << static_cast<unsigned>(unit);
    }
}

TEST(PermittedXmlText, DeleteAndTheSecondControlBlockStay) {
    EXPECT_EQ(Permitted(WIDE("\x007F\x0080\x0085\x009F")), WIDE("\x007F\x0080\x0085\x009F"));
}

TEST(PermittedXmlText, LoneSurrogatesAreDropped) {
    const wide lowAlone[] = {WIDE('a'), 0xDC00, WIDE('b')};
    const wide highAlone[] = {WIDE('a'), 0xD800, WIDE('b')};
    const wide highAtTheEnd[] = {WIDE('a'), 0xDBFF};
    const wide wrongWayRound[] = {0xDC00, 0xD800};
    EXPECT_EQ(Permitted({lowAlone, 3}), WIDE("ab"));
    EXPECT_EQ(Permitted({highAlone, 3}), WIDE("ab"));
    EXPECT_EQ(Permitted({highAtTheEnd, 2}), WIDE("a"));
    EXPECT_EQ(Permitted({wrongWayRound, 2}), WIDE(""));
}

TEST(PermittedXmlText, APairBehindALoneSurrogateStays) {
    const wide text[] = {0xD800, 0xD83D, 0xDE00, 0xDE00};
    const wide pair[] = {0xD83D, 0xDE00};
    EXPECT_EQ(Permitted({text, 4}), CString(pair, 2));
}

TEST(PermittedXmlText, TheTwoNoncharactersAreDroppedAndTheUnitBeforeStays) {
    const wide text[] = {0xFFFD, 0xFFFE, 0xFFFF};
    EXPECT_EQ(Permitted({text, 3}), CString(text, 1));
}

TEST(PermittedXmlText, DroppingCanLeaveNothing) {
    const wide text[] = {0, 1, 2};
    EXPECT_EQ(Permitted({text, 3}), WIDE(""));
}

TEST(PermittedXmlText, EarlierContentsOfTheRoomDoNotShow) {
    CString room(WIDE("something that stood there before"));
    EXPECT_EQ(CString(PermittedXmlText(WIDE("a\x0001"), room)), WIDE("a"));
}

TEST(HasDocumentType, SeesItBehindThePrologOnly) {
    EXPECT_TRUE(HasDocumentType(WIDE("<!DOCTYPE a><a/>")));
    EXPECT_TRUE(HasDocumentType(WIDE("\xFEFF<!DOCTYPE a><a/>")));
    EXPECT_TRUE(HasDocumentType(
        WIDE("<?xml version='1.0'?>\r\n<!-- c -->\t<?p q?> <!DOCTYPE a [<!ENTITY e 'x'>]><a/>")));
    EXPECT_FALSE(HasDocumentType(WIDE("<a/>")));
    EXPECT_FALSE(HasDocumentType(WIDE("<?xml version='1.0'?><a/>")));
    EXPECT_FALSE(HasDocumentType({}));
    EXPECT_FALSE(HasDocumentType(WIDE(" \r\n")));
}

TEST(HasDocumentType, ThePhraseInsideOtherMarkupIsNone) {
    EXPECT_FALSE(HasDocumentType(WIDE("<!-- <!DOCTYPE a> --><a/>")));
    EXPECT_FALSE(HasDocumentType(WIDE("<?p <!DOCTYPE a> ?><a/>")));
    EXPECT_FALSE(HasDocumentType(WIDE("<a><![CDATA[<!DOCTYPE a>]]></a>")));
    EXPECT_FALSE(HasDocumentType(WIDE("<a/><!DOCTYPE a>")));
}

TEST(HasDocumentType, MarkupWithoutEndHidesNothing) {
    EXPECT_FALSE(HasDocumentType(WIDE("<!-- <!DOCTYPE a>")));
    EXPECT_FALSE(HasDocumentType(WIDE("<?p <!DOCTYPE a>")));
    // The two hyphens of the beginning are not those of an end.
    EXPECT_FALSE(HasDocumentType(WIDE("<!--><!DOCTYPE a>")));
}

}  // namespace
