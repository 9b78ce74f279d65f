#include "contacts/im_address.h"

#include <gtest/gtest.h>

#include "tests/unit/text_printer.h"

namespace {

struct Split {
    std::int32_t fieldId = 0;
    CString rest;
};

Split SplitOf(WideView address) {
    CString text(address);
    const std::int32_t fieldId = SplitIMAddress(text);
    return {fieldId, text};
}

TEST(SplitIMAddress, CutsEachServiceOff) {
    const std::pair<WideView, std::int32_t> services[] = {
        {WIDE("AIM:"), 4023}, {WIDE("WINDOWSLIVE:"), 4024}, {WIDE("YAHOO:"), 4025}, {WIDE("SKYPE:"), 4026},
        {WIDE("QQ:"), 4027},  {WIDE("GTALK:"), 4028},       {WIDE("ICQ:"), 4029},   {WIDE("JABBER:"), 4030},
    };
    for (const auto& [prefix, fieldId] : services) {
        const Split split = SplitOf(CString(WideString(prefix) + WIDE("joe")));
        EXPECT_EQ(split.fieldId, fieldId);
        EXPECT_EQ(split.rest, WIDE("joe"));
    }
}

TEST(SplitIMAddress, MatchesThePrefixWithoutRegardToCase) {
    const Split split = SplitOf(WIDE("aim:joe"));
    EXPECT_EQ(split.fieldId, 4023);
    EXPECT_EQ(split.rest, WIDE("joe"));
}

TEST(SplitIMAddress, LeavesAnUnknownServiceInTheText) {
    const Split split = SplitOf(WIDE("MSN:joe"));
    EXPECT_EQ(split.fieldId, 4022);
    EXPECT_EQ(split.rest, WIDE("MSN:joe"));
}

TEST(SplitIMAddress, LeavesAnAddressWithoutServiceAsItIs) {
    const Split split = SplitOf(WIDE("joe"));
    EXPECT_EQ(split.fieldId, 4022);
    EXPECT_EQ(split.rest, WIDE("joe"));
}

TEST(SplitIMAddress, LooksAtTheFirstColonOnly) {
    const Split split = SplitOf(WIDE("SKYPE:AIM:joe"));
    EXPECT_EQ(split.fieldId, 4026);
    EXPECT_EQ(split.rest, WIDE("AIM:joe"));
}

TEST(SplitIMAddress, ServiceWithoutAddressLeavesNothing) {
    const Split split = SplitOf(WIDE("QQ:"));
    EXPECT_EQ(split.fieldId, 4027);
    EXPECT_EQ(split.rest, WIDE(""));
}

TEST(SplitIMAddress, EmptyAddressStaysEmpty) {
    const Split split = SplitOf(WIDE(""));
    EXPECT_EQ(split.fieldId, 4022);
    EXPECT_EQ(split.rest, WIDE(""));
}

}  // namespace
