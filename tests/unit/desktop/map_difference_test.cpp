#include "desktop/map_difference.h"

#include <gmock/gmock.h>

#include <cstdio>

#include "support/fnv.h"

namespace {

using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

constexpr const char* kSection = "[contact pim]";

TEST(ChangedIdentifiers, AreThoseThatCameChangedOrWent) {
    const std::string before = "Map 1\n[contact pim]\nA\t0\t1\nB\t0\t2\nC\t0\t3\nchecksum 1\n";
    const std::string after = "Map 1\n[contact pim]\nD\t0\t1\nB\t0\t2\nC\t0\t4\nchecksum 2\n";
    EXPECT_THAT(ChangedIdentifiers(before, after, kSection), UnorderedElementsAre("A", "C", "D"));
    EXPECT_THAT(ChangedIdentifiers(before, before, kSection), IsEmpty());
}

TEST(ChangedIdentifiers, OfNoMapAreAllOfTheOther) {
    const std::string map = "[contact pim]\nA\t0\t1\nB\t0\t2";
    EXPECT_THAT(ChangedIdentifiers("", map, kSection), UnorderedElementsAre("A", "B"));
    EXPECT_THAT(ChangedIdentifiers(map, "", kSection), UnorderedElementsAre("A", "B"));
    EXPECT_THAT(ChangedIdentifiers("", "", kSection), IsEmpty());
}

/// A map with another section in front and behind.
std::string MapOf(const std::string& items) {
    return "DunmereMap 1\n[calendar pim]\nX\t0\t1\n[contact pim]\n" + items +
           "[contact other]\nY\t0\t1\nZ\t0\t1\n";
}

TEST(Sections, OfOtherKindsAndDomainsDoNotCount) {
    EXPECT_EQ(CountItems(MapOf("A\t0\t1\nB\t0\t1\n"), kSection), 2U);
    EXPECT_EQ(CountItems(MapOf(""), kSection), 0U);
    EXPECT_EQ(CountItems("", kSection), 0U);
    const std::string other = "[calendar pim]\nX\t0\t9\n";
    EXPECT_THAT(ChangedIdentifiers(MapOf(""), other, kSection), IsEmpty());
    EXPECT_THAT(ChangedIdentifiers(other, MapOf("A\t0\t1\n"), kSection), UnorderedElementsAre("A"));
}

std::string ChecksumOf(std::string_view text) {
    char digits[17] = {};
    (void)std::snprintf(digits, sizeof(digits), "%016llX", static_cast<unsigned long long>(Fnv1a(text)));
    return digits;
}

std::string WithoutLastLine(const std::string& map) {
    return map.substr(0, map.rfind('\n', map.size() - 2) + 1);
}

TEST(ChangesThatAreTakenBack, StandAsBeforeAndAllElseAsAfter) {
    const std::string before = MapOf("A\t0\t1\nB\t0\t2\nC\t0\t3\nD\t0\t4\n");
    const std::string after = MapOf("A\t0\t9\nB\t0\t9\nE\t0\t9\nF\t0\t9\n") + "checksum 0123456789ABCDEF\n";
    // A and B changed, C and D went, E and F came: half of each is taken back.
    const std::string result = WithoutChanges(before, after, kSection, {"A", "C", "E"});
    EXPECT_THAT(ChangedIdentifiers(before, result, kSection), UnorderedElementsAre("B", "D", "F"));
    EXPECT_THAT(ChangedIdentifiers(result, after, kSection), UnorderedElementsAre("A", "C", "E"));
    EXPECT_EQ(WithoutChanges(before, before, kSection, {}).substr(0, before.size()), before);
    for (const char* section : {"[calendar pim]", "[contact other]"}) {
        EXPECT_THAT(ChangedIdentifiers(before, result, section), IsEmpty());
    }
}

TEST(ChangesThatAreTakenBack, LeaveAMapWithItsChecksum) {
    // FNV-1a as its authors publish it: of "foobar" it is 85944171F73967E8.
    EXPECT_EQ(WithoutChanges("", "foobar\nchecksum 0\n", kSection, {}),
              "foobar\nchecksum " + ChecksumOf("foobar\n") + "\n");
    EXPECT_EQ(ChecksumOf("foobar"), "85944171F73967E8");
}

TEST(ChangesThatAreTakenBack, LeaveALineThatLooksLikeAChecksumAmongOthers) {
    // Without it, the item behind it would come into the section.
    const std::string after = "[contact pim]\nA\t0\t1\nchecksum 1\nB\t0\t1\nchecksum 2\n";
    const std::string result = WithoutChanges("", after, kSection, {"A"});
    EXPECT_EQ(WithoutLastLine(result), "[contact pim]\nchecksum 1\nB\t0\t1\n");
    EXPECT_EQ(CountItems(result, kSection), 0U);
}

TEST(ChangesThatAreTakenBack, OfNoMapAreLeftOut) {
    const std::string result = WithoutChanges("", MapOf("A\t0\t1\nB\t0\t2\n"), kSection, {"A"});
    EXPECT_EQ(WithoutLastLine(result), MapOf("B\t0\t2\n"));
}

}  // namespace
