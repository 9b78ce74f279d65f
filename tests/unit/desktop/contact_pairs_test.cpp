// The desktop program knows the agent's elements from a table of its own, because it is another program. This
// is where the two tables meet.

#include "desktop/contact_pairs.h"

#include <gmock/gmock.h>

#include <set>
#include <utility>

#include "contacts/contact_fields.h"
#include "tests/unit/text_printer.h"

namespace {

using Pair = std::pair<CString, CString>;

constexpr std::int32_t kFirstService = 4022;
constexpr std::int32_t kLastService = 4030;

bool IsInstantMessaging(const ContactField& field) {
    return field.id >= kFirstService && field.id <= kLastService;
}

std::set<Pair> PairsOfTheDesktop() {
    std::set<Pair> pairs;
    for (const ContactPair& pair : kContactPairs) {
        pairs.emplace(pair.read, pair.write);
    }
    return pairs;
}

TEST(ContactPairs, AreThoseOfTheAgentsFieldTable) {
    std::set<Pair> expected;
    for (const ContactField& field : kContactFields) {
        if (field.out != nullptr && !IsInstantMessaging(field)) {
            expected.emplace(field.out, field.in);
        }
    }
    EXPECT_EQ(PairsOfTheDesktop(), expected);
    EXPECT_EQ(kContactPairs.size(), expected.size());
}

TEST(ContactPairs, BringEachEndOfTheNameBackToItsProperty) {
    // What the row sends as the prefix is the generation, and the generation is written from the suffix.
    const wide* const fromGeneration = FindContactRowElement(0x3A05001F);
    const wide* const fromPrefix = FindContactRowElement(0x3A45001F);
    const auto pairs = PairsOfTheDesktop();
    for (const ContactField& field : kContactFields) {
        if (field.tag == 0x3A05001F) {
            EXPECT_TRUE(pairs.contains({fromGeneration, field.in}));
        }
        if (field.tag == 0x3A45001F) {
            EXPECT_TRUE(pairs.contains({fromPrefix, field.in}));
        }
    }
    EXPECT_TRUE(pairs.contains({WIDE("PrefixName"), WIDE("SuffixName")}));
}

TEST(ContactPairs, OfInstantMessagingFollowTheService) {
    for (std::int32_t service = kFirstService; service <= kLastService; ++service) {
        const ContactField* const field = FindContactField(service);
        ASSERT_NE(field, nullptr) << service;
        EXPECT_EQ(CString(InstantMessagingElement(service)), CString(field->in)) << service;
    }
}

}  // namespace
