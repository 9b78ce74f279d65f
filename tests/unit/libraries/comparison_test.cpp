#include "libraries/dunmere/comparison.h"

#include <gtest/gtest.h>

#include "tests/unit/text_printer.h"

namespace {

constexpr double kDay = 43831.5;
const std::int64_t kSeconds = 3787041600;

void Add(LogItems& items, const wide* id, double date = kDay, std::int32_t status = kDateValid) {
    tagLogItem item;
    item.m_strId = id;
    item.m_dtModified = {date, status};
    items.Add(item);
}

const std::vector<KnownItem> kKnown{
    {WIDE("A"), {kDateValid, kSeconds}}, {WIDE("B"), {kDateValid, kSeconds}}, {WIDE("C"), {kDateNull, 0}}};

using Flags = std::vector<std::int32_t>;

TEST(Comparison, OfTheSameItemsFindsNothing) {
    LogItems items;
    Add(items, WIDE("A"));
    Add(items, WIDE("B"));
    Add(items, WIDE("C"), 0, kDateNull);
    const Comparison comparison = Compare(items, kKnown);
    EXPECT_EQ(comparison.flags, (Flags{0, 0, 0}));
    EXPECT_EQ(comparison.marked, 0U);
    EXPECT_TRUE(comparison.gone.empty());
    EXPECT_EQ(comparison.nowKnown, kKnown);
}

TEST(Comparison, OfWhatNobodyKnowsFindsAllNew) {
    LogItems items;
    Add(items, WIDE("A"));
    Add(items, WIDE("B"));
    const Comparison comparison = Compare(items, {});
    EXPECT_EQ(comparison.flags, (Flags{8, 8}));
    EXPECT_EQ(comparison.marked, 2U);
    EXPECT_TRUE(comparison.gone.empty());
}

TEST(Comparison, FindsNewChangedAndGoneItems) {
    LogItems items;
    Add(items, WIDE("D"));
    Add(items, WIDE("B"), kDay + 1);
    Add(items, WIDE("C"), 0, kDateNull);
    const Comparison comparison = Compare(items, kKnown);
    EXPECT_EQ(comparison.flags, (Flags{8, 4, 0}));
    EXPECT_EQ(comparison.marked, 2U);
    ASSERT_EQ(comparison.gone.size(), 1U);
    EXPECT_EQ(comparison.gone[0].m_lLogFlag, 32);
    EXPECT_EQ(comparison.gone[0].m_strId, CString(WIDE("A")));
    EXPECT_EQ(comparison.gone[0].m_dtModified.m_status, kDateValid);
    EXPECT_DOUBLE_EQ(comparison.gone[0].m_dtModified.m_dt, kDay);
    EXPECT_EQ(comparison.nowKnown, (std::vector<KnownItem>{{WIDE("D"), {kDateValid, kSeconds}},
                                                           {WIDE("B"), {kDateValid, kSeconds + 86400}},
                                                           {WIDE("C"), {kDateNull, 0}}}));
}

TEST(Comparison, FindsAChangeOfOneSecondInBothDirectionsAndOfTheStatus) {
    for (const double shift : {1.0 / 86400, -1.0 / 86400}) {
        LogItems items;
        Add(items, WIDE("A"), kDay + shift);
        EXPECT_EQ(Compare(items, kKnown).flags, (Flags{4}));
    }
    LogItems items;
    Add(items, WIDE("A"), kDay, kDateInvalid);
    EXPECT_EQ(Compare(items, kKnown).flags, (Flags{4}));
}

TEST(Comparison, GoneItemsComeInTheOrderInWhichTheyWereKnown) {
    const Comparison comparison = Compare(LogItems(), kKnown);
    ASSERT_EQ(comparison.gone.size(), 3U);
    EXPECT_EQ(comparison.gone[0].m_strId, CString(WIDE("A")));
    EXPECT_EQ(comparison.gone[2].m_strId, CString(WIDE("C")));
    EXPECT_EQ(comparison.gone[2].m_dtModified.m_status, kDateNull);
}

TEST(Comparison, FirstOfItemsWithOneIdentifierStandsForAll) {
    LogItems items;
    Add(items, WIDE("A"), kDay + 1);
    Add(items, WIDE("A"), kDay + 2);
    Add(items, WIDE("N"));
    Add(items, WIDE("N"));
    const Comparison comparison = Compare(items, kKnown);
    EXPECT_EQ(comparison.flags, (Flags{4, 0, 8, 0}));
    EXPECT_EQ(comparison.nowKnown.size(), 2U);
    EXPECT_EQ(comparison.nowKnown[0].modified.seconds, kSeconds + 86400);
}

TEST(Comparison, ItemsWithoutAnIdentifierAreLeftOut) {
    LogItems items;
    Add(items, WIDE(""));
    const Comparison comparison = Compare(items, {});
    EXPECT_EQ(comparison.flags, (Flags{0}));
    EXPECT_TRUE(comparison.nowKnown.empty());
}

TEST(Comparison, AnIdentifierThatIsKnownTwiceIsGoneOnce) {
    EXPECT_EQ(Compare(LogItems(), {{WIDE("A"), {}}, {WIDE("A"), {}}}).gone.size(), 1U);
}

TEST(Comparison, FlagsThatItemsBringAlongDoNotCount) {
    LogItems items;
    Add(items, WIDE("A"));
    items[0].m_lLogFlag = kItemDeleted;
    EXPECT_EQ(Compare(items, kKnown).flags, (Flags{0}));
}

}  // namespace
