// What an instant messaging address is called in a document that is written.

#include <gtest/gtest.h>

#include "desktop/contact_pairs.h"
#include "tests/unit/text_printer.h"

namespace {

TEST(InstantMessagingElement, IsThatOfTheService) {
    EXPECT_EQ(CString(InstantMessagingElement(4023)), WIDE("AIM"));
    EXPECT_EQ(CString(InstantMessagingElement(4024)), WIDE("LIVE"));
    EXPECT_EQ(CString(InstantMessagingElement(4025)), WIDE("YAHOO"));
    EXPECT_EQ(CString(InstantMessagingElement(4026)), WIDE("SKYPE"));
    EXPECT_EQ(CString(InstantMessagingElement(4027)), WIDE("QQ"));
    EXPECT_EQ(CString(InstantMessagingElement(4028)), WIDE("GoogleTalk"));
    EXPECT_EQ(CString(InstantMessagingElement(4029)), WIDE("ICQ"));
    EXPECT_EQ(CString(InstantMessagingElement(4030)), WIDE("JABBER"));
}

TEST(InstantMessagingElement, TakesAnUnknownServiceForAPartOfTheAddress) {
    for (const std::int32_t service : {0, -1, 4021, 4022, 4031, 2147483647}) {
        EXPECT_EQ(CString(InstantMessagingElement(service)), WIDE("IMAddress")) << service;
    }
}

}  // namespace
