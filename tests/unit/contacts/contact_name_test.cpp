#include "contacts/contact_name.h"

#include <gtest/gtest.h>

#include "tests/unit/text_printer.h"

namespace {

TEST(JoinName, PartsThatAreNotEmptyAreJoinedByOneBlank) {
    EXPECT_EQ(JoinName(WIDE("John"), WIDE("Van Der"), WIDE("Doe")), WIDE("John Van Der Doe"));
    EXPECT_EQ(JoinName(WIDE("John"), {}, WIDE("Doe")), WIDE("John Doe"));
    EXPECT_EQ(JoinName({}, WIDE("Van"), {}), WIDE("Van"));
    EXPECT_EQ(JoinName({}, WIDE("Van"), WIDE("Doe")), WIDE("Van Doe"));
    EXPECT_EQ(JoinName({}, {}, {}), WIDE(""));
}

TEST(InitialsOfName, EachPartGivesItsFirstAndTheMiddleNameOneBehindEachBlank) {
    EXPECT_EQ(InitialsOfName(WIDE("John"), WIDE("Van Der"), WIDE("Doe")), WIDE("J.V.D.D."));
    EXPECT_EQ(InitialsOfName(WIDE("john paul"), WIDE("x"), WIDE("van Doe")), WIDE("j.x.v."));
    EXPECT_EQ(InitialsOfName({}, {}, WIDE("Doe")), WIDE("D."));
    EXPECT_EQ(InitialsOfName({}, {}, {}), WIDE(""));
}

TEST(InitialsOfName, BlankBehindABlankCountsAndOneAtTheEndHasNothingBehindIt) {
    EXPECT_EQ(InitialsOfName({}, WIDE("A  B "), {}), WIDE("A. .B."));
}

TEST(InitialsOfName, CharacterOfTwoUnitsStaysWhole) {
    EXPECT_EQ(InitialsOfName(WIDE("\xD83D\xDE00x"), WIDE("a \xD83D\xDE00"), {}),
              WIDE("\xD83D\xDE00.a.\xD83D\xDE00."));
    EXPECT_EQ(InitialsOfName(WIDE("\xD83D"), {}, WIDE("\xDE00")), WIDE("\xD83D.\xDE00."));
    EXPECT_EQ(InitialsOfName(WIDE("\xD83Dx"), WIDE("\xE000\xDE00"), WIDE("\xD83D\xE000")),
              WIDE("\xD83D.\xE000.\xD83D."));
}

TEST(CutCategories, PartsAreCutAndOneBehindTheLastSeparatorIsNone) {
    using Texts = std::vector<CString>;
    EXPECT_EQ(CutCategories(WIDE("a;b")), (Texts{WIDE("a"), WIDE("b")}));
    EXPECT_EQ(CutCategories(WIDE("a;b;")), (Texts{WIDE("a"), WIDE("b")}));
    EXPECT_EQ(CutCategories(WIDE("a;;b")), (Texts{WIDE("a"), WIDE(""), WIDE("b")}));
    EXPECT_EQ(CutCategories(WIDE(";;")), (Texts{WIDE(""), WIDE("")}));
    EXPECT_EQ(CutCategories(WIDE(" a ; b ")), (Texts{WIDE(" a "), WIDE(" b ")}));
    EXPECT_EQ(CutCategories({}), Texts());
}

}  // namespace
