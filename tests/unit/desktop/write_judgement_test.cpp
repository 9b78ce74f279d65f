// Whether a write was done is told from what the folder held before and after it.

#include "desktop/write_judgement.h"

#include <gmock/gmock.h>

#include "tests/unit/text_printer.h"

namespace {

using ::testing::ElementsAre;
using Outcome = WriteOutcome;

// 2024-12-31 23:59:59: 45657 days and 86399 seconds behind 1899-12-30.
constexpr MapSeconds kTime = 45657LL * 86400 + 86399;
constexpr WideView kTimeText = WIDE("12/31/2024 23:59:59");

std::string MapWith(std::string_view items) {
    return "DunmereMap 1\n[contact pim]\n" + std::string(items) + "checksum 0123456789abcdef\n";
}

std::string Line(std::string_view id, MapSeconds time) {
    return std::string(id) + "\t0\t" + std::to_string(time) + "\n";
}

WriteFacts Facts(WriteKind kind, WideView id, WideView time = kTimeText) {
    return {kind, CString(id), CString(time)};
}

Outcome JudgeOne(const WriteFacts& facts, std::string_view before, std::string_view after) {
    const FolderState first(MapWith(before));
    const FolderState second(MapWith(after));
    return JudgeWrites({&facts, 1}, &first, &second).front();
}

TEST(TimeText, CountsSecondsAsAMapDoes) {
    EXPECT_EQ(SecondsOfTimeText(kTimeText), kTime);
    EXPECT_EQ(SecondsOfTimeText(WIDE("01/01/1900 00:00:01")), 2 * 86400 + 1);
}

TEST(TimeText, OfAnUnknownTimeIsNone) {
    for (const WideView text :
         {WIDE("12/30/1899 00:00:00"), WIDE(""), WIDE("Invalid DateTime"), WIDE("02/30/2024 00:00:00"),
          WIDE("12/31/2024 23:59:5"), WIDE("12-31-2024 23:59:59")}) {
        EXPECT_EQ(SecondsOfTimeText(text), std::nullopt);
    }
}

TEST(FolderState, HoldsTheItemsOfAMapAndPassesOverTheRest) {
    const FolderState state(MapWith("AB\t0\t12\nCD\t1\t0\n"));
    EXPECT_EQ(state.Items().size(), 2U);
    EXPECT_EQ(state.TimeOf("AB"), 12);
    EXPECT_EQ(state.TimeOf("CD"), 0);
    EXPECT_EQ(state.TimeOf("EF"), std::nullopt);
    EXPECT_TRUE(FolderState(std::string_view()).Items().empty());
}

TEST(FolderState, HoldsAppointmentsAsItHoldsContacts) {
    const FolderState state("DunmereMap 1\n[calendar pim]\nAB\t0\t12\nchecksum 0123456789abcdef\n");
    EXPECT_EQ(state.Items().size(), 1U);
    EXPECT_EQ(state.TimeOf("AB"), 12);
}

TEST(ADeletion, OfAnAppointmentIsDoneThoughTheTimeThatComesBackIsNone) {
    EXPECT_EQ(JudgeOne(Facts(WriteKind::kDelete, WIDE("AB"), WIDE("12/30/1899 00:00:00")), Line("AB", 1), ""),
              Outcome::kDone);
}

TEST(FolderState, TakesALineThatEndsTooEarly) {
    EXPECT_EQ(FolderState("AB\t").TimeOf("AB"), 0);
    EXPECT_EQ(FolderState("AB\t0\tx").TimeOf("AB"), 0);
}

TEST(WriteKinds, AreTheFirstBitInTheAgentsOrder) {
    EXPECT_EQ(WriteKindOf(8 + 4 + 32), WriteKind::kAdd);
    EXPECT_EQ(WriteKindOf(4 + 32), WriteKind::kChange);
    EXPECT_EQ(WriteKindOf(32 + 1), WriteKind::kDelete);
    EXPECT_EQ(WriteKindOf(0), WriteKind::kNothing);
    EXPECT_EQ(WriteKindOf(3), WriteKind::kNothing);
}

TEST(AnAdd, IsDoneIfItsIdentifierIsInTheFolder) {
    EXPECT_EQ(JudgeOne(Facts(WriteKind::kAdd, WIDE("AB")), "", Line("AB", kTime)), Outcome::kDone);
}

TEST(AnAdd, IsDoneUnderAnotherIdentifierIfSomethingCameAtItsTime) {
    EXPECT_EQ(JudgeOne(Facts(WriteKind::kAdd, WIDE("AB")), Line("EF", kTime),
                       Line("EF", kTime) + Line("CD", kTime)),
              Outcome::kDone);
    EXPECT_EQ(JudgeOne(Facts(WriteKind::kAdd, WIDE("AB")), Line("EF", kTime), Line("EF", kTime)),
              Outcome::kRefused);
    EXPECT_EQ(JudgeOne(Facts(WriteKind::kAdd, WIDE("AB")), "", Line("CD", kTime - 1)), Outcome::kRefused);
}

TEST(AnAdd, OfSeveralClaimsOneItemEach) {
    const WriteFacts facts[] = {Facts(WriteKind::kAdd, WIDE("AB")), Facts(WriteKind::kAdd, WIDE("CD"))};
    const FolderState before(MapWith(""));
    const FolderState one(MapWith(Line("EF", kTime)));
    EXPECT_THAT(JudgeWrites(facts, &before, &one), ElementsAre(Outcome::kDone, Outcome::kRefused));
    const FolderState own(MapWith(Line("CD", kTime)));
    EXPECT_THAT(JudgeWrites(facts, &before, &own), ElementsAre(Outcome::kRefused, Outcome::kDone));
}

TEST(AnAdd, WithoutAnIdentifierIsDoneIfSomethingCameAtItsTime) {
    EXPECT_EQ(JudgeOne(Facts(WriteKind::kAdd, WIDE("")), "", Line("AB", kTime)), Outcome::kDone);
}

TEST(AnAdd, WithoutAnIdentifierIsUnprovenIfSomethingCameAtAnotherTime) {
    EXPECT_EQ(JudgeOne(Facts(WriteKind::kAdd, WIDE("")), "", Line("AB", kTime - 1)), Outcome::kUnproven);
    EXPECT_EQ(JudgeOne(Facts(WriteKind::kAdd, WIDE(""), WIDE("")), "", Line("AB", kTime)),
              Outcome::kUnproven);
}

TEST(AnAdd, WithoutAnIdentifierIsRefusedIfNothingCame) {
    EXPECT_EQ(JudgeOne(Facts(WriteKind::kAdd, WIDE("")), "", ""), Outcome::kRefused);
    EXPECT_EQ(JudgeOne(Facts(WriteKind::kAdd, WIDE("")), Line("AB", kTime), Line("AB", kTime)),
              Outcome::kRefused);
}

TEST(AnAdd, ThatGivesBackTheIdentifierOfAnItemThatWasThereIsRefused) {
    EXPECT_EQ(JudgeOne(Facts(WriteKind::kAdd, WIDE("AB")), Line("AB", 1), Line("AB", 1)), Outcome::kRefused);
}

TEST(AChange, IsDoneIfTheItemHasItsTime) {
    EXPECT_EQ(JudgeOne(Facts(WriteKind::kChange, WIDE("ab")), Line("AB", 1), Line("AB", kTime)),
              Outcome::kDone);
}

TEST(AChange, OfAnItemThatIsAsItWasIsRefused) {
    EXPECT_EQ(JudgeOne(Facts(WriteKind::kChange, WIDE("AB")), Line("AB", 1), Line("AB", 1)),
              Outcome::kRefused);
}

TEST(AChange, WithoutATimeIsDoneIfTheItemHasAnother) {
    EXPECT_EQ(JudgeOne(Facts(WriteKind::kChange, WIDE("AB"), WIDE("12/30/1899 00:00:00")), Line("AB", 1),
                       Line("AB", 2)),
              Outcome::kDone);
}

TEST(AChange, IsUnprovenIfTheItemHasTheTimeOfAnotherChange) {
    EXPECT_EQ(JudgeOne(Facts(WriteKind::kChange, WIDE("AB")), Line("AB", 1), Line("AB", kTime + 5)),
              Outcome::kUnproven);
}

TEST(AChange, OfAnItemThatIsNotInTheFolderIsUnproven) {
    EXPECT_EQ(JudgeOne(Facts(WriteKind::kChange, WIDE("AB")), "", ""), Outcome::kUnproven);
    EXPECT_EQ(JudgeOne(Facts(WriteKind::kChange, WIDE("AB")), Line("AB", 1), ""), Outcome::kUnproven);
}

TEST(ADeletion, IsDoneIfTheItemWasThereAndIsGone) {
    EXPECT_EQ(JudgeOne(Facts(WriteKind::kDelete, WIDE("AB")), Line("AB", 1), ""), Outcome::kDone);
    EXPECT_EQ(JudgeOne(Facts(WriteKind::kDelete, WIDE("AB")), Line("AB", 1), Line("AB", 1)),
              Outcome::kRefused);
    EXPECT_EQ(JudgeOne(Facts(WriteKind::kDelete, WIDE("AB")), "", ""), Outcome::kUnproven);
}

TEST(AWrite, WithoutTheFoldersStatesIsUnprovenUnlessItAsksForNothing) {
    const WriteFacts facts[] = {Facts(WriteKind::kAdd, WIDE("AB")), Facts(WriteKind::kAdd, WIDE("")),
                                Facts(WriteKind::kChange, WIDE("AB")),
                                Facts(WriteKind::kNothing, WIDE("AB"))};
    const FolderState state(MapWith(""));
    EXPECT_THAT(JudgeWrites(facts, nullptr, &state),
                ElementsAre(Outcome::kUnproven, Outcome::kUnproven, Outcome::kUnproven, Outcome::kRefused));
    EXPECT_THAT(JudgeWrites(facts, &state, nullptr),
                ElementsAre(Outcome::kUnproven, Outcome::kUnproven, Outcome::kUnproven, Outcome::kRefused));
}

TEST(StateKey, IsUpperCaseAndHasNoOtherCharactersThanAState) {
    EXPECT_EQ(StateKey(WIDE("0aBcDeFg9")), "0ABCDEFg9");
    EXPECT_EQ(StateKey(WIDE("a\u0141\uFF41")), "A??");
}

}  // namespace
